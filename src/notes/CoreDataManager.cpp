#include "notes/CoreDataManager.h"

#include "notes/CoreDataStack.h"
#include "notes/Database.h"
#include "notes/LocalEditRecorder.h"
#include "notes/NoteConversion.h"
#include "notes/NotesLogging.h"
#include "notes/PendingChangeSink.h"
#include "notes/ReadTransaction.h"
#include "notes/SlottedNoteDefaults.h"
#include "notes/Statement.h"
#include "platform/Clock.h"
#include "platform/SettingsStore.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>

#include <algorithm>
#include <limits>

namespace scrivlet {

namespace {

const QString kLive = QStringLiteral("(softDeleted = 0 OR softDeleted IS NULL)");
const QString kNoteColumns = QStringLiteral(
    "objectId, ckChangeTag, ckSystemFields, content, created, dbIndex, deletedAt, id, isSlotted, isTutorial, "
    "lastModified, skippedURLs, slotIndex, softDeleted");
const QString kSelectNotes = QStringLiteral("SELECT ") % kNoteColumns % QStringLiteral(" FROM notes ");
const QString kSparseIndexKey = QStringLiteral("didSparseDbIndex_v1");
const QString kPositionedTag = QStringLiteral("positioned");
constexpr int kReindexBatch = 500;

QString uuidText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces);
}

std::optional<QUuid> uuidFrom(const std::optional<QString> &text)
{
    if (!text)
        return std::nullopt;
    const QUuid id(*text);
    // A damaged id reads as nil, and the note gets a fresh one like any other nil.
    return id.isNull() ? std::nullopt : std::optional<QUuid>(id);
}

std::optional<qint64> msecs(const std::optional<QDateTime> &date)
{
    // An invalid date has no instant to store; it is kept as nil.
    return date && date->isValid() ? std::optional<qint64>(date->toMSecsSinceEpoch()) : std::nullopt;
}

std::optional<QDateTime> dateFrom(const std::optional<qint64> &ms)
{
    return ms ? std::optional<QDateTime>(QDateTime::fromMSecsSinceEpoch(*ms, Qt::UTC)) : std::nullopt;
}

std::optional<QString> optionalUuidText(const std::optional<QUuid> &id)
{
    return id ? std::optional<QString>(uuidText(*id)) : std::nullopt;
}

std::optional<QString> skippedUrlsText(const std::optional<QStringList> &urls)
{
    if (!urls)
        return std::nullopt;
    return QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(*urls)).toJson(QJsonDocument::Compact));
}

std::optional<QStringList> skippedUrlsFrom(const std::optional<QString> &text)
{
    if (!text)
        return std::nullopt;
    QStringList urls;
    const QJsonArray array = QJsonDocument::fromJson(text->toUtf8()).array();
    for (const auto &value : array)
        urls.append(value.toString());
    return urls;
}

// The note's own columns, as ?1 to ?13 in the order of the insert and update statements.
Statement &bindNoteColumns(Statement &statement, const CDNote &record)
{
    return statement.bind(1, record.ckChangeTag)
        .bind(2, record.ckSystemFields)
        .bind(3, record.content)
        .bind(4, msecs(record.created))
        .bind(5, qint64(record.dbIndex))
        .bind(6, msecs(record.deletedAt))
        .bind(7, optionalUuidText(record.id))
        .bind(8, record.isSlotted)
        .bind(9, record.isTutorial)
        .bind(10, msecs(record.lastModified))
        .bind(11, skippedUrlsText(record.skippedURLs))
        .bind(12, qint64(record.slotIndex))
        .bind(13, record.softDeleted);
}

void bindVariant(Statement &statement, int index, const QVariant &value)
{
    if (!value.isValid() || value.isNull()) {
        statement.bindNull(index);
        return;
    }
    switch (value.metaType().id()) {
    case QMetaType::Bool:
        statement.bind(index, value.toBool());
        break;
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::Short:
        statement.bind(index, value.toLongLong());
        break;
    case QMetaType::Double:
    case QMetaType::Float:
        statement.bind(index, value.toDouble());
        break;
    case QMetaType::QDateTime:
        statement.bind(index, value.toDateTime().toMSecsSinceEpoch());
        break;
    case QMetaType::QUuid:
        statement.bind(index, uuidText(value.toUuid()));
        break;
    case QMetaType::QByteArray:
        statement.bind(index, value.toByteArray());
        break;
    default:
        statement.bind(index, value.toString());
        break;
    }
}

// A nil date sorts as the distant past.
qint64 sortKey(const std::optional<QDateTime> &date)
{
    return date ? date->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
}

} // namespace

CoreDataManager::CoreDataManager(CoreDataStack &stack, SettingsStore &settings, const Clock &clock)
    : m_db(stack.database()), m_settings(settings), m_preferences(settings), m_clock(clock)
{
}

CoreDataManager::~CoreDataManager()
{
    if (hasChanges())
        qCWarning(lcNotes) << "Store closed with" << m_changes.size() << "unsaved note changes";
}

Statement *CoreDataManager::statement(const QString &sql)
{
    Statement *statement = m_db.cached(sql);
    if (!statement)
        qCCritical(lcNotes).noquote() << "CoreDataManager: can't prepare" << sql << ":" << m_db.lastError();
    return statement;
}

// ---- reading ---------------------------------------------------------------

std::optional<std::vector<CDNote>> CoreDataManager::selectRecords(Statement &query, bool withChildren)
{
    std::vector<CDNote> records;
    for (;;) {
        const Statement::Step step = query.step();
        if (step == Statement::Step::Done)
            break;
        if (step == Statement::Step::Error)
            return std::nullopt;
        CDNote record;
        record.objectId = query.columnInt64(0);
        record.ckChangeTag = query.optionalText(1);
        record.ckSystemFields = query.optionalBlob(2);
        record.content = query.optionalText(3);
        record.created = dateFrom(query.optionalInt64(4));
        record.dbIndex = NoteConversion::narrow(query.columnInt64(5), "dbIndex");
        record.deletedAt = dateFrom(query.optionalInt64(6));
        record.id = uuidFrom(query.optionalText(7));
        record.isSlotted = query.columnInt64(8) != 0;
        record.isTutorial = query.columnInt64(9) != 0;
        record.lastModified = dateFrom(query.optionalInt64(10));
        record.skippedURLs = skippedUrlsFrom(query.optionalText(11));
        record.slotIndex = NoteConversion::narrow(query.columnInt64(12), "slotIndex");
        if (const auto softDeleted = query.optionalInt64(13))
            record.softDeleted = *softDeleted != 0;
        records.push_back(std::move(record));
    }
    if (withChildren) {
        for (CDNote &record : records) {
            if (!loadChildren(record))
                return std::nullopt;
        }
    }
    return records;
}

