#pragma once

#include "notes/CDNote.h"
#include "notes/Note.h"
#include "notes/NotePredicate.h"
#include "notes/NoteViewModel.h"
#include "notes/SearchCatalogue.h"
#include "notes/SearchResult.h"
#include "notes/Transaction.h"
#include "shell/preferences/NotesPreferences.h"

#include <QDateTime>
#include <QUuid>

#include <map>
#include <memory>
#include <optional>
#include <vector>

class QDeadlineTimer;

namespace scrivlet {

class Clock;
class CoreDataStack;
class Database;
class LocalEditRecorder;
class PendingChangeSink;
class SettingsStore;
class Statement;

// The one gate to the store: every query, every write, and the hand-over of saved
// notes to sync. Writes gather in an open transaction, the counterpart of an object
// context; `save` commits them and tells sync which notes were written. A failed save
// keeps the changes pending, so the next save tries them again.
//
// Used on the main thread only.
class CoreDataManager {
    Q_DISABLE_COPY_MOVE(CoreDataManager)

public:
    static constexpr qint64 kIndexStep = 10000;

    CoreDataManager(CoreDataStack &stack, SettingsStore &settings, const Clock &clock);
    ~CoreDataManager();

    // Tutorial notes are dated here so they sort before anything the user writes.
    static QDateTime onboardingAnchorDate() { return QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC); }
    bool isImporting() const { return m_isImporting; }
    void setIsImporting(bool importing) { m_isImporting = importing; }
    bool isReloadingFromImport() const { return m_isReloadingFromImport; }
    void setIsReloadingFromImport(bool reloading) { m_isReloadingFromImport = reloading; }

    // Seams for sync; both may be null. Neither is owned.
    void setPendingChangeSink(PendingChangeSink *sink) { m_sink = sink; }
    void setLocalEditRecorder(LocalEditRecorder *recorder) { m_recorder = recorder; }

    // Queries. A failed fetch is logged and gives an empty result.
    std::optional<CDNote> fetchRow(const QUuid &id);
    std::optional<Note> fetchNote(const QUuid &id);
    std::vector<Note> fetchAll(bool includeSlotted);
    std::vector<Note> fetchAfter(const Note &note, int limit);
    std::vector<Note> fetchBefore(const Note &note, int limit);
    std::vector<Note> fetchLatest(int limit, bool slotted);
    std::vector<Note> fetchMatching(const NotePredicate &predicate);
    std::vector<Note> fetchTrash();
    int countTrash();
    // Live stack notes with `lower <= dbIndex < upper`, oldest first.
    std::vector<Note> fetchBetween(qint64 lower, qint64 upper);

    // Search (see `SearchResults`). Hits are the rows of live notes, slotted included, in
    // the order of `searchOrder`; texts are in the folded form of `TextFolding`.
    //
    // Every live note in that order, by `dbIndex` and then by row; null when the store
    // can't be read.
    std::shared_ptr<const SearchCatalogue::Order> searchOrder();
    // Whether the index can answer `foldedText`: three characters or more.
    static bool isIndexable(const QString &foldedText);
    // Every live note whose folded text holds `foldedText`, found through the index;
    // none when the store can't be read.
    std::optional<std::vector<qint64>> indexedSearch(const QString &foldedText);
    // Reads the folded texts of `order` from `from` on, appending each row that holds
    // `foldedText` to `hits`, until `maxNewHits` were added, `deadline` passed or the
    // order ended. Returns where it stopped; none when the store can't be read.
    std::optional<std::size_t> scanForText(const QString &foldedText, const SearchCatalogue::Order &order,
                                           std::size_t from, std::vector<qint64> &hits, qsizetype maxNewHits,
                                           QDeadlineTimer deadline);
    // What the search view shows of each row, in order: nil for a row that is no longer
    // a live note. Empty when the store can't be read.
    std::vector<std::optional<SearchResult>> fetchSearchResults(const std::vector<qint64> &rows);
    // The live notes among `rows`, whole, in that order.
    std::vector<Note> fetchNotesAt(const std::vector<qint64> &rows);
    // Rows of the stack, soft-deleted ones included.
    int countStackRows();

