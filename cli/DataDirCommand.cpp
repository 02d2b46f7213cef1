#include "DataDirCommand.h"

#include "DataFolder.h"
#include "MessagePillPrinter.h"
#include "NoteJson.h"
#include "NoteListing.h"

#include "editor/ScrivlinkExpansion.h"

#include "notes/BackupManager.h"
#include "notes/CoreDataManager.h"
#include "notes/CoreDataNotesManager.h"
#include "notes/LegacyImporter.h"
#include "notes/NoteCommands.h"
#include "notes/TrashManager.h"
#include "platform/MessagePillTypes.h"
#include "shell/tutorial/AppReset.h"

#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QStringDecoder>
#include <QTimer>

#include <algorithm>

#include <unistd.h>

namespace scrivlet::cli {

namespace {

using SwipeDirection = CoreDataNotesManager::SwipeDirection;

// A note is named by its id, whole or by its first hex digits, as long as those name
// one note: ids are long, and four to eight digits are what a person types.
constexpr qsizetype kShortestIdPrefix = 4;

QString idDigits(const QString &text)
{
    QString digits = text.trimmed();
    if (digits.startsWith(u'{') && digits.endsWith(u'}'))
        digits = digits.mid(1, digits.size() - 2);
    digits.remove(u'-');
    return digits.toLower();
}

bool isIdText(const QString &text)
{
    const QString digits = idDigits(text);
    if (digits.size() < kShortestIdPrefix || digits.size() > 32)
        return false;
    return std::all_of(digits.begin(), digits.end(), [](QChar c) { return c.isDigit() || (c >= u'a' && c <= u'f'); });
}

QString idText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces);
}

} // namespace

DataDirCommand::DataDirCommand(const CliOptions &options, std::FILE *in, std::FILE *out, std::FILE *err)
    : m_options(options), m_in(in), m_out(out), m_err(err)
{
}

DataDirCommand::~DataDirCommand() = default;

// ---- the command line ------------------------------------------------------------------