bool CoreDataManager::loadChildren(CDNote &record)
{
    // Rows come in the order they were written, which is the order the conversion
    // keeps among checklist rows of equal index.
    Statement *items = statement(QStringLiteral(
        "SELECT checked, content, id, \"index\", isHidden, responsibilityRangeLength, responsibilityRangeLocation, "
        "verticalPosition FROM checklistItems WHERE note = ?1 ORDER BY objectId"));
    Statement *links = statement(
        QStringLiteral("SELECT currentRangeLength, currentRangeLocation, fullUrl, id, shortenedUrl FROM scrivlinks "
                       "WHERE note = ?1 ORDER BY objectId"));
    Statement *attachments = statement(
        QStringLiteral("SELECT created, fileName, fileSize, fileType, fileUrl, id, locationType, mimeType, sortOrder "
                       "FROM attachments WHERE note = ?1 ORDER BY objectId"));
    if (!items || !links || !attachments)
        return false;

    items->bind(1, record.objectId);
    Statement::Step step;
    while ((step = items->step()) == Statement::Step::Row) {
        CDChecklistItem item;
        item.checked = items->columnInt64(0) != 0;
        item.content = items->optionalText(1);
        item.id = uuidFrom(items->optionalText(2));
        item.index = NoteConversion::narrow(items->columnInt64(3), "checklist index");
        item.isHidden = items->columnInt64(4) != 0;
        item.responsibilityRangeLength = NoteConversion::narrow(items->columnInt64(5), "checklist range length");
        item.responsibilityRangeLocation = NoteConversion::narrow(items->columnInt64(6), "checklist range location");
        item.verticalPosition = items->columnDouble(7);
        record.checklistItems.push_back(std::move(item));
    }
    if (step == Statement::Step::Error) {
        qCWarning(lcNotes).noquote() << "Error fetching checklist rows:" << items->lastError();
        return false;
    }

    links->bind(1, record.objectId);
    while ((step = links->step()) == Statement::Step::Row) {
        CDScrivlink link;
        link.currentRangeLength = NoteConversion::narrow(links->columnInt64(0), "link range length");
        link.currentRangeLocation = NoteConversion::narrow(links->columnInt64(1), "link range location");
        link.fullUrl = links->optionalText(2);
        link.id = uuidFrom(links->optionalText(3));
        link.shortenedUrl = links->optionalText(4);
        record.scrivlinks.push_back(std::move(link));
    }
    if (step == Statement::Step::Error) {
        qCWarning(lcNotes).noquote() << "Error fetching links:" << links->lastError();
        return false;
    }

    attachments->bind(1, record.objectId);
    while ((step = attachments->step()) == Statement::Step::Row) {
        CDAttachment attachment;
        attachment.created = dateFrom(attachments->optionalInt64(0));
        attachment.fileName = attachments->optionalText(1);
        attachment.fileSize = attachments->columnInt64(2);
        attachment.fileType = attachments->optionalText(3);
        attachment.fileUrl = attachments->optionalText(4);
        attachment.id = uuidFrom(attachments->optionalText(5));
        attachment.locationType = attachments->optionalText(6);
        attachment.mimeType = attachments->optionalText(7);
        attachment.sortOrder = NoteConversion::narrow(attachments->columnInt64(8), "attachment sortOrder");
        record.attachments.push_back(std::move(attachment));
    }
    if (step == Statement::Step::Error) {
        qCWarning(lcNotes).noquote() << "Error fetching attachments:" << attachments->lastError();
        return false;
    }
    return true;
}

std::optional<CDNote> CoreDataManager::fetchRecord(const QUuid &id, bool withChildren)
{
    Statement *query = statement(kSelectNotes % QStringLiteral("WHERE id = ?1 LIMIT 1"));
    if (!query)
        return std::nullopt;
    query->bind(1, uuidText(id));
    auto records = selectRecords(*query, withChildren);
    if (!records) {
        qCWarning(lcNotes).noquote() << "Error fetching note" << uuidText(id) << ":" << query->lastError();
        return std::nullopt;
    }
    if (records->empty())
        return std::nullopt;
    return std::move(records->front());
}

std::vector<Note> CoreDataManager::toNotes(const std::vector<CDNote> &records) const
{
    std::vector<Note> notes;
    notes.reserve(records.size());
    for (const CDNote &record : records)
        notes.push_back(NoteConversion::toNote(record, m_clock));
    return notes;
}

std::optional<CDNote> CoreDataManager::fetchRow(const QUuid &id)
{
    return fetchRecord(id, true);
}

std::optional<Note> CoreDataManager::fetchNote(const QUuid &id)
{
    const auto record = fetchRecord(id, true);
    if (!record)
        return std::nullopt;
    return NoteConversion::toNote(*record, m_clock);
}

std::vector<Note> CoreDataManager::fetchAll(bool includeSlotted)
{
    Statement *query = statement(kSelectNotes % QStringLiteral("WHERE ") % kLive %
                                 (includeSlotted ? QString() : QStringLiteral(" AND isSlotted = 0")) %
                                 QStringLiteral(" ORDER BY dbIndex ASC, objectId ASC"));
    return fetchNotes(query, QStringLiteral("Error fetching all notes: "));
}

std::vector<Note> CoreDataManager::fetchAfter(const Note &note, int limit)
{
    Statement *query = statement(kSelectNotes % QStringLiteral("WHERE ") % kLive %
                                 QStringLiteral(" AND dbIndex > ?1 AND isSlotted = 0 "
                                                "ORDER BY dbIndex ASC, objectId ASC LIMIT ?2"));
    if (query)
        query->bind(1, note.dbIndex).bind(2, limit);
    return fetchNotes(query, QStringLiteral("Error fetching notes after dbIndex %1: ").arg(note.dbIndex));
}

std::vector<Note> CoreDataManager::fetchBefore(const Note &note, int limit)
{
    Statement *query = statement(kSelectNotes % QStringLiteral("WHERE ") % kLive %
                                 QStringLiteral(" AND dbIndex < ?1 AND isSlotted = 0 "
                                                "ORDER BY dbIndex DESC, objectId DESC LIMIT ?2"));
    if (query)
        query->bind(1, note.dbIndex).bind(2, limit);
    // The nearest notes are fetched, and handed out oldest first.
    return fetchNotes(query, QStringLiteral("Error fetching notes before dbIndex %1: ").arg(note.dbIndex), true);
}

std::vector<Note> CoreDataManager::fetchLatest(int limit, bool slotted)
{
    Statement *query = statement(kSelectNotes % QStringLiteral("WHERE ") % kLive %
                                 QStringLiteral(" AND isSlotted = ?1 ORDER BY dbIndex DESC, objectId DESC LIMIT ?2"));
    if (query)
        query->bind(1, slotted).bind(2, slotted ? m_preferences.slotedNotesLimit() : limit);
    return fetchNotes(query, QStringLiteral("Error fetching latest "), true);
}

std::vector<Note> CoreDataManager::fetchMatching(const NotePredicate &predicate)
{
    // Predicates vary with the search, so they aren't kept prepared.
    Statement query = m_db.prepare(kSelectNotes % QStringLiteral("WHERE (") % predicate.where %
                                   QStringLiteral(") ORDER BY dbIndex ASC, objectId ASC"));
    if (!query.isValid()) {
        qCWarning(lcNotes).noquote() << "CoreDataManager: Error fetching notes with predicate: " << query.lastError();
        return {};
    }
    for (int i = 0; i < predicate.values.size(); ++i)
        bindVariant(query, i + 1, predicate.values.at(i));
    auto records = selectRecords(query, true);
    if (!records) {
        qCWarning(lcNotes).noquote() << "CoreDataManager: Error fetching notes with predicate: " << query.lastError();
        return {};
    }
    return toNotes(*records);
}

std::vector<Note> CoreDataManager::fetchTrash()
{
    Statement *query =
        statement(kSelectNotes % QStringLiteral("WHERE softDeleted = 1 ORDER BY deletedAt DESC, objectId DESC"));
    return fetchNotes(query, QStringLiteral("CoreDataManager: Error fetching The Void: "));
}