    // Writes; each ends in `save`.
    Note createNote();
    void saveNote(const Note &note);
    bool deleteRow(const QUuid &id);
    std::optional<qint64> moveToFront(const QUuid &id, bool touch);
    bool setContent(const QUuid &id, const QString &content);
    bool softDelete(const QUuid &id);
    bool deleteIfEmpty(const QUuid &id);
    bool save();

    // The Void. A restored note becomes the newest of the stack. The batch deletes
    // bypass the save path, so nothing goes to sync; they return how many rows went.
    bool restoreNote(const QUuid &id);
    bool permanentlyDelete(const QUuid &id);
    bool emptyTrash();
    int autoEmptyTrash(int days);
    int deleteNotesBefore(const QDateTime &date);

    // Repairs at start. Rows that share an `id` keep one copy; the slots are made whole,
    // and the number of slots filled is returned.
    int removeDuplicateNotes();
    int ensureSlots();
    // A tutorial note for a fresh stack, dated `created` and placed on top of every row.
    bool insertTutorialNote(const QString &content, const QDateTime &created);
    bool hasChanges() const { return !m_changes.empty(); }

    // The sparse index.
    qint64 nextDbIndex(bool isSlotted);
    qint64 nextTutorialDbIndex();
    static qint64 dbIndexBetween(qint64 lower, qint64 upper);

    // Whether the stored row of `note` is behind it in a way worth a save.
    bool noteDiffers(const Note &note);
    // The editor's save of a copy of a note. The lists are the loaded stack and the
    // slotted notes, either of which may be absent.
    void saveFromEditor(const Note &note, NoteViewModelList *noteViewModels, NoteViewModelList *slottedNoteViewModels);

    void migrateToSparseIndex();
    int positionUnplacedNotes(qint64 step = kIndexStep, qint64 base = kIndexStep);

    // The legacy import. Its writes gather in the context like any other and are saved
    // by the importer, batch by batch.
    bool containsNote(const QUuid &id);
    // Adds a whole row with its child rows, unsaved; the row's store identity, or none.
    std::optional<qint64> insertImportedNote(const CDNote &record);
    // Live stack rows without their child rows, by `dbIndex`; none when the fetch fails.
    std::optional<std::vector<CDNote>> fetchStackRows();
    // Gives a row its place in the stack and marks it as placed ("positioned").
    bool placeImportedNote(const CDNote &row, qint64 dbIndex);
    // Drops every unsaved write, so a failed import leaves the store as it was.
    void discardChanges();

private:
    enum class ChangeKind { inserted, updated, deleted };
    struct Change {
        ChangeKind kind;
        std::optional<QUuid> id;
        quint64 order;
    };

    bool beginWrite();
    void markInserted(qint64 objectId, const std::optional<QUuid> &id);
    void markUpdated(qint64 objectId, const std::optional<QUuid> &id);
    void markDeleted(qint64 objectId, const std::optional<QUuid> &id);
    bool commitContext(bool queueForSync);

    Statement *statement(const QString &sql);
    std::optional<std::vector<CDNote>> selectRecords(Statement &query, bool withChildren);
    bool loadChildren(CDNote &record);
    std::optional<CDNote> fetchRecord(const QUuid &id, bool withChildren);
    std::vector<Note> toNotes(const std::vector<CDNote> &records) const;
    std::optional<qint64> insertRecord(const CDNote &record);
    bool writeRecord(const CDNote &record);
    bool insertChildren(const CDNote &record);
    bool updateColumn(const QString &sql, qint64 objectId, const QVariant &value);
    std::vector<Note> fetchNotes(Statement *query, const QString &failure, bool reversed = false);
    std::optional<qint64> countWhere(const QString &where, const QVariantList &values);
    int batchDelete(const QString &where, const QVariantList &values, const char *failureLog);
    void foldSlotDuplicates(std::vector<CDNote> &group, const QDateTime &now);

    Database &m_db;
    SettingsStore &m_settings;
    NotesPreferences m_preferences;
    const Clock &m_clock;
    PendingChangeSink *m_sink = nullptr;
    LocalEditRecorder *m_recorder = nullptr;
    bool m_isImporting = false;
    bool m_isReloadingFromImport = false;

    std::optional<Transaction> m_context;
    std::map<qint64, Change> m_changes;
    quint64 m_changeCounter = 0;
    std::unique_ptr<SearchCatalogue> m_searchCatalogue;
};

} // namespace scrivlet