std::variant<DataDirCommand::Request, CliError> DataDirCommand::parse() const
{
    const QString &verb = m_options.verb;
    const QStringList &args = m_options.arguments;
    Request request;

    // `args` holds the sub-command ("list") and what follows it; `command` names them
    // in the message.
    auto takesAtMost = [&](qsizetype count, const QString &command) -> std::optional<CliError> {
        if (args.size() > count)
            return CliError{QStringLiteral("unexpected argument \"%1\" after \"%2\"").arg(args.at(count), command)};
        return std::nullopt;
    };
    auto takeId = [&](const QString &command, bool required) -> std::optional<CliError> {
        if (auto error = takesAtMost(2, command))
            return error;
        if (args.size() < 2)
            return required ? std::optional(CliError{QStringLiteral("\"%1\" needs a note ID").arg(command)})
                            : std::nullopt;
        if (!isIdText(args.at(1)))
            return CliError{QStringLiteral("\"%1\" is not a note ID; IDs are shown by \"notes list\"").arg(args.at(1))};
        request.id = args.at(1);
        return std::nullopt;
    };

    std::optional<CliError> error;
    bool takesJson = false;
    if (verb == u"notes" || verb == u"void") {
        const QString sub = args.value(0);
        const QString command = verb % u' ' % sub;
        if (verb == u"notes" && sub == u"list") {
            request.action = Action::notesList;
            error = takesAtMost(1, command);
            takesJson = true;
        } else if (verb == u"notes" && sub == u"show") {
            request.action = Action::notesShow;
            error = takeId(command, false);
            takesJson = true;
        } else if (verb == u"notes" && sub == u"new") {
            request.action = Action::notesNew;
            error = takesAtMost(2, command);
            if (args.size() == 2)
                request.text = args.at(1);
        } else if (verb == u"notes" && (sub == u"next" || sub == u"previous")) {
            request.action = sub == u"next" ? Action::notesNext : Action::notesPrevious;
            error = takesAtMost(1, command);
        } else if (verb == u"notes" && sub == u"delete") {
            request.action = Action::notesDelete;
            error = takeId(command, false);
        } else if (verb == u"notes" && sub == u"promote") {
            request.action = Action::notesPromote;
            error = takeId(command, false);
        } else if (verb == u"notes" && sub == u"jump") {
            request.action = Action::notesJump;
            error = takeId(command, true);
        } else if (verb == u"void" && sub == u"list") {
            request.action = Action::voidList;
            error = takesAtMost(1, command);
            takesJson = true;
        } else if (verb == u"void" && sub == u"restore") {
            request.action = Action::voidRestore;
            error = takeId(command, true);
        } else if (verb == u"void" && sub == u"empty") {
            request.action = Action::voidEmpty;
            error = takesAtMost(1, command);
        } else if (sub.isEmpty()) {
            return CliError{verb == u"notes"
                                ? QStringLiteral("\"notes\" needs one of list, show, new, next, previous, delete, "
                                                 "promote, jump")
                                : QStringLiteral("\"void\" needs one of list, restore, empty")};
        } else {
            return CliError{QStringLiteral("unknown command \"%1\"").arg(command)};
        }
    } else if (verb == u"slots") {
        request.action = Action::slotNotes;
        error = takesAtMost(0, verb);
        takesJson = true;
    } else if (verb == u"search") {
        request.action = Action::search;
        if (args.isEmpty())
            return CliError{QStringLiteral("\"search\" needs a QUERY")};
        // Words after the verb are one query, so quoting is optional.
        request.query = args.join(u' ');
        takesJson = true;
    } else if (verb == u"backup") {
        request.action = Action::backup;
        error = takesAtMost(0, verb);
    } else if (verb == u"import-legacy") {
        request.action = Action::importLegacy;
        if (args.isEmpty())
            return CliError{QStringLiteral("\"import-legacy\" needs the FILE of a legacy database")};
        error = takesAtMost(1, verb);
        request.file = args.value(0);
    } else if (verb == u"reset") {
        const QString what = args.value(0);
        if (what == u"preferences")
            request.action = Action::resetPreferences;
        else if (what == u"factory")
            request.action = Action::resetFactory;
        else
            return CliError{what.isEmpty() ? QStringLiteral("\"reset\" needs \"preferences\" or \"factory\"")
                                           : QStringLiteral("unknown command \"reset %1\"").arg(what)};
        error = takesAtMost(1, verb % u' ' % what);
    } else {
        return CliError{QStringLiteral("unknown command \"%1\"").arg(verb)};
    }
    if (error)
        return *error;
    if (m_options.json && !takesJson)
        return CliError{QStringLiteral("--json does not apply to \"%1\"").arg(QString(verb % u' ' % args.value(0)).trimmed())};
    return request;
}

std::optional<DataDirCommand::Failure> DataDirCommand::readNoteText(Request &request)
{
    if (request.action != Action::notesNew || request.text)
        return std::nullopt;
    // Without TEXT the note is read from standard input, typed or piped, to its end.
    if (::isatty(::fileno(m_in)))
        std::fputs("Type the note, then press Ctrl-D on a line of its own.\n", m_err);
    QFile input;
    if (!input.open(m_in, QIODevice::ReadOnly))
        return Failure{kExitFailure, QStringLiteral("cannot read standard input")};
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(input.readAll());
    if (decoder.hasError())
        return Failure{kExitBadUsage, QStringLiteral("standard input is not valid UTF-8 text")};
    // Nothing read is a plain new note, as the app's "new" makes.
    if (!text.isEmpty())
        request.text = text;
    return std::nullopt;
}