int CoreDataManager::countTrash()
{
    Statement *query = statement(QStringLiteral("SELECT count(*) FROM notes WHERE softDeleted = 1"));
    if (!query || query->step() != Statement::Step::Row) {
        qCWarning(lcNotes).noquote() << "CoreDataManager: Error counting The Void:"
                                     << (query ? query->lastError() : m_db.lastError());
        return 0;
    }
    const int trashed = query->columnInt(0);
    query->reset(); // a statement left on a row would pin an old snapshot of the file
    return trashed;
}

// ---- the sparse index --------------------------------------------------------

qint64 CoreDataManager::nextDbIndex(bool isSlotted)
{
    Statement *query = statement(QStringLiteral("SELECT max(dbIndex) FROM notes WHERE ") % kLive %
                                 QStringLiteral(" AND isSlotted = ?1"));
    if (query)
        query->bind(1, isSlotted);
    if (!query || query->step() != Statement::Step::Row) {
        qCWarning(lcNotes).noquote() << "Error fetching max dbIndex: "
                                     << (query ? query->lastError() : m_db.lastError());
        return kIndexStep;
    }
    const auto highest = query->optionalInt64(0);
    query->reset();
    return highest ? *highest + kIndexStep : kIndexStep;
}

qint64 CoreDataManager::nextTutorialDbIndex()
{
    // Over every row, slotted and deleted ones included, so a tutorial note never
    // shares an index with anything the user might bring back.
    Statement *query = statement(QStringLiteral("SELECT max(dbIndex) FROM notes"));
    if (!query || query->step() != Statement::Step::Row) {
        qCWarning(lcNotes).noquote() << "Error fetching max dbIndex: "
                                     << (query ? query->lastError() : m_db.lastError());
        return 1;
    }
    const auto highest = query->optionalInt64(0);
    query->reset();
    return highest ? *highest + 1 : 1;
}

qint64 CoreDataManager::dbIndexBetween(qint64 lower, qint64 upper)
{
    const qint64 gap = upper - lower;
    return gap > 1 ? lower + gap / 2 : lower + 1;
}

// ---- the context -------------------------------------------------------------

bool CoreDataManager::beginWrite()
{
    if (m_context && m_context->isActive())
        return true;
    m_context.emplace(m_db);
    if (!m_context->isActive()) {
        qCWarning(lcNotes).noquote() << "cloudsync - save error: " << m_context->lastError();
        m_context.reset();
        return false;
    }
    return true;
}

void CoreDataManager::markInserted(qint64 objectId, const std::optional<QUuid> &id)
{
    m_changes[objectId] = Change{ChangeKind::inserted, id, m_changeCounter++};
}

void CoreDataManager::markUpdated(qint64 objectId, const std::optional<QUuid> &id)
{
    auto it = m_changes.find(objectId);
    if (it == m_changes.end()) {
        m_changes.emplace(objectId, Change{ChangeKind::updated, id, m_changeCounter++});
        return;
    }
    // A note inserted and then changed before the save is still just new.
    it->second.id = id;
}

void CoreDataManager::markDeleted(qint64 objectId, const std::optional<QUuid> &id)
{
    auto it = m_changes.find(objectId);
    if (it != m_changes.end() && it->second.kind == ChangeKind::inserted) {
        // Never saved, so there is nothing for the other machines to remove.
        m_changes.erase(it);
        return;
    }
    m_changes[objectId] = Change{ChangeKind::deleted, id, m_changeCounter++};
}

bool CoreDataManager::commitContext(bool queueForSync)
{
    if (!m_context || !m_context->isActive()) {
        m_changes.clear();
        return true;
    }

    std::vector<const Change *> ordered;
    ordered.reserve(m_changes.size());
    for (const auto &entry : m_changes)
        ordered.push_back(&entry.second);
    std::sort(ordered.begin(), ordered.end(), [](const Change *a, const Change *b) { return a->order < b->order; });

    QList<QUuid> saves;
    QList<QUuid> deletions;
    if (queueForSync) {
        for (const Change *change : ordered) {
            // Only note rows are collected; a row without an id can't be a record.
            if (!change->id)
                continue;
            switch (change->kind) {
            case ChangeKind::inserted:
                qCDebug(lcNotes).noquote() << "Queuing new note" << uuidText(*change->id);
                saves.append(*change->id);
                break;
            case ChangeKind::updated:
                saves.append(*change->id);
                break;
            case ChangeKind::deleted:
                deletions.append(*change->id);
                break;
            }
        }
    }

    if (!m_context->commit()) {
        if (queueForSync)
            qCWarning(lcNotes).noquote() << "cloudsync - save error: " << m_context->lastError();
        else
            qCWarning(lcNotes).noquote() << "Error saving the store:" << m_context->lastError();
        if (!m_context->isActive()) {
            // SQLite undid the whole transaction itself: nothing is left to retry.
            m_context.reset();
            m_changes.clear();
        }
        return false;
    }
    m_context.reset();
    m_changes.clear();

    if (queueForSync && m_sink && m_preferences.syncWithICloud()) {
        if (!saves.isEmpty())
            m_sink->addPendingSaves(saves);
        if (!deletions.isEmpty())
            m_sink->addPendingDeletions(deletions);
    }
    return true;
}

bool CoreDataManager::save()
{
    if (!hasChanges()) {
        // A transaction holding no tracked change has nothing to say; end it.
        if (m_context && m_context->isActive())
            return commitContext(true);
        return true;
    }
    return commitContext(true);
}

// ---- writing -----------------------------------------------------------------

std::optional<qint64> CoreDataManager::insertRecord(const CDNote &record)
{
    if (!beginWrite())
        return std::nullopt;
    Statement *insert = statement(QStringLiteral(
        "INSERT INTO notes (ckChangeTag, ckSystemFields, content, created, dbIndex, deletedAt, id, isSlotted, "
        "isTutorial, lastModified, skippedURLs, slotIndex, softDeleted) "
        "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13)"));
    if (!insert)
        return std::nullopt;
    bindNoteColumns(*insert, record);
    if (!insert->exec()) {
        qCWarning(lcNotes).noquote() << "Error inserting a note:" << insert->lastError();
        return std::nullopt;
    }
    CDNote stored = record;
    stored.objectId = m_db.lastInsertRowId();
    if (!insertChildren(stored))
        return std::nullopt;
    markInserted(stored.objectId, stored.id);
    return stored.objectId;
}

bool CoreDataManager::insertChildren(const CDNote &record)
{
    Statement *item = statement(QStringLiteral(
        "INSERT INTO checklistItems (note, checked, content, id, \"index\", isHidden, responsibilityRangeLength, "
        "responsibilityRangeLocation, verticalPosition) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9)"));
    Statement *link = statement(QStringLiteral(
        "INSERT INTO scrivlinks (note, currentRangeLength, currentRangeLocation, fullUrl, id, shortenedUrl) "
        "VALUES (?1, ?2, ?3, ?4, ?5, ?6)"));
    Statement *attachment = statement(QStringLiteral(
        "INSERT INTO attachments (note, created, fileName, fileSize, fileType, fileUrl, id, locationType, mimeType, "
        "sortOrder) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)"));
    if (!item || !link || !attachment)
        return false;

    for (const CDChecklistItem &row : record.checklistItems) {
        item->reset();
        item->bind(1, record.objectId)
            .bind(2, row.checked)
            .bind(3, row.content)
            .bind(4, optionalUuidText(row.id))
            .bind(5, qint64(row.index))
            .bind(6, row.isHidden)
            .bind(7, qint64(row.responsibilityRangeLength))
            .bind(8, qint64(row.responsibilityRangeLocation))
            .bind(9, row.verticalPosition);
        if (!item->exec()) {
            qCWarning(lcNotes).noquote() << "Error writing a checklist row:" << item->lastError();
            return false;
        }
    }
    for (const CDScrivlink &row : record.scrivlinks) {
        link->reset();
        link->bind(1, record.objectId)
            .bind(2, qint64(row.currentRangeLength))
            .bind(3, qint64(row.currentRangeLocation))
            .bind(4, row.fullUrl)
            .bind(5, optionalUuidText(row.id))
            .bind(6, row.shortenedUrl);
        if (!link->exec()) {
            qCWarning(lcNotes).noquote() << "Error writing a link:" << link->lastError();
            return false;
        }
    }
    for (const CDAttachment &row : record.attachments) {
        attachment->reset();
        attachment->bind(1, record.objectId)
            .bind(2, msecs(row.created))
            .bind(3, row.fileName)
            .bind(4, row.fileSize)
            .bind(5, row.fileType)
            .bind(6, row.fileUrl)
            .bind(7, optionalUuidText(row.id))
            .bind(8, row.locationType)
            .bind(9, row.mimeType)
            .bind(10, qint64(row.sortOrder));
        if (!attachment->exec()) {
            qCWarning(lcNotes).noquote() << "Error writing an attachment:" << attachment->lastError();
            return false;
        }
    }
    return true;
}

