#include "notes/LegacyDatabase.h"

#include "notes/CDNote.h"
#include "notes/NotesLogging.h"

#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <sqlite3.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <limits>
#include <vector>

namespace scrivlet {

namespace {

// Dates stored as numbers above this are milliseconds: as seconds it would be a year
// past 5000.
constexpr double kLargestSeconds = 1e11;
constexpr double kLargestMilliseconds = 1e15;

// One statement of the legacy file, read by column name: versions of the earlier app
// differ in which columns they have, and a missing column reads as nil.
class Query {
public:
    Query(sqlite3 *db, const QString &sql) : m_db(db)
    {
        const QByteArray utf8 = sql.toUtf8();
        if (sqlite3_prepare_v2(db, utf8.constData(), int(utf8.size()), &m_stmt, nullptr) != SQLITE_OK) {
            m_error = QString::fromUtf8(sqlite3_errmsg(db));
            sqlite3_finalize(m_stmt);
            m_stmt = nullptr;
            return;
        }
        for (int i = 0; i < sqlite3_column_count(m_stmt); ++i)
            m_columns.insert(QString::fromUtf8(sqlite3_column_name(m_stmt, i)).toLower(), i);
    }
    ~Query() { sqlite3_finalize(m_stmt); }
    Query(const Query &) = delete;
    Query &operator=(const Query &) = delete;

    bool isValid() const { return m_stmt != nullptr; }
    const QString &error() const { return m_error; }
    sqlite3_stmt *handle() const { return m_stmt; }

    // SQLITE_ROW, SQLITE_DONE or the error code, whose text is then in `error()`.
    int step()
    {
        const int rc = sqlite3_step(m_stmt);
        if (rc != SQLITE_ROW && rc != SQLITE_DONE)
            m_error = QString::fromUtf8(sqlite3_errmsg(m_db));
        return rc;
    }

    // The first of `names` the statement has, or -1.
    int column(std::initializer_list<const char *> names) const
    {
        for (const char *name : names) {
            const int index = m_columns.value(QString::fromLatin1(name).toLower(), -1);
            if (index >= 0)
                return index;
        }
        return -1;
    }

    int type(int column) const { return column < 0 ? SQLITE_NULL : sqlite3_column_type(m_stmt, column); }

    std::optional<QString> text(int column) const
    {
        if (type(column) == SQLITE_NULL)
            return std::nullopt;
        const auto *chars = static_cast<const char16_t *>(sqlite3_column_text16(m_stmt, column));
        const int bytes = sqlite3_column_bytes16(m_stmt, column);
        return QString::fromUtf16(chars, bytes / 2);
    }

    std::optional<qint64> integer(int column) const
    {
        switch (type(column)) {
        case SQLITE_NULL:
        case SQLITE_BLOB:
            return std::nullopt;
        case SQLITE_TEXT: {
            const QString value = text(column)->trimmed();
            bool ok = false;
            const double number = value.toDouble(&ok);
            return ok && std::isfinite(number) ? std::optional<qint64>(qint64(number)) : std::nullopt;
        }
        default:
            return sqlite3_column_int64(m_stmt, column);
        }
    }

    double real(int column) const
    {
        if (type(column) == SQLITE_TEXT)
            return text(column)->trimmed().toDouble();
        return sqlite3_column_double(m_stmt, column);
    }

    bool flag(int column) const
    {
        if (type(column) == SQLITE_TEXT) {
            const QString value = text(column)->trimmed().toLower();
            return value == QLatin1String("true") || value == QLatin1String("yes") || value.toDouble() != 0;
        }
        return integer(column).value_or(0) != 0;
    }

    // Out-of-range values can only come from a damaged row; they are held at the
    // nearest value the store can keep.
    qint32 int32(int column) const
    {
        const qint64 value = integer(column).value_or(0);
        return qint32(
            std::clamp<qint64>(value, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()));
    }

    std::optional<QDateTime> date(int column) const
    {
        switch (type(column)) {
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            return LegacyDatabase::dateFromNumber(sqlite3_column_double(m_stmt, column));
        case SQLITE_TEXT:
            return LegacyDatabase::dateFromText(*text(column));
        default:
            return std::nullopt;
        }
    }

