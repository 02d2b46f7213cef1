#include "notes/CoreDataStack.h"

#include "notes/NotesLogging.h"
#include "notes/TextFolding.h"
#include "notes/Transaction.h"

#include <QDir>
#include <QStandardPaths>

#include <sqlite3.h>

#include <array>

namespace scrivlet {

namespace {

// The schema, one step per version. A later change of the store is a new step at the
// end that migrates the file in place: users' notes are never reset to make room for
// a new column. Steps already shipped are never edited.
//
// Row identities are never reused, so a note deleted and another inserted before the
// next save can't be mistaken for one another, and a rewritten child row is a new row.
// Dates are milliseconds since 1970 UTC, ids the UUID's text without braces, flags 0
// and 1. Columns the model allows to be nil have no NOT NULL. Child rows point at the
// note's own row and go with it, so deleting a note row anywhere (a single delete or a
// batch) leaves no orphans.
constexpr std::array kSchemaSteps = {
    R"sql(
CREATE TABLE notes (
    objectId INTEGER PRIMARY KEY AUTOINCREMENT,
    ckChangeTag TEXT,
    ckSystemFields BLOB,
    content TEXT,
    created INTEGER,
    dbIndex INTEGER NOT NULL DEFAULT 0,
    deletedAt INTEGER,
    id TEXT,
    isSlotted INTEGER NOT NULL DEFAULT 0,
    isTutorial INTEGER NOT NULL DEFAULT 0,
    lastModified INTEGER,
    skippedURLs TEXT,
    slotIndex INTEGER NOT NULL DEFAULT 0,
    softDeleted INTEGER
);
CREATE INDEX notes_id ON notes(id);
CREATE INDEX notes_sequence ON notes(isSlotted, dbIndex);
CREATE INDEX notes_deletedAt ON notes(softDeleted, deletedAt);

CREATE TABLE checklistItems (
    objectId INTEGER PRIMARY KEY AUTOINCREMENT,
    note INTEGER NOT NULL REFERENCES notes(objectId) ON DELETE CASCADE,
    checked INTEGER NOT NULL DEFAULT 0,
    content TEXT,
    id TEXT,
    "index" INTEGER NOT NULL DEFAULT 0,
    isHidden INTEGER NOT NULL DEFAULT 0,
    responsibilityRangeLength INTEGER NOT NULL DEFAULT 0,
    responsibilityRangeLocation INTEGER NOT NULL DEFAULT 0,
    verticalPosition REAL NOT NULL DEFAULT 0
);
CREATE INDEX checklistItems_note ON checklistItems(note);

CREATE TABLE scrivlinks (
    objectId INTEGER PRIMARY KEY AUTOINCREMENT,
    note INTEGER NOT NULL REFERENCES notes(objectId) ON DELETE CASCADE,
    currentRangeLength INTEGER NOT NULL DEFAULT 0,
    currentRangeLocation INTEGER NOT NULL DEFAULT 0,
    fullUrl TEXT,
    id TEXT,
    shortenedUrl TEXT
);
CREATE INDEX scrivlinks_note ON scrivlinks(note);

CREATE TABLE attachments (
    objectId INTEGER PRIMARY KEY AUTOINCREMENT,
    note INTEGER NOT NULL REFERENCES notes(objectId) ON DELETE CASCADE,
    created INTEGER,
    fileName TEXT,
    fileSize INTEGER NOT NULL DEFAULT 0,
    fileType TEXT,
    fileUrl TEXT,
    id TEXT,
    locationType TEXT,
    mimeType TEXT,
    sortOrder INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX attachments_note ON attachments(note);
)sql",
    // Search looks for a folded query in a folded copy of each note's text. The copy
    // lives in a trigram index, so a keystroke in the search bar finds its notes without
    // reading every note; the triggers keep it in step with every write of `content`,
    // whoever makes it. The index compares code points as folded, so it agrees exactly
    // with a plain scan of the folded texts.
    R"sql(
CREATE VIRTUAL TABLE noteSearch USING fts5(folded, tokenize = 'trigram case_sensitive 1');
INSERT INTO noteSearch(rowid, folded) SELECT objectId, scrivlet_fold(content) FROM notes;
CREATE TRIGGER notes_search_insert AFTER INSERT ON notes BEGIN
    INSERT INTO noteSearch(rowid, folded) VALUES (NEW.objectId, scrivlet_fold(NEW.content));
END;
CREATE TRIGGER notes_search_update AFTER UPDATE OF content ON notes WHEN NEW.content IS NOT OLD.content BEGIN
    UPDATE noteSearch SET folded = scrivlet_fold(NEW.content) WHERE rowid = NEW.objectId;
END;
CREATE TRIGGER notes_search_delete AFTER DELETE ON notes BEGIN
    DELETE FROM noteSearch WHERE rowid = OLD.objectId;
END;
)sql",
    // Notes still waiting for a place in the stack are looked for at every start; the
    // index holds only those, so a start with none of them doesn't read every note.
    R"sql(
CREATE INDEX IF NOT EXISTS notes_unplaced ON notes(objectId) WHERE ckChangeTag IS NULL;
)sql",
};

// The fold of search, for the triggers that keep the folded copy of each note.
void foldFunction(sqlite3_context *context, int, sqlite3_value **arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const auto *text = static_cast<const QChar *>(sqlite3_value_text16(arguments[0]));
    const int bytes = sqlite3_value_bytes16(arguments[0]);
    const QString folded = TextFolding::fold(QStringView(text, bytes / 2));
    sqlite3_result_text16(context, folded.utf16(), int(folded.size() * 2), SQLITE_TRANSIENT);
}