bool CoreDataManager::writeRecord(const CDNote &record)
{
    if (!beginWrite())
        return false;
    // The row and its children change together or not at all.
    if (!m_db.exec(QStringLiteral("SAVEPOINT writeNote"))) {
        qCWarning(lcNotes).noquote() << "Error writing note:" << m_db.lastError();
        return false;
    }
    auto undo = [this] {
        m_db.exec(QStringLiteral("ROLLBACK TO writeNote; RELEASE writeNote"));
        return false;
    };

    Statement *update = statement(QStringLiteral(
        "UPDATE notes SET ckChangeTag = ?1, ckSystemFields = ?2, content = ?3, created = ?4, dbIndex = ?5, "
        "deletedAt = ?6, id = ?7, isSlotted = ?8, isTutorial = ?9, lastModified = ?10, skippedURLs = ?11, "
        "slotIndex = ?12, softDeleted = ?13 WHERE objectId = ?14"));
    if (!update)
        return undo();
    bindNoteColumns(*update, record).bind(14, record.objectId);
    if (!update->exec()) {
        qCWarning(lcNotes).noquote() << "Error writing note:" << update->lastError();
        return undo();
    }

    for (const char *table : {"checklistItems", "scrivlinks", "attachments"}) {
        Statement *clear =
            statement(QStringLiteral("DELETE FROM ") % QLatin1String(table) % QStringLiteral(" WHERE note = ?1"));
        if (!clear || !clear->bind(1, record.objectId).exec()) {
            qCWarning(lcNotes).noquote() << "Error replacing child rows:"
                                         << (clear ? clear->lastError() : m_db.lastError());
            return undo();
        }
    }
    if (!insertChildren(record))
        return undo();
    m_db.exec(QStringLiteral("RELEASE writeNote"));
    markUpdated(record.objectId, record.id);
    return true;
}

bool CoreDataManager::updateColumn(const QString &sql, qint64 objectId, const QVariant &value)
{
    if (!beginWrite())
        return false;
    Statement *update = statement(sql);
    if (!update)
        return false;
    bindVariant(*update, 1, value);
    update->bind(2, objectId);
    if (!update->exec()) {
        qCWarning(lcNotes).noquote() << "Error writing note:" << update->lastError();
        return false;
    }
    return true;
}

Note CoreDataManager::createNote()
{
    const QDateTime now = m_clock.now();
    CDNote record;
    record.id = QUuid::createUuid();
    record.created = now;
    record.lastModified = now;
    record.content = QStringLiteral("");
    record.dbIndex = NoteConversion::narrow(nextDbIndex(false), "dbIndex");
    record.isSlotted = false;
    record.softDeleted = false;
    if (insertRecord(record))
        save();
    return NoteConversion::toNote(record, m_clock);
}

void CoreDataManager::saveNote(const Note &note)
{
    auto record = fetchRecord(note.id, false);
    if (!record) {
        // Sync removed it meanwhile: the edit mustn't bring the note back.
        qCInfo(lcNotes).noquote() << "No stored note" << uuidText(note.id) << "to save into";
        return;
    }
    if (m_recorder)
        m_recorder->recordLocalEdit(note);
    NoteConversion::writeBack(note, *record);
    if (writeRecord(*record))
        save();
}

bool CoreDataManager::deleteRow(const QUuid &id)
{
    const auto record = fetchRecord(id, false);
    if (!record || !beginWrite())
        return false;
    Statement *remove = statement(QStringLiteral("DELETE FROM notes WHERE objectId = ?1"));
    if (!remove || !remove->bind(1, record->objectId).exec()) {
        qCWarning(lcNotes).noquote() << "Error deleting note:" << (remove ? remove->lastError() : m_db.lastError());
        return false;
    }
    markDeleted(record->objectId, record->id);
    save();
    return true;
}

std::optional<qint64> CoreDataManager::moveToFront(const QUuid &id, bool touch)
{
    const auto record = fetchRecord(id, false);
    if (!record)
        return std::nullopt;
    const qint64 index = nextDbIndex(record->isSlotted);
    if (!updateColumn(QStringLiteral("UPDATE notes SET dbIndex = ?1 WHERE objectId = ?2"), record->objectId,
                      qint64(NoteConversion::narrow(index, "dbIndex"))))
        return std::nullopt;
    if (touch && !updateColumn(QStringLiteral("UPDATE notes SET lastModified = ?1 WHERE objectId = ?2"),
                               record->objectId, m_clock.now()))
        return std::nullopt;
    markUpdated(record->objectId, record->id);
    save();
    return index;
}

bool CoreDataManager::setContent(const QUuid &id, const QString &content)
{
    const auto record = fetchRecord(id, false);
    if (!record)
        return false;
    if (!updateColumn(QStringLiteral("UPDATE notes SET content = ?1 WHERE objectId = ?2"), record->objectId, content) ||
        !updateColumn(QStringLiteral("UPDATE notes SET lastModified = ?1 WHERE objectId = ?2"), record->objectId,
                      m_clock.now()))
        return false;
    markUpdated(record->objectId, record->id);
    save();
    return true;
}

bool CoreDataManager::softDelete(const QUuid &id)
{
    const auto record = fetchRecord(id, false);
    // Slotted notes stand outside the stack and never drift into The Void.
    if (!record || record->isSlotted)
        return false;
    if (!updateColumn(QStringLiteral("UPDATE notes SET softDeleted = ?1 WHERE objectId = ?2"), record->objectId,
                      true) ||
        !updateColumn(QStringLiteral("UPDATE notes SET deletedAt = ?1 WHERE objectId = ?2"), record->objectId,
                      m_clock.now()))
        return false;
    markUpdated(record->objectId, record->id);
    save();
    return true;
}

bool CoreDataManager::deleteIfEmpty(const QUuid &id)
{
    const auto record = fetchRecord(id, false);
    bool deleted = false;
    if (record && record->content.value_or(QString()).trimmed().isEmpty() && beginWrite()) {
        Statement *remove = statement(QStringLiteral("DELETE FROM notes WHERE objectId = ?1"));
        if (remove && remove->bind(1, record->objectId).exec()) {
            markDeleted(record->objectId, record->id);
            deleted = true;
        } else {
            qCWarning(lcNotes).noquote() << "Error deleting note:" << (remove ? remove->lastError() : m_db.lastError());
        }
    }
    save();
    return deleted;
}

