#pragma once

#include "CliOptions.h"

#include <QString>

#include <cstdio>
#include <memory>
#include <optional>
#include <variant>

class QJsonValue;
class QUuid;

namespace scrivlet {
struct Note;
}

namespace scrivlet::cli {

class DataFolder;
class MessagePillPrinter;

// `scrivlet-cli --data-dir DIR <verb>`: the note commands of the app on the store in
// DIR. Each run is one launch of the app: the folder is opened with the app's start-up,
// the note the last run left open is opened again, the verb acts through the same
// operations as the app's commands, and the folder is closed with the app's quit.
//
// Lists and notes go to `out`, the app's message pills and every error to `err`. A
// warning pill means the stack turned the command down, and the exit status is 1.
class DataDirCommand final {
    Q_DISABLE_COPY_MOVE(DataDirCommand)

public:
    static constexpr int kExitFailure = 1;
    static constexpr int kExitBadUsage = 2;
    // The settings key of the folder under which a run leaves the id of its open note.
    static constexpr const char *kOpenNoteKey = "commandLineOpenNote";

    DataDirCommand(const CliOptions &options, std::FILE *in, std::FILE *out, std::FILE *err);
    ~DataDirCommand();

    // Returns the exit status.
    int run();

private:
    enum class Action {
        notesList,
        notesShow,
        notesNew,
        notesNext,
        notesPrevious,
        notesDelete,
        notesPromote,
        notesJump,
        voidList,
        voidRestore,
        voidEmpty,
        slotNotes,
        search,
        backup,
        importLegacy,
        resetPreferences,
        resetFactory,
    };
    struct Request {
        Action action = Action::notesList;
        QString id;                 // a note id or the start of one; empty for the open note
        std::optional<QString> text; // notes new: the text of the note
        QString query;              // search
        QString file;               // import-legacy
    };
    // Why a verb stopped: the exit status and the sentence for standard error.
    struct Failure {
        int status;
        QString message;
    };
    enum class Scope { anywhere, live, inTheVoid };

    std::variant<Request, CliError> parse() const;
    std::optional<Failure> readNoteText(Request &request);
    int perform(const Request &request);

    int listStack();
    int show(const Request &request);
    int newNote(const Request &request);
    int walk(bool towardsNewer);
    int deleteNote(const Request &request);
    int promote(const Request &request);
    int jump(const Request &request);
    int listTheVoid();
    int restore(const Request &request);
    int emptyTheVoid();
    int listSlots();
    int search(const Request &request);
    int backup();
    int importLegacy(const Request &request);
    int reset(bool factory);

    std::variant<Note, Failure> resolve(const QString &idText, Scope scope);
    void reopenLastNote();
    void rememberOpenNote();
    // Opens a note of the stack without a word, as the command line's own move.
    void openQuietly(const QUuid &id);
    // What the user's command has led to: a turned-down command prints nothing more.
    int reportOpenNote();
    // Lets the reloads the stack queued for the main loop ("refetchNotes") run.
    void settle();

    int fail(const Failure &failure) const;
    void print(const QString &text) const;
    void printJson(const QJsonValue &value) const;

    const CliOptions &m_options;
    std::FILE *m_in;
    std::FILE *m_out;
    std::FILE *m_err;
    std::unique_ptr<DataFolder> m_folder;
    std::unique_ptr<MessagePillPrinter> m_pills;
};

} // namespace scrivlet::cli