int DataDirCommand::run()
{
    auto parsed = parse();
    if (const auto *error = std::get_if<CliError>(&parsed)) {
        fail({kExitBadUsage, error->message});
        std::fputs("Try 'scrivlet-cli --help'.\n", m_err);
        return kExitBadUsage;
    }
    Request request = std::get<Request>(std::move(parsed));
    // Standard input is read before the folder is touched, so bad input changes nothing.
    if (const auto failure = readNoteText(request))
        return fail(*failure);

    // The store's diagnostics are for the app's log, not for the person at the terminal;
    // QT_LOGGING_RULES still brings them back. Warnings stay.
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false\n*.info=false"));

    auto opened = DataFolder::open(m_options.dataDir);
    if (!opened)
        return fail({kExitFailure, opened.error()});
    m_folder = std::move(opened).value();
    m_pills = std::make_unique<MessagePillPrinter>(m_folder->bus(), m_err);

    m_folder->start();
    // What the start-up queued (placing notes without a position, the reload after it)
    // runs before the user's command, as in the app before the first keystroke.
    settle();
    reopenLastNote();
    m_pills->clearTurnedDown();

    const int status = perform(request);

    if (request.action == Action::resetFactory) {
        // The stack in memory still holds the notes just wiped: like the app, the run
        // ends here without saving them back.
        m_folder->settings().sync();
    } else {
        settle();
        // A reset leaves the settings as defaults, without even the open note.
        if (request.action != Action::resetPreferences)
            rememberOpenNote();
        m_folder->quit();
    }
    std::fflush(m_out);
    return status;
}

int DataDirCommand::perform(const Request &request)
{
    switch (request.action) {
    case Action::notesList:
        return listStack();
    case Action::notesShow:
        return show(request);
    case Action::notesNew:
        return newNote(request);
    case Action::notesNext:
        return walk(true);
    case Action::notesPrevious:
        return walk(false);
    case Action::notesDelete:
        return deleteNote(request);
    case Action::notesPromote:
        return promote(request);
    case Action::notesJump:
        return jump(request);
    case Action::voidList:
        return listTheVoid();
    case Action::voidRestore:
        return restore(request);
    case Action::voidEmpty:
        return emptyTheVoid();
    case Action::slotNotes:
        return listSlots();
    case Action::search:
        return search(request);
    case Action::backup:
        return backup();
    case Action::importLegacy:
        return importLegacy(request);
    case Action::resetPreferences:
        return reset(false);
    case Action::resetFactory:
        return reset(true);
    }
    return kExitFailure;
}

// ---- the open note between runs -----------------------------------------------------------

void DataDirCommand::reopenLastNote()
{
    CoreDataNotesManager &notes = m_folder->notes();
    const QUuid id = QUuid::fromString(m_folder->settings().value(QString::fromLatin1(kOpenNoteKey)).toString());
    if (!id.isNull() && id != notes.currentNoteId()) {
        // A note deleted, emptied or moved to a slot since is simply not reopened: the
        // start-up has already opened the newest.
        const auto note = m_folder->store().fetchNote(id);
        if (note && !note->softDeleted && !note->isSlotted)
            openQuietly(id);
    }
    // The note reopened is where this run starts: leaving it is the first move.
    notes.cleanUpAfterMove(SwipeDirection::none);
}

void DataDirCommand::rememberOpenNote()
{
    const auto id = m_folder->notes().currentNoteId();
    const QString key = QString::fromLatin1(kOpenNoteKey);
    if (id)
        m_folder->settings().setValue(key, idText(*id));
    else
        m_folder->settings().remove(key);
}

void DataDirCommand::openQuietly(const QUuid &id)
{
    CoreDataNotesManager &notes = m_folder->notes();
    const NoteViewModelList &loaded = notes.noteViewModels();
    for (std::size_t i = 0; i < loaded.size(); ++i) {
        if (loaded[i]->id() == id) {
            notes.setCurrentIndex(int(i));
            return;
        }
    }
    // Further down than the loaded part of the stack: loaded with the notes in between.
    m_pills->setMuted(true);
    notes.jumpToNote(id);
    m_pills->setMuted(false);
}