// ---- the editor's save path ----------------------------------------------------

bool CoreDataManager::noteDiffers(const Note &note)
{
    const auto record = fetchRecord(note.id, false);
    if (!record)
        return true;
    return !record->content || *record->content != note.content || record->isSlotted != note.isSlotted ||
           qint64(record->dbIndex) != note.dbIndex;
}

void CoreDataManager::saveFromEditor(const Note &note, NoteViewModelList *noteViewModels,
                                     NoteViewModelList *slottedNoteViewModels)
{
    // Dates, slots, ticks and links alone don't count: a note opened and closed keeps
    // its date.
    if (!noteDiffers(note)) {
        qCDebug(lcNotes).noquote() << "Note" << uuidText(note.id) << "unchanged, not saving";
        return;
    }

    auto find = [&note](NoteViewModelList *list) -> std::shared_ptr<NoteViewModel> {
        if (!list)
            return nullptr;
        for (const auto &model : *list) {
            if (model && model->id() == note.id)
                return model;
        }
        return nullptr;
    };
    std::shared_ptr<NoteViewModel> inMemory = find(noteViewModels);
    if (!inMemory)
        inMemory = find(slottedNoteViewModels);

    const QDateTime now = m_clock.now();
    Note copy = note;
    copy.lastModified = now;
    if (inMemory) {
        Note updated = inMemory->note();
        updated.lastModified = now;
        inMemory->setNote(std::move(updated));
    } else {
        // The row is still written; only the loaded lists miss the new date.
        qCWarning(lcNotes).noquote() << "ERROR - NO NOTE FOUND IN MEMORY - NOT SAVING";
    }
    saveNote(copy);
}

// ---- placing notes -------------------------------------------------------------

void CoreDataManager::migrateToSparseIndex()
{
    if (m_settings.value(kSparseIndexKey).toBool())
        return;

    struct Row {
        qint64 objectId;
        qint64 dbIndex;
        std::optional<QUuid> id;
    };
    std::vector<Row> rows;
    Statement *query = statement(QStringLiteral("SELECT objectId, dbIndex, id FROM notes WHERE ") % kLive %
                                 QStringLiteral(" AND isSlotted = ?1 ORDER BY dbIndex ASC, objectId ASC"));
    bool fetched = query != nullptr;
    if (query) {
        query->bind(1, false);
        Statement::Step step;
        while ((step = query->step()) == Statement::Step::Row)
            rows.push_back(Row{query->columnInt64(0), query->columnInt64(1), uuidFrom(query->optionalText(2))});
        if (step == Statement::Step::Error) {
            qCWarning(lcNotes).noquote() << "migration - Error fetching notes to reindex:" << query->lastError();
            fetched = false;
        }
    }

    if (fetched) {
        int pending = 0;
        qint64 expected = 0;
        for (const Row &row : rows) {
            expected += kIndexStep;
            if (row.dbIndex == expected)
                continue;
            if (!updateColumn(QStringLiteral("UPDATE notes SET dbIndex = ?1 WHERE objectId = ?2"), row.objectId,
                              qint64(NoteConversion::narrow(expected, "dbIndex"))))
                continue;
            markUpdated(row.objectId, row.id);
            // Saved in batches to keep a large stack's migration small in memory, and
            // directly, so the whole stack isn't sent to sync as edits.
            if (++pending == kReindexBatch) {
                commitContext(false);
                pending = 0;
            }
        }
        if (pending > 0)
            commitContext(false);
    }

    m_settings.setValue(kSparseIndexKey, true);
    m_settings.sync();
    qCInfo(lcNotes) << "MIGRATED DB INDEX TO SPARSE";
}

int CoreDataManager::positionUnplacedNotes(qint64 step, qint64 base)
{
    if (!m_preferences.syncWithICloud())
        return 0;
    // Usually every note has its place: finding that out mustn't read the whole stack,
    // so the question goes to the index of the unplaced notes alone.
    if (Statement *any = statement(QStringLiteral("SELECT EXISTS (SELECT 1 FROM notes INDEXED BY notes_unplaced "
                                                  "WHERE ckChangeTag IS NULL AND ") %
                                   kLive % QStringLiteral(" AND isSlotted = 0)"))) {
        if (any->step() == Statement::Step::Row && any->columnInt64(0) == 0) {
            any->reset();
            return 0;
        }
        any->reset();
    }

    struct Row {
        qint64 objectId;
        std::optional<QUuid> id;
        bool placed;
        qint64 lastModified;
        qint64 created;
        qint64 dbIndex;
    };
    std::vector<Row> placed;
    std::vector<Row> unplaced;
    Statement *query =
        statement(QStringLiteral("SELECT objectId, id, ckChangeTag IS NOT NULL, lastModified, created, dbIndex "
                                 "FROM notes WHERE ") %
                  kLive % QStringLiteral(" AND isSlotted = 0 ORDER BY objectId"));
    if (query) {
        Statement::Step fetchStep;
        while ((fetchStep = query->step()) == Statement::Step::Row) {
            Row row{query->columnInt64(0),
                    uuidFrom(query->optionalText(1)),
                    query->columnInt64(2) != 0,
                    sortKey(dateFrom(query->optionalInt64(3))),
                    sortKey(dateFrom(query->optionalInt64(4))),
                    query->columnInt64(5)};
            (row.placed ? placed : unplaced).push_back(row);
        }
        if (fetchStep == Statement::Step::Error) {
            qCWarning(lcNotes).noquote() << "Error fetching notes to position:" << query->lastError();
            return 0;
        }
    }
    if (unplaced.empty())
        return 0;

    const auto earlier = [](const Row &a, const Row &b) {
        return a.lastModified < b.lastModified || (a.lastModified == b.lastModified && a.created < b.created);
    };
    std::stable_sort(placed.begin(), placed.end(), earlier);
    std::stable_sort(unplaced.begin(), unplaced.end(), earlier);

    int changed = 0;
    qint64 lastAssigned = 0;
    for (Row &row : unplaced) {
        const auto next = std::lower_bound(placed.begin(), placed.end(), row, earlier);
        const bool hasNext = next != placed.end();
        const bool hasPrev = next != placed.begin();
        qint64 index;
        if (hasPrev && hasNext)
            index = dbIndexBetween(std::prev(next)->dbIndex, next->dbIndex);
        else if (hasPrev)
            index = std::prev(next)->dbIndex + step;
        else if (hasNext)
            index = next->dbIndex - step;
        else
            index = std::max(lastAssigned, base - step) + step;
        lastAssigned = index;

        if (index != row.dbIndex && updateColumn(QStringLiteral("UPDATE notes SET dbIndex = ?1 WHERE objectId = ?2"),
                                                 row.objectId, qint64(NoteConversion::narrow(index, "dbIndex")))) {
            row.dbIndex = index;
            ++changed;
            markUpdated(row.objectId, row.id);
        }
        // The tag says this note has its place, so it's never placed again.
        if (updateColumn(QStringLiteral("UPDATE notes SET ckChangeTag = ?1 WHERE objectId = ?2"), row.objectId,
                         kPositionedTag))
            markUpdated(row.objectId, row.id);
        placed.insert(std::upper_bound(placed.begin(), placed.end(), row, earlier), row);
    }
    // Save even when no index moved: the tags alone must reach the file, or every start
    // would place the same notes again.
    save();
    return changed;
}

// ---- windows of the stack and search ---------------------------------------------