    std::optional<QUuid> uuid(int column) const
    {
        if (type(column) == SQLITE_BLOB && sqlite3_column_bytes(m_stmt, column) == 16) {
            const auto *bytes = static_cast<const char *>(sqlite3_column_blob(m_stmt, column));
            const QUuid id = QUuid::fromRfc4122(QByteArrayView(bytes, 16));
            return id.isNull() ? std::nullopt : std::optional<QUuid>(id);
        }
        const auto value = text(column);
        if (!value)
            return std::nullopt;
        const QUuid id(value->trimmed());
        return id.isNull() ? std::nullopt : std::optional<QUuid>(id);
    }

    // The value a child row uses to point at its note, comparable across tables.
    QString key(int column) const
    {
        if (const auto id = uuid(column))
            return id->toString(QUuid::WithoutBraces);
        return text(column).value_or(QString());
    }

private:
    sqlite3 *m_db;
    sqlite3_stmt *m_stmt = nullptr;
    QString m_error;
    QHash<QString, int> m_columns;
};

// How the file's child rows point at their note: by the note's id in the earlier app,
// by the note's row in a copy of the current store.
enum class Link { byId, byRow };

struct Children {
    QHash<QString, std::vector<CDChecklistItem>> checklistItems;
    QHash<QString, std::vector<CDScrivlink>> scrivlinks;
    QHash<QString, std::vector<CDAttachment>> attachments;
};

std::optional<QStringList> skippedUrlsFrom(const Query &row, int column)
{
    if (row.type(column) != SQLITE_TEXT)
        return std::nullopt;
    const QString text = row.text(column)->trimmed();
    if (text.isEmpty())
        return QStringList();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    QStringList urls;
    if (error.error == QJsonParseError::NoError && document.isArray()) {
        const QJsonArray array = document.array();
        for (const auto &value : array)
            urls.append(value.toString());
        return urls;
    }
    // Written by hand-rolled code as a plain list.
    for (const QString &part : text.split(QLatin1Char(','), Qt::SkipEmptyParts))
        urls.append(part.trimmed());
    return urls;
}

// Reads one child table whole, grouped by the note each row belongs to. A table
// whose rows can't be tied to notes is left out with a warning: the notes themselves
// matter more than their checklist or link rows.
template <typename Row>
std::optional<QString> readChildren(sqlite3 *db, const QString &table, Link link,
                                    QHash<QString, std::vector<Row>> &into,
                                    const std::function<Row(const Query &)> &make)
{
    Query query(db, QStringLiteral("SELECT * FROM \"") % table % QStringLiteral("\""));
    if (!query.isValid())
        return query.error();
    const int owner = link == Link::byId ? query.column({"note_id", "noteId"}) : query.column({"note"});
    if (owner < 0) {
        qCWarning(lcNotes).noquote() << "Migrator - WARNING: table" << table
                                     << "has no column naming its note; its rows are left out";
        return std::nullopt;
    }
    int rc;
    while ((rc = query.step()) == SQLITE_ROW)
        into[link == Link::byId ? query.key(owner) : QString::number(query.integer(owner).value_or(0))].push_back(
            make(query));
    if (rc != SQLITE_DONE)
        return query.error();
    return std::nullopt;
}

CDChecklistItem checklistItemFrom(const Query &row)
{
    CDChecklistItem item;
    item.id = row.uuid(row.column({"id"}));
    item.content = row.text(row.column({"content"}));
    item.checked = row.flag(row.column({"checked"}));
    item.verticalPosition = row.real(row.column({"verticalPosition", "vertical_position"}));
    item.responsibilityRangeLocation = row.int32(row.column({"responsibilityRangeLocation"}));
    item.responsibilityRangeLength = row.int32(row.column({"responsibilityRangeLength"}));
    item.index = row.int32(row.column({"index"}));
    item.isHidden = row.flag(row.column({"isHidden", "is_hidden"}));
    return item;
}

CDScrivlink scrivlinkFrom(const Query &row)
{
    CDScrivlink link;
    link.id = row.uuid(row.column({"id"}));
    link.fullUrl = row.text(row.column({"fullUrl", "full_url"}));
    link.shortenedUrl = row.text(row.column({"shortenedUrl", "shortened_url"}));
    link.currentRangeLocation = row.int32(row.column({"currentRangeLocation"}));
    link.currentRangeLength = row.int32(row.column({"currentRangeLength"}));
    return link;
}

CDAttachment attachmentFrom(const Query &row)
{
    CDAttachment attachment;
    attachment.id = row.uuid(row.column({"id"}));
    attachment.fileUrl = row.text(row.column({"file_url", "fileUrl"}));
    attachment.locationType = row.text(row.column({"location_type", "locationType"}));
    attachment.fileType = row.text(row.column({"file_type", "fileType"}));
    attachment.sortOrder = row.int32(row.column({"sort_order", "sortOrder"}));
    attachment.fileName = row.text(row.column({"file_name", "fileName"}));
    attachment.fileSize = std::max<qint64>(0, row.integer(row.column({"file_size", "fileSize"})).value_or(0));
    attachment.created = row.date(row.column({"created"}));
    attachment.mimeType = row.text(row.column({"mime_type", "mimeType"}));
    return attachment;
}

QString sqliteFailure(sqlite3 *db, int rc)
{
    switch (rc & 0xff) {
    case SQLITE_NOTADB:
        return QStringLiteral("the file is not a SQLite database");
    case SQLITE_CORRUPT:
        return QStringLiteral("the database is damaged (") % QString::fromUtf8(sqlite3_errmsg(db)) % QLatin1Char(')');
    default:
        return QStringLiteral("the database can't be read (") % QString::fromUtf8(sqlite3_errmsg(db)) %
               QLatin1Char(')');
    }
}

} // namespace

LegacyDatabase::~LegacyDatabase()
{
    sqlite3_close_v2(m_db);
}

Result<std::unique_ptr<LegacyDatabase>, QString> LegacyDatabase::open(const QString &path)
{
    using OpenResult = Result<std::unique_ptr<LegacyDatabase>, QString>;
    if (!QFileInfo(path).isFile())
        return OpenResult::failure(QStringLiteral("the file doesn't exist"));

    sqlite3 *handle = nullptr;
    const int rc = sqlite3_open_v2(path.toUtf8().constData(), &handle, SQLITE_OPEN_READONLY, nullptr);
    std::unique_ptr<LegacyDatabase> db(new LegacyDatabase(handle));
    if (rc != SQLITE_OK) {
        return OpenResult::failure(QStringLiteral("the file can't be opened (") %
                                   QString::fromUtf8(handle ? sqlite3_errmsg(handle) : sqlite3_errstr(rc)) %
                                   QLatin1Char(')'));
    }
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_busy_timeout(handle, 2000);

    // SQLite reads nothing on open: the first statement tells whether the file is a
    // database at all.
    {
        Query tables(handle, QStringLiteral("SELECT count(*) FROM sqlite_master"));
        const int step = tables.isValid() ? tables.step() : sqlite3_errcode(handle);
        if (step != SQLITE_ROW)
            return OpenResult::failure(sqliteFailure(handle, step));
    }
    // A damaged file is refused whole rather than imported in part.
    {
        Query check(handle, QStringLiteral("PRAGMA quick_check"));
        const int step = check.isValid() ? check.step() : sqlite3_errcode(handle);
        if (step != SQLITE_ROW)
            return OpenResult::failure(sqliteFailure(handle, step));
        const QString verdict = check.text(0).value_or(QString());
        if (verdict != QLatin1String("ok"))
            return OpenResult::failure(QStringLiteral("the database is damaged (") % verdict % QLatin1Char(')'));
    }
    if (!db->hasTable(QStringLiteral("notes")))
        return OpenResult::failure(
            QStringLiteral("the database holds no notes table, so it isn't a Scrivlet notes database"));
    return OpenResult(std::move(db));
}

bool LegacyDatabase::hasTable(const QString &name) const
{
    Query query(m_db, QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE type='table' AND name=?"));
    if (!query.isValid())
        return false;
    const QByteArray utf8 = name.toUtf8();
    sqlite3_bind_text(query.handle(), 1, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
    return query.step() == SQLITE_ROW && query.integer(0).value_or(0) > 0;
}

std::optional<QString> LegacyDatabase::readNotes(const std::function<bool(CDNote &&)> &visit)
{
    Query notes(m_db, QStringLiteral("SELECT * FROM notes"));
    if (!notes.isValid())
        return notes.error();
    const int objectIdColumn = notes.column({"objectId"});
    // A copy of the current store (a backup renamed by hand) ties child rows to the
    // note's row and names its checklist table differently.
    const Link link = objectIdColumn >= 0 && !hasTable(QStringLiteral("checklist_items")) ? Link::byRow : Link::byId;

    Children children;
    const auto readTable = [&](std::initializer_list<const char *> names, auto &into, auto make) {
        for (const char *name : names) {
            const QString table = QString::fromLatin1(name);
            if (!hasTable(table))
                continue;
            using Row = typename std::decay_t<decltype(into)>::mapped_type::value_type;
            return readChildren<Row>(m_db, table, link, into, make);
        }
        return std::optional<QString>();
    };
    if (auto error = readTable({"checklist_items", "checklistItems"}, children.checklistItems,
                               std::function<CDChecklistItem(const Query &)>(checklistItemFrom)))
        return error;
    if (auto error =
            readTable({"scrivlinks"}, children.scrivlinks, std::function<CDScrivlink(const Query &)>(scrivlinkFrom)))
        return error;
    if (auto error = readTable({"attachments"}, children.attachments,
                               std::function<CDAttachment(const Query &)>(attachmentFrom)))
        return error;

    const int id = notes.column({"id"});
    const int content = notes.column({"content"});
    const int created = notes.column({"created"});
    const int lastModified = notes.column({"lastModified", "last_modified"});
    const int dbIndex = notes.column({"dbIndex", "db_index"});
    const int isSlotted = notes.column({"isSlotted", "is_slotted"});
    const int skippedURLs = notes.column({"skippedURLs", "skipped_urls"});
    const int isTutorial = notes.column({"isTutorial"});
    const int slotIndex = notes.column({"slotIndex"});
    const int softDeleted = notes.column({"softDeleted"});
    const int deletedAt = notes.column({"deletedAt"});

    int rc;
    while ((rc = notes.step()) == SQLITE_ROW) {
        CDNote note;
        note.id = notes.uuid(id);
        if (!note.id) {
            // A row without a usable id (an old row number, say) gets one made from that
            // id, or from its text when it has none: the same on every import, so a
            // second import still skips it.
            const QString rawId = notes.text(id).value_or(QString()).trimmed();
            const QString seed = rawId.isEmpty() ? QStringLiteral("content:") % notes.text(content).value_or(QString())
                                                 : QStringLiteral("id:") % rawId;
            note.id = QUuid::createUuidV5(QUuid(QStringLiteral("6f0e3c52-3a5e-4c7e-9d0b-1c2a4b5d6e7f")), seed);
        }
        note.content = notes.text(content);
        note.created = notes.date(created);
        note.lastModified = notes.date(lastModified);
        note.dbIndex = notes.int32(dbIndex);
        note.isSlotted = notes.flag(isSlotted);
        note.skippedURLs = skippedUrlsFrom(notes, skippedURLs);
        note.isTutorial = notes.flag(isTutorial);
        note.slotIndex = notes.int32(slotIndex);
        note.softDeleted = notes.flag(softDeleted);
        note.deletedAt = notes.date(deletedAt);

        const QString key =
            link == Link::byId ? notes.key(id) : QString::number(notes.integer(objectIdColumn).value_or(0));
        note.checklistItems = children.checklistItems.take(key);
        note.scrivlinks = children.scrivlinks.take(key);
        note.attachments = children.attachments.take(key);
        if (!visit(std::move(note)))
            return std::nullopt;
    }
    if (rc != SQLITE_DONE)
        return sqliteFailure(m_db, rc);
    return std::nullopt;
}

std::optional<QDateTime> LegacyDatabase::dateFromNumber(double value)
{
    if (!std::isfinite(value))
        return std::nullopt;
    const double milliseconds = std::abs(value) > kLargestSeconds ? value : value * 1000.0;
    if (std::abs(milliseconds) > kLargestMilliseconds)
        return std::nullopt;
    return QDateTime::fromMSecsSinceEpoch(qint64(std::llround(milliseconds)), Qt::UTC);
}

std::optional<QDateTime> LegacyDatabase::dateFromText(const QString &text)
{
    QString value = text.trimmed();
    if (value.isEmpty())
        return std::nullopt;
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (isNumber)
        return dateFromNumber(number);

    // SQLite's own date functions write a space between date and time, and some
    // writers put one before the offset too.
    if (value.size() > 10 && value.at(10) == QLatin1Char(' '))
        value[10] = QLatin1Char('T');
    static const QRegularExpression spacedOffset(QStringLiteral("\\s+(Z|[+-]\\d{2}:?\\d{2})$"));
    value.replace(spacedOffset, QStringLiteral("\\1"));
    QDateTime date = QDateTime::fromString(value, Qt::ISODateWithMs);
    if (!date.isValid())
        return std::nullopt;
    if (date.timeSpec() == Qt::LocalTime)
        date = QDateTime(date.date(), date.time(), Qt::UTC);
    return date.toUTC();
}

} // namespace scrivlet