void DataDirCommand::settle()
{
    // Work queued for the main loop queues more in turn: the placing of notes at start
    // posts "refetchNotes", whose reload is queued again. Each round runs what the one
    // before it queued, and the saves at quit then write what the reloaded stack holds.
    constexpr int kRounds = 4;
    for (int round = 0; round < kRounds; ++round) {
        QEventLoop loop;
        QTimer::singleShot(0, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

// ---- output -------------------------------------------------------------------------------

int DataDirCommand::fail(const Failure &failure) const
{
    std::fputs(QString(QStringLiteral("scrivlet-cli: ") % failure.message % u'\n').toUtf8().constData(), m_err);
    return failure.status;
}

void DataDirCommand::print(const QString &text) const
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), m_out);
}

void DataDirCommand::printJson(const QJsonValue &value) const
{
    const QJsonDocument document = value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    const QByteArray bytes = document.toJson(QJsonDocument::Indented);
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), m_out);
}

int DataDirCommand::reportOpenNote()
{
    if (m_pills->turnedDown())
        return kExitFailure;
    CoreDataNotesManager &notes = m_folder->notes();
    if (m_folder->commands().isInSlottedPane(false)) {
        if (const auto slot = notes.currentSlottedNote())
            print(NoteListing::slotLine(slot->note(), true) % u'\n');
    } else if (const auto open = notes.currentNote()) {
        print(NoteListing::stackLine(open->note(), true) % u'\n');
    }
    return 0;
}

// ---- finding a note ----------------------------------------------------------------------

std::variant<Note, DataDirCommand::Failure> DataDirCommand::resolve(const QString &text, Scope scope)
{
    CoreDataManager &store = m_folder->store();
    std::optional<Note> found;
    const QUuid whole = QUuid::fromString(text.trimmed());
    if (!whole.isNull()) {
        found = store.fetchNote(whole);
    } else {
        const QString prefix = idDigits(text);
        std::vector<Note> candidates = store.fetchAll(true);
        std::vector<Note> trash = store.fetchTrash();
        candidates.insert(candidates.end(), trash.begin(), trash.end());
        for (Note &note : candidates) {
            if (!note.id.toString(QUuid::Id128).startsWith(prefix))
                continue;
            if (found)
                return Failure{kExitBadUsage,
                               QStringLiteral("the ID \"%1\" fits more than one note; give more of it").arg(text)};
            found = std::move(note);
        }
    }
    if (!found)
        return Failure{kExitFailure, QStringLiteral("no note has the ID \"%1\"").arg(text)};
    const QString id = idText(found->id);
    if (scope == Scope::live && found->softDeleted)
        return Failure{kExitFailure,
                       QStringLiteral("note %1 is in The Void; bring it back with \"void restore %1\"").arg(id)};
    if (scope == Scope::inTheVoid && !found->softDeleted)
        return Failure{kExitFailure, QStringLiteral("note %1 is not in The Void").arg(id)};
    return *std::move(found);
}

// ---- the stack ----------------------------------------------------------------------------

int DataDirCommand::listStack()
{
    // The whole stack, not only the part the app keeps loaded, oldest first as it is
    // walked with "previous" from the front.
    const std::vector<Note> notes = m_folder->store().fetchAll(false);
    if (m_options.json) {
        printJson(NoteJson::toArray(notes));
        return 0;
    }
    const auto open = m_folder->notes().currentNoteId();
    QString text;
    for (const Note &note : notes)
        text += NoteListing::stackLine(note, note.id == open) % u'\n';
    print(text);
    return 0;
}

int DataDirCommand::show(const Request &request)
{
    Note note;
    if (request.id.isEmpty()) {
        const auto open = m_folder->notes().currentNote();
        if (!open)
            return fail({kExitFailure, QStringLiteral("no note is open")});
        note = open->note();
    } else {
        auto found = resolve(request.id, Scope::anywhere);
        if (const auto *failure = std::get_if<Failure>(&found))
            return fail(*failure);
        note = std::get<Note>(std::move(found));
    }
    if (m_options.json) {
        printJson(NoteJson::toObject(note));
        return 0;
    }
    // The text as it is, with its links in full as all text that leaves a note, ending in
    // a line break so the prompt starts on a line of its own.
    const QString text = expandAllScrivlinks(note.content, note.scrivlinkManager->scrivlinks);
    print(text.endsWith(u'\n') || text.isEmpty() ? text : text % u'\n');
    return 0;
}