std::vector<Note> CoreDataManager::fetchNotes(Statement *query, const QString &failure, bool reversed)
{
    if (!query)
        return {};
    auto records = selectRecords(*query, true);
    if (!records) {
        qCWarning(lcNotes).noquote() << failure << query->lastError();
        return {};
    }
    if (reversed)
        std::reverse(records->begin(), records->end());
    return toNotes(*records);
}

std::vector<Note> CoreDataManager::fetchBetween(qint64 lower, qint64 upper)
{
    Statement *query = statement(kSelectNotes % QStringLiteral("WHERE ") % kLive %
                                 QStringLiteral(" AND isSlotted = 0 AND dbIndex >= ?1 AND dbIndex < ?2 "
                                                "ORDER BY dbIndex ASC, objectId ASC"));
    if (query)
        query->bind(1, lower).bind(2, upper);
    return fetchNotes(query, QStringLiteral("Error fetching notes between two places: "));
}

// ---- search ----------------------------------------------------------------------------

std::shared_ptr<const SearchCatalogue::Order> CoreDataManager::searchOrder()
{
    if (!m_searchCatalogue)
        m_searchCatalogue = std::make_unique<SearchCatalogue>(m_db);
    return m_searchCatalogue->order();
}

bool CoreDataManager::isIndexable(const QString &foldedText)
{
    // The index is of trigrams: three characters, counted as code points.
    qsizetype codePoints = 0;
    for (const QChar c : foldedText) {
        codePoints += c.isLowSurrogate() ? 0 : 1;
        if (codePoints >= 3)
            return true;
    }
    return false;
}

std::optional<std::vector<qint64>> CoreDataManager::indexedSearch(const QString &foldedText)
{
    if (!isIndexable(foldedText))
        return std::vector<qint64>();
    const ReadTransaction transaction(m_db);
    const auto order = searchOrder();
    Statement *match = statement(QStringLiteral("SELECT rowid FROM noteSearch WHERE noteSearch MATCH ?1"));
    if (!order || !match)
        return std::nullopt;
    // One phrase: a folded query holds only letters, digits and spaces, never a quote.
    match->bind(1, QLatin1Char('"') % foldedText % QLatin1Char('"'));
    std::vector<qint64> matched;
    Statement::Step step;
    while ((step = match->step()) == Statement::Step::Row)
        matched.push_back(match->columnInt64(0));
    if (step == Statement::Step::Error) {
        qCWarning(lcNotes).noquote() << "CoreDataManager: Error searching notes:" << match->lastError();
        return std::nullopt;
    }
    std::vector<qint64> hits;
    if (matched.empty())
        return hits;

    // The index names its rows in the order they were written; the stack's order, and
    // which rows are live, come from the catalogue, walked once.
    const qint64 highest = *std::max_element(matched.begin(), matched.end());
    std::vector<bool> isMatch(std::size_t(highest) + 1, false);
    for (const qint64 row : matched) {
        if (row > 0)
            isMatch[std::size_t(row)] = true;
    }
    hits.reserve(matched.size());
    for (const SearchCatalogue::Entry &entry : *order) {
        if (entry.objectId > 0 && entry.objectId <= highest && isMatch[std::size_t(entry.objectId)])
            hits.push_back(entry.objectId);
    }
    return hits;
}

std::optional<std::size_t> CoreDataManager::scanForText(const QString &foldedText, const SearchCatalogue::Order &order,
                                                        std::size_t from, std::vector<qint64> &hits,
                                                        qsizetype maxNewHits, QDeadlineTimer deadline)
{
    Statement *read = statement(QStringLiteral("SELECT folded FROM noteSearch WHERE rowid = ?1"));
    if (!read)
        return std::nullopt;
    const ReadTransaction transaction(m_db);
    // The deadline is looked at every few notes: reading one takes microseconds.
    constexpr std::size_t kNotesBetweenChecks = 32;
    qsizetype found = 0;
    std::size_t at = from;
    while (at < order.size() && found < maxNewHits) {
        if (at != from && (at - from) % kNotesBetweenChecks == 0 && deadline.hasExpired())
            break;
        read->bind(1, order[at].objectId);
        const Statement::Step step = read->step();
        if (step == Statement::Step::Error) {
            qCWarning(lcNotes).noquote() << "CoreDataManager: Error searching notes:" << read->lastError();
            read->reset();
            return std::nullopt;
        }
        if (step == Statement::Step::Row && read->columnText(0).contains(foldedText)) {
            hits.push_back(order[at].objectId);
            ++found;
        }
        read->reset();
        ++at;
    }
    return at;
}

std::vector<std::optional<SearchResult>> CoreDataManager::fetchSearchResults(const std::vector<qint64> &rows)
{
    Statement *read = statement(
        QStringLiteral("SELECT id, content, lastModified, dbIndex, isSlotted, slotIndex FROM notes WHERE objectId = ?1 "
                       "AND ") %
        kLive);
    if (!read)
        return {};
    const ReadTransaction transaction(m_db);
    std::vector<std::optional<SearchResult>> results;
    results.reserve(rows.size());
    for (const qint64 row : rows) {
        read->bind(1, row);
        const Statement::Step step = read->step();
        if (step == Statement::Step::Error) {
            qCWarning(lcNotes).noquote() << "CoreDataManager: Error reading search results:" << read->lastError();
            read->reset();
            return {};
        }
        if (step == Statement::Step::Done) {
            results.emplace_back();
            continue;
        }
        // The same nil replacements as a whole note gets.
        SearchResult result;
        result.id = uuidFrom(read->optionalText(0)).value_or(QUuid::createUuid());
        result.content = read->optionalText(1).value_or(QString());
        result.lastModified = dateFrom(read->optionalInt64(2)).value_or(m_clock.now());
        result.dbIndex = read->columnInt64(3);
        result.isSlotted = read->columnInt64(4) != 0;
        if (const qint64 slot = read->columnInt64(5); slot != 0)
            result.slotIndex = NoteConversion::narrow(slot, "slotIndex");
        results.push_back(std::move(result));
        read->reset();
    }
    return results;
}

std::vector<Note> CoreDataManager::fetchNotesAt(const std::vector<qint64> &rows)
{
    Statement *read = statement(kSelectNotes % QStringLiteral("WHERE objectId = ?1 AND ") % kLive);
    if (!read)
        return {};
    const ReadTransaction transaction(m_db);
    std::vector<Note> notes;
    notes.reserve(rows.size());
    for (const qint64 row : rows) {
        read->bind(1, row);
        auto records = selectRecords(*read, true);
        if (!records) {
            qCWarning(lcNotes).noquote() << "CoreDataManager: Error fetching notes with predicate: "
                                         << read->lastError();
            return {};
        }
        for (const CDNote &record : *records)
            notes.push_back(NoteConversion::toNote(record, m_clock));
        read->reset();
    }
    return notes;
}

std::optional<qint64> CoreDataManager::countWhere(const QString &where, const QVariantList &values)
{
    Statement query = m_db.prepare(QStringLiteral("SELECT count(*) FROM notes WHERE ") % where);
    for (int i = 0; i < values.size(); ++i)
        bindVariant(query, i + 1, values.at(i));
    if (!query.isValid() || query.step() != Statement::Step::Row) {
        qCWarning(lcNotes).noquote() << "CoreDataManager: Error counting notes:" << query.lastError();
        return std::nullopt;
    }
    return query.columnInt64(0);
}

int CoreDataManager::countStackRows()
{
    return int(countWhere(QStringLiteral("isSlotted = 0"), {}).value_or(0));
}

// ---- The Void ------------------------------------------------------------------------