StoreError storeError(StoreError::Kind kind, const QString &path, const QString &reason)
{
    return StoreError{kind, reason % QStringLiteral(" (") % QDir::toNativeSeparators(path) % QLatin1Char(')')};
}

} // namespace

int CoreDataStack::currentSchemaVersion()
{
    return int(kSchemaSteps.size());
}

QString CoreDataStack::defaultDataDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

QString CoreDataStack::storePath(const QString &dataDirectory)
{
    return QDir(dataDirectory).filePath(QString::fromLatin1(kStoreFileName));
}

QString CoreDataStack::folderSettingsPath(const QString &dataDirectory)
{
    return QDir(dataDirectory).filePath(QStringLiteral("settings.ini"));
}

QString CoreDataStack::folderLockPath(const QString &dataDirectory)
{
    return QDir(dataDirectory).filePath(QStringLiteral("scrivlet.lock"));
}

Result<std::unique_ptr<CoreDataStack>, StoreError> CoreDataStack::open(const QString &dataDirectory)
{
    using OpenResult = Result<std::unique_ptr<CoreDataStack>, StoreError>;
    using Kind = StoreError::Kind;

    if (!QDir().mkpath(dataDirectory))
        qCWarning(lcNotes) << "Could not create the data directory" << dataDirectory;

    const QString path = storePath(dataDirectory);
    std::unique_ptr<CoreDataStack> stack(new CoreDataStack(path));
    Database &db = stack->m_db;
    if (!db.open(path))
        return OpenResult::failure(
            storeError(Kind::cannotOpen, path, QStringLiteral("Can't open the store file: ") % db.lastError()));
    if (sqlite3_db_readonly(db.handle(), "main") == 1)
        return OpenResult::failure(storeError(Kind::cannotOpen, path, QStringLiteral("The store file is read-only")));
    sqlite3_busy_timeout(db.handle(), 5000);
    // Registered before anything reads the schema: the search triggers call it.
    if (sqlite3_create_function_v2(db.handle(), "scrivlet_fold", 1,
                                   SQLITE_UTF16 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr, foldFunction,
                                   nullptr, nullptr, nullptr) != SQLITE_OK)
        return OpenResult::failure(storeError(Kind::configureFailed, path,
                                              QStringLiteral("Can't prepare search: ") %
                                                  QString::fromUtf8(sqlite3_errmsg(db.handle()))));

    // Note text is UTF-16 in memory; a store kept in UTF-16 holds it unconverted, so
    // unpaired surrogates typed or pasted into a note come back as they went in. It
    // only takes effect for a new file; an existing file keeps its encoding.
    db.exec(QStringLiteral("PRAGMA encoding = 'UTF-16le'"));

    // Read before anything writes: a file that isn't a store must stay as it is.
    const std::optional<qint64> tables = db.queryInt(QStringLiteral("SELECT count(*) FROM sqlite_master"));
    if (!tables)
        return OpenResult::failure(
            storeError(Kind::notADatabase, path, QStringLiteral("The store file can't be read: ") % db.lastError()));
    const std::optional<qint64> version = db.queryInt(QStringLiteral("PRAGMA user_version"));
    if (!version)
        return OpenResult::failure(
            storeError(Kind::notADatabase, path, QStringLiteral("The store file can't be read: ") % db.lastError()));
    if (*version > currentSchemaVersion()) {
        return OpenResult::failure(storeError(
            Kind::newerSchema, path,
            QStringLiteral("The store was written by a newer version of Scrivlet (schema %1, this version knows %2)")
                .arg(*version)
                .arg(currentSchemaVersion())));
    }
    if (*version == 0 && *tables > 0) {
        return OpenResult::failure(storeError(Kind::notADatabase, path,
                                              QStringLiteral("The file holds a database that isn't a Scrivlet store")));
    }

    Statement journal = db.prepare(QStringLiteral("PRAGMA journal_mode = WAL"));
    if (journal.step() != Statement::Step::Row ||
        journal.columnText(0).compare(QLatin1String("wal"), Qt::CaseInsensitive) != 0) {
        const QString reason = journal.lastError().isEmpty()
                                   ? QStringLiteral("journal mode stays ") % journal.columnText(0)
                                   : journal.lastError();
        return OpenResult::failure(
            storeError(Kind::configureFailed, path, QStringLiteral("Can't switch the store to WAL: ") % reason));
    }
    journal = Statement();
    if (!db.exec(QStringLiteral("PRAGMA foreign_keys = ON; PRAGMA synchronous = NORMAL")) ||
        db.queryInt(QStringLiteral("PRAGMA foreign_keys")).value_or(0) != 1) {
        return OpenResult::failure(
            storeError(Kind::configureFailed, path,
                       QStringLiteral("Can't enforce the links between notes and their rows: ") % db.lastError()));
    }

    for (int step = int(*version); step < currentSchemaVersion(); ++step) {
        Transaction transaction(db);
        const bool ok = transaction.isActive() && db.exec(QString::fromUtf8(kSchemaSteps[std::size_t(step)])) &&
                        db.exec(QStringLiteral("PRAGMA user_version = %1").arg(step + 1)) && transaction.commit();
        if (!ok) {
            const QString reason = transaction.lastError().isEmpty() ? db.lastError() : transaction.lastError();
            return OpenResult::failure(
                storeError(Kind::migrationFailed, path,
                           QStringLiteral("Can't bring the store to schema %1: %2").arg(step + 1).arg(reason)));
        }
        qCInfo(lcNotes) << "Store schema now at version" << step + 1;
    }
    return OpenResult(std::move(stack));
}

void CoreDataStack::failFatally(const StoreError &error)
{
    qFatal("Core Data store failed: %s", qUtf8Printable(error.message));
}

} // namespace scrivlet