int DataDirCommand::newNote(const Request &request)
{
    NoteCommands &commands = m_folder->commands();
    CoreDataNotesManager &notes = m_folder->notes();
    if (!request.text || commands.isInSlottedPane(false)) {
        commands.newNote(false, false);
        return reportOpenNote();
    }
    notes.newNote(request.text, false);
    notes.cleanUpAfterMove(SwipeDirection::jump);
    // The text is stored even where the stack would not make another note ("Use this
    // note"): the command did what it was asked.
    m_pills->clearTurnedDown();
    if (const auto open = notes.currentNote())
        print(idText(open->id()) % u'\n');
    return 0;
}

int DataDirCommand::walk(bool towardsNewer)
{
    NoteCommands &commands = m_folder->commands();
    if (towardsNewer)
        commands.next(false);
    else
        commands.previous(false);
    return reportOpenNote();
}

int DataDirCommand::deleteNote(const Request &request)
{
    CoreDataNotesManager &notes = m_folder->notes();
    std::optional<Note> target;
    if (!request.id.isEmpty()) {
        auto found = resolve(request.id, Scope::live);
        if (const auto *failure = std::get_if<Failure>(&found))
            return fail(*failure);
        target = std::get<Note>(std::move(found));
    }
    // The command is the confirmation the app asks for: "Send to The Void".
    m_folder->alerts().queueAnswer(0);
    if (target && target->isSlotted) {
        notes.deleteNote(std::make_shared<NoteViewModel>(*target));
    } else if (target && target->id != notes.currentNoteId()) {
        // The app deletes the open note; deleting another leaves the open one open.
        const auto wasOpen = notes.currentNoteId();
        openQuietly(target->id);
        notes.cleanUpAfterMove(SwipeDirection::none);
        m_folder->commands().deleteOpenNote(false);
        if (wasOpen && !notes.deletedNotes().contains(*wasOpen)) {
            openQuietly(*wasOpen);
            notes.cleanUpAfterMove(SwipeDirection::none);
        }
    } else {
        m_folder->commands().deleteOpenNote(false);
    }
    m_folder->alerts().clear();
    return reportOpenNote();
}

int DataDirCommand::promote(const Request &request)
{
    if (request.id.isEmpty()) {
        m_folder->commands().promoteOpenNote(false);
        return reportOpenNote();
    }
    auto found = resolve(request.id, Scope::live);
    if (const auto *failure = std::get_if<Failure>(&found))
        return fail(*failure);
    const Note &note = std::get<Note>(found);
    if (note.isSlotted)
        m_folder->bus().postMessagePill(QStringLiteral("Slotted notes cannot be moved to front"),
                                        MessagePillTypes::warning());
    else
        m_folder->notes().promoteNote(note.id);
    return reportOpenNote();
}

int DataDirCommand::jump(const Request &request)
{
    auto found = resolve(request.id, Scope::live);
    if (const auto *failure = std::get_if<Failure>(&found))
        return fail(*failure);
    const Note &note = std::get<Note>(found);
    CoreDataNotesManager &notes = m_folder->notes();
    notes.jumpToNote(note.id);
    if (m_pills->turnedDown())
        return kExitFailure;
    if (note.isSlotted) {
        if (const auto slot = notes.currentSlottedNote())
            print(NoteListing::slotLine(slot->note(), true) % u'\n');
        return 0;
    }
    notes.cleanUpAfterMove(SwipeDirection::jump);
    return reportOpenNote();
}

// ---- The Void -------------------------------------------------------------------------------

int DataDirCommand::listTheVoid()
{
    TrashManager trash(m_folder->store(), m_folder->settings(), m_folder->bus(), m_folder->alerts(),
                       m_folder->clock());
    const std::vector<Note> notes = trash.notes();
    if (m_options.json) {
        printJson(NoteJson::toArray(notes));
        return 0;
    }
    if (notes.empty()) {
        print(QStringLiteral("The Void is empty\nDeleted notes will drift here\n"));
        return 0;
    }
    QString text = TrashManager::lostSouls(int(notes.size())) % u'\n';
    for (const Note &note : notes)
        text += NoteListing::voidLine(note) % u'\n';
    print(text);
    return 0;
}