bool CoreDataManager::restoreNote(const QUuid &id)
{
    const auto record = fetchRecord(id, false);
    if (!record)
        return false;
    // Back on top of the stack: the user restores a note to use it.
    const qint64 index = nextDbIndex(false);
    if (!updateColumn(QStringLiteral("UPDATE notes SET softDeleted = ?1 WHERE objectId = ?2"), record->objectId,
                      false) ||
        !updateColumn(QStringLiteral("UPDATE notes SET deletedAt = ?1 WHERE objectId = ?2"), record->objectId,
                      QVariant()) ||
        !updateColumn(QStringLiteral("UPDATE notes SET dbIndex = ?1 WHERE objectId = ?2"), record->objectId,
                      qint64(NoteConversion::narrow(index, "dbIndex"))))
        return false;
    markUpdated(record->objectId, record->id);
    return save();
}

bool CoreDataManager::permanentlyDelete(const QUuid &id)
{
    return deleteRow(id);
}

int CoreDataManager::batchDelete(const QString &where, const QVariantList &values, const char *failureLog)
{
    if (!beginWrite()) {
        qCWarning(lcNotes).noquote() << failureLog << m_db.lastError();
        return -1;
    }
    // Child rows go with their notes by the cascade. The rows aren't tracked as changes:
    // a batch delete is never sent to the other machines.
    Statement remove = m_db.prepare(QStringLiteral("DELETE FROM notes WHERE ") % where);
    for (int i = 0; i < values.size(); ++i)
        bindVariant(remove, i + 1, values.at(i));
    if (!remove.isValid() || !remove.exec()) {
        qCWarning(lcNotes).noquote() << failureLog << remove.lastError();
        return -1;
    }
    const int removed = m_db.changes();
    if (!save()) {
        qCWarning(lcNotes).noquote() << failureLog << m_db.lastError();
        return -1;
    }
    return removed;
}

bool CoreDataManager::emptyTrash()
{
    return batchDelete(QStringLiteral("softDeleted = 1"), {}, "CoreDataManager: Failed to empty trash:") >= 0;
}

int CoreDataManager::autoEmptyTrash(int days)
{
    if (days < 1)
        return 0;
    const QDateTime cutOff = m_clock.now().toLocalTime().addDays(-days);
    const QString where = QStringLiteral("softDeleted = 1 AND deletedAt < ?");
    const auto due = countWhere(where, {cutOff});
    if (!due || *due == 0)
        return 0;
    if (batchDelete(where, {cutOff}, "CoreDataManager: Auto-empty trash failed:") < 0)
        return 0;
    return int(*due);
}

int CoreDataManager::deleteNotesBefore(const QDateTime &date)
{
    // Old notes go whether live or in The Void; the slots are never old.
    const QString where = QStringLiteral("lastModified < ? AND isSlotted = 0");
    const auto due = countWhere(where, {date});
    if (!due || *due == 0)
        return 0;
    if (batchDelete(where, {date}, "CoreDataManager: Failed to delete old notes:") < 0)
        return 0;
    return int(*due);
}

// ---- repairs at start ------------------------------------------------------------------

int CoreDataManager::removeDuplicateNotes()
{
    QStringList duplicated;
    Statement *groups =
        statement(QStringLiteral("SELECT id FROM notes WHERE id IS NOT NULL GROUP BY id HAVING count(*) > 1"));
    if (!groups) {
        qCWarning(lcNotes) << "removeDuplicateNotes: Failed to fetch notes";
        return 0;
    }
    Statement::Step step;
    while ((step = groups->step()) == Statement::Step::Row)
        duplicated.append(groups->columnText(0));
    if (step == Statement::Step::Error) {
        qCWarning(lcNotes).noquote() << "removeDuplicateNotes: Failed to fetch notes" << groups->lastError();
        return 0;
    }
    if (duplicated.isEmpty()) {
        qCDebug(lcNotes) << "removeDuplicateNotes: No duplicates found";
        return 0;
    }

    struct Copy {
        qint64 objectId;
        bool live;
        bool hasText;
        qint64 lastModified;
    };
    int deleted = 0;
    for (const QString &id : std::as_const(duplicated)) {
        Statement *rows = statement(QStringLiteral("SELECT objectId, softDeleted, content, lastModified FROM notes "
                                                   "WHERE id = ?1 ORDER BY lastModified DESC"));
        if (!rows)
            return deleted;
        rows->bind(1, id);
        std::vector<Copy> copies;
        while (rows->step() == Statement::Step::Row) {
            copies.push_back(Copy{rows->columnInt64(0), rows->optionalInt64(1).value_or(0) == 0,
                                  !rows->columnText(2).isEmpty(), sortKey(dateFrom(rows->optionalInt64(3)))});
        }
        rows->reset();
        if (copies.size() < 2)
            continue;
        // A live copy beats one in The Void, text beats none, and then the newest wins.
        std::stable_sort(copies.begin(), copies.end(), [](const Copy &a, const Copy &b) {
            if (a.live != b.live)
                return a.live;
            if (a.hasText != b.hasText)
                return a.hasText;
            return a.lastModified > b.lastModified;
        });
        qCInfo(lcNotes).noquote() << "removeDuplicateNotes:" << id << "has" << copies.size()
                                  << "copies, keeping the one with softDeleted=" << !copies.front().live;
        if (!beginWrite())
            return deleted;
        Statement *remove = statement(QStringLiteral("DELETE FROM notes WHERE objectId = ?1"));
        for (std::size_t i = 1; i < copies.size(); ++i) {
            if (remove && remove->bind(1, copies[i].objectId).exec())
                ++deleted;
            if (remove)
                remove->reset();
        }
    }
    // Saved directly: the surviving copy carries the id, so there is nothing to send.
    if (deleted > 0 && !save())
        qCWarning(lcNotes).noquote() << "removeDuplicateNotes: Failed to save after removing duplicates: "
                                     << m_db.lastError();
    return deleted;
}

void CoreDataManager::foldSlotDuplicates(std::vector<CDNote> &group, const QDateTime &now)
{
    // Rows the server knows beat rows it doesn't; then the latest edit, then the
    // higher place.
    const bool anyKnown =
        std::any_of(group.begin(), group.end(), [](const CDNote &row) { return row.ckChangeTag.has_value(); });
    auto keeper = group.end();
    for (auto it = group.begin(); it != group.end(); ++it) {
        if (anyKnown && !it->ckChangeTag)
            continue;
        if (keeper == group.end() || sortKey(it->lastModified) > sortKey(keeper->lastModified) ||
            (sortKey(it->lastModified) == sortKey(keeper->lastModified) && it->dbIndex > keeper->dbIndex))
            keeper = it;
    }

    QString text = keeper->content.value_or(QString());
    bool changed = false;
    for (auto it = group.begin(); it != group.end(); ++it) {
        if (it == keeper)
            continue;
        // Nothing typed into a slot is thrown away: the other copy's text is appended.
        const QString other = it->content.value_or(QString());
        if (!other.isEmpty()) {
            text = text % QStringLiteral("\n\n---\n(Merged from ") %
                   (it->id ? uuidText(*it->id) : QStringLiteral("unknown")) % QStringLiteral(" on ") %
                   QLocale().toString(now.toLocalTime(), QLocale::ShortFormat) % QStringLiteral(")\n") % other;
            changed = true;
        }
        for (const char *table : {"checklistItems", "scrivlinks", "attachments"}) {
            updateColumn(QStringLiteral("UPDATE ") % QLatin1String(table) % QStringLiteral(" SET note = ?1 WHERE note = ?2"),
                         it->objectId, keeper->objectId);
        }
        // It leaves the slots for the stack; it isn't deleted.
        updateColumn(QStringLiteral("UPDATE notes SET isSlotted = ?1 WHERE objectId = ?2"), it->objectId, false);
        updateColumn(QStringLiteral("UPDATE notes SET slotIndex = ?1 WHERE objectId = ?2"), it->objectId, 0);
        qCInfo(lcNotes).noquote() << "slotted - folded a second note of slot" << it->slotIndex << "into"
                                  << (keeper->id ? uuidText(*keeper->id) : QStringLiteral("unknown"));
    }
    if (changed) {
        updateColumn(QStringLiteral("UPDATE notes SET content = ?1 WHERE objectId = ?2"), keeper->objectId, text);
        updateColumn(QStringLiteral("UPDATE notes SET lastModified = ?1 WHERE objectId = ?2"), keeper->objectId, now);
    }
}

int CoreDataManager::ensureSlots()
{
    const int limit = m_preferences.slotedNotesLimit();
    if (limit < 1)
        return 0;
    const QString slottedSql = kSelectNotes % QStringLiteral("WHERE isSlotted = 1 AND ") % kLive %
                               QStringLiteral(" ORDER BY dbIndex ASC, objectId ASC");
    auto fetchSlotted = [&]() -> std::optional<std::vector<CDNote>> {
        Statement *query = statement(slottedSql);
        if (!query)
            return std::nullopt;
        auto rows = selectRecords(*query, false);
        if (!rows)
            qCWarning(lcNotes).noquote() << "slotted - Error fetching slotted notes:" << query->lastError();
        return rows;
    };

    const QDateTime now = m_clock.now();
    auto rows = fetchSlotted();
    if (!rows)
        return 0;
    std::map<qint32, std::vector<CDNote>> bySlot;
    for (const CDNote &row : *rows) {
        if (row.slotIndex > 0)
            bySlot[row.slotIndex].push_back(row);
    }
    for (auto &[slot, group] : bySlot) {
        if (group.size() > 1)
            foldSlotDuplicates(group, now);
    }

    rows = fetchSlotted();
    if (!rows)
        return 0;
    std::vector<bool> taken(std::size_t(limit) + 1, false);
    qint64 highest = 0;
    for (const CDNote &row : *rows) {
        highest = std::max<qint64>(highest, row.dbIndex);
        if (row.slotIndex >= 1 && row.slotIndex <= limit)
            taken[std::size_t(row.slotIndex)] = true;
    }
    std::vector<int> missing;
    for (int slot = 1; slot <= limit; ++slot) {
        if (!taken[std::size_t(slot)])
            missing.push_back(slot);
    }
    if (missing.empty()) {
        save();
        return 0;
    }

    int filled = 0;
    auto next = missing.begin();
    // A slotted note that lost its slot takes the first free one, and an empty one gets
    // the slot's first text back.
    for (const CDNote &row : *rows) {
        if (next == missing.end())
            break;
        if (row.slotIndex != 0)
            continue;
        const int slot = *next++;
        updateColumn(QStringLiteral("UPDATE notes SET slotIndex = ?1 WHERE objectId = ?2"), row.objectId, slot);
        const QString text = SlottedNoteDefaults::defaultText(slot);
        if (row.content.value_or(QString()).isEmpty() && !text.isEmpty()) {
            updateColumn(QStringLiteral("UPDATE notes SET content = ?1 WHERE objectId = ?2"), row.objectId, text);
            updateColumn(QStringLiteral("UPDATE notes SET lastModified = ?1 WHERE objectId = ?2"), row.objectId, now);
        }
        ++filled;
    }
    // Slotted notes keep a dense sequence of their own.
    qint64 index = highest + 1;
    std::vector<qint64> created;
    for (; next != missing.end(); ++next) {
        CDNote record;
        record.id = QUuid::createUuid();
        record.created = now;
        record.lastModified = now;
        record.isSlotted = true;
        record.slotIndex = *next;
        record.content = SlottedNoteDefaults::defaultText(*next);
        record.dbIndex = NoteConversion::narrow(index++, "dbIndex");
        record.softDeleted = false;
        if (const auto objectId = insertRecord(record)) {
            created.push_back(*objectId);
            ++filled;
        }
    }
    // Saved directly: the slots are this machine's own until the user writes in them.
    for (const qint64 objectId : created)
        m_changes.erase(objectId);
    if (!save()) {
        qCWarning(lcNotes).noquote() << "slotted - Failed to save the slots:" << m_db.lastError();
        return 0;
    }
    return filled;
}

bool CoreDataManager::insertTutorialNote(const QString &content, const QDateTime &created)
{
    CDNote record;
    record.id = QUuid::createUuid();
    record.created = created;
    record.lastModified = created;
    record.content = content;
    record.dbIndex = NoteConversion::narrow(nextTutorialDbIndex(), "dbIndex");
    record.isSlotted = false;
    record.isTutorial = true;
    record.softDeleted = false;
    if (!insertRecord(record))
        return false;
    return save();
}

} // namespace scrivlet

// ---- the legacy import ---------------------------------------------------------------

namespace scrivlet {

bool CoreDataManager::containsNote(const QUuid &id)
{
    Statement *query = statement(QStringLiteral("SELECT 1 FROM notes WHERE id = ?1 LIMIT 1"));
    if (!query)
        return false;
    query->bind(1, uuidText(id));
    const bool found = query->step() == Statement::Step::Row;
    query->reset();
    return found;
}

std::optional<qint64> CoreDataManager::insertImportedNote(const CDNote &record)
{
    if (!beginWrite())
        return std::nullopt;
    // The row and its children go in together or not at all, so a bad child row
    // can't leave half a note behind.
    if (!m_db.exec(QStringLiteral("SAVEPOINT importNote"))) {
        qCWarning(lcNotes).noquote() << "Error inserting a note:" << m_db.lastError();
        return std::nullopt;
    }
    const auto objectId = insertRecord(record);
    if (!objectId) {
        m_db.exec(QStringLiteral("ROLLBACK TO importNote; RELEASE importNote"));
        return std::nullopt;
    }
    m_db.exec(QStringLiteral("RELEASE importNote"));
    return objectId;
}

std::optional<std::vector<CDNote>> CoreDataManager::fetchStackRows()
{
    Statement *query = statement(kSelectNotes % QStringLiteral("WHERE ") % kLive %
                                 QStringLiteral(" AND isSlotted = 0 ORDER BY dbIndex ASC, objectId ASC"));
    if (!query)
        return std::nullopt;
    auto rows = selectRecords(*query, false);
    if (!rows)
        qCWarning(lcNotes).noquote() << "Error fetching the stack:" << query->lastError();
    query->reset();
    return rows;
}

bool CoreDataManager::placeImportedNote(const CDNote &row, qint64 dbIndex)
{
    if (row.dbIndex != dbIndex &&
        !updateColumn(QStringLiteral("UPDATE notes SET dbIndex = ?1 WHERE objectId = ?2"), row.objectId,
                      qint64(NoteConversion::narrow(dbIndex, "dbIndex"))))
        return false;
    if (!updateColumn(QStringLiteral("UPDATE notes SET ckChangeTag = ?1 WHERE objectId = ?2"), row.objectId,
                      kPositionedTag))
        return false;
    markUpdated(row.objectId, row.id);
    return true;
}

void CoreDataManager::discardChanges()
{
    if (m_context)
        m_context->rollback();
    m_context.reset();
    m_changes.clear();
}

} // namespace scrivlet