int DataDirCommand::restore(const Request &request)
{
    auto found = resolve(request.id, Scope::inTheVoid);
    if (const auto *failure = std::get_if<Failure>(&found))
        return fail(*failure);
    TrashManager trash(m_folder->store(), m_folder->settings(), m_folder->bus(), m_folder->alerts(),
                       m_folder->clock());
    if (!trash.restore(std::get<Note>(found).id))
        return fail({kExitFailure, QStringLiteral("the note could not be restored")});
    return 0;
}

int DataDirCommand::emptyTheVoid()
{
    TrashManager trash(m_folder->store(), m_folder->settings(), m_folder->bus(), m_folder->alerts(),
                       m_folder->clock());
    // The command is the confirmation: "Empty The Void".
    m_folder->alerts().queueAnswer(0);
    trash.emptyFromMenu();
    m_folder->alerts().clear();
    if (trash.count() > 0)
        return fail({kExitFailure, QStringLiteral("The Void could not be emptied")});
    return 0;
}

// ---- slots and search ---------------------------------------------------------------------------

int DataDirCommand::listSlots()
{
    CoreDataNotesManager &notes = m_folder->notes();
    std::vector<Note> slotted;
    for (const auto &model : notes.slottedNoteViewModels())
        slotted.push_back(model->note());
    if (m_options.json) {
        printJson(NoteJson::toArray(slotted));
        return 0;
    }
    QString text;
    for (std::size_t i = 0; i < slotted.size(); ++i)
        text += NoteListing::slotLine(slotted[i], int(i) == notes.slottedIndex()) % u'\n';
    print(text);
    return 0;
}

int DataDirCommand::search(const Request &request)
{
    const std::vector<Note> found = m_folder->notes().searchNotes(request.query);
    if (m_options.json) {
        printJson(NoteJson::toArray(found));
        return 0;
    }
    if (found.empty()) {
        std::fputs(QString(QStringLiteral("No note holds \"") % request.query % QStringLiteral("\"\n")).toUtf8().constData(),
                   m_err);
        return 0;
    }
    QString text;
    for (const Note &note : found)
        text += NoteListing::searchLine(note) % u'\n';
    print(text);
    return 0;
}

// ---- files ------------------------------------------------------------------------------------

int DataDirCommand::backup()
{
    BackupManager backups(m_folder->stack(), m_folder->store(), m_folder->settings(), m_folder->clock());
    const auto made = backups.backupNow();
    if (!made)
        return fail({kExitFailure, made.error()});
    print(*made % u'\n');
    return 0;
}

int DataDirCommand::importLegacy(const Request &request)
{
    LegacyImporter importer(m_folder->stack(), m_folder->store(), m_folder->settings(), m_folder->clock());
    const LegacyImportResult result = importer.importFromFile(request.file);
    if (!result.ok)
        return fail({kExitFailure, result.message});
    print(result.message % u'\n');
    // The imported notes take their places in the stack as the app shows it.
    m_folder->bus().post(QStringLiteral("refetchNotes"));
    return 0;
}

int DataDirCommand::reset(bool factory)
{
    if (!factory) {
        AppReset::resetPreferences(m_folder->settings());
        print(QStringLiteral("Preferences reset\n"));
        return 0;
    }
    const AppReset::Outcome outcome =
        AppReset::resetToFactorySettings(m_folder->settings(), m_folder->stack(), m_folder->store());
    for (const QString &file : outcome.removedFiles)
        print(QStringLiteral("removed ") % file % u'\n');
    if (!outcome.ok()) {
        for (const QString &failure : outcome.failures)
            fail({kExitFailure, failure});
        return kExitFailure;
    }
    print(QStringLiteral("App reset to factory settings\n"));
    return 0;
}

} // namespace scrivlet::cli
