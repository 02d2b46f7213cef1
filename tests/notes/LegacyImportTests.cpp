#include "NotesStoreFixture.h"

#include "notes/BackupManager.h"
#include "notes/LegacyDatabase.h"
#include "notes/LegacyImporter.h"
#include "shell/preferences/MigrationRecords.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

#include <cmath>

using namespace scrivlet;
using namespace scrivlet::test;

namespace {

// A database as the earlier app wrote it, built with the SQLite C API.
class LegacyFile {
public:
    enum Tables { notesOnly = 0, checklist = 1, links = 2, attachments = 4, all = 7 };

    explicit LegacyFile(const QString &path, int tables = all)
    {
        EXPECT_EQ(sqlite3_open(path.toUtf8().constData(), &m_db), SQLITE_OK);
        exec("PRAGMA synchronous = OFF"); // a throwaway file needs no flushing to disk
        exec("CREATE TABLE notes (id TEXT PRIMARY KEY, created REAL, lastModified REAL, content TEXT, "
             "dbIndex INTEGER, isSlotted INTEGER, skippedURLs TEXT)");
        if (tables & checklist)
            exec("CREATE TABLE checklist_items (id TEXT PRIMARY KEY, note_id TEXT, content TEXT, checked INTEGER, "
                 "verticalPosition REAL, responsibilityRangeLocation INTEGER, responsibilityRangeLength INTEGER, "
                 "\"index\" INTEGER, isHidden INTEGER)");
        if (tables & links)
            exec("CREATE TABLE scrivlinks (id TEXT PRIMARY KEY, note_id TEXT, fullUrl TEXT, shortenedUrl TEXT, "
                 "currentRangeLocation INTEGER, currentRangeLength INTEGER)");
        if (tables & attachments)
            exec(
                "CREATE TABLE attachments (id TEXT PRIMARY KEY, note_id TEXT, file_url TEXT, location_type TEXT, "
                "file_type TEXT, sort_order INTEGER, file_name TEXT, file_size INTEGER, created REAL, mime_type TEXT)");
        exec("CREATE TABLE note_stats (total_notes INTEGER, total_words INTEGER, lines_with_equals INTEGER, "
             "avg_notes_per_day REAL)");
        exec("CREATE VIRTUAL TABLE fts_notes USING fts5(note_id UNINDEXED, content, tokenize='porter')");
    }
    ~LegacyFile() { sqlite3_close(m_db); }

    void exec(const char *sql, const QVariantList &values = {})
    {
        sqlite3_stmt *stmt = nullptr;
        ASSERT_EQ(sqlite3_prepare_v2(m_db, sql, -1, &stmt, nullptr), SQLITE_OK) << sqlite3_errmsg(m_db);
        for (int i = 0; i < values.size(); ++i) {
            const QVariant &value = values.at(i);
            if (value.isNull()) {
                sqlite3_bind_null(stmt, i + 1);
            } else if (value.metaType().id() == QMetaType::Double) {
                sqlite3_bind_double(stmt, i + 1, value.toDouble());
            } else if (value.metaType().id() == QMetaType::QString) {
                const QByteArray text = value.toString().toUtf8();
                sqlite3_bind_text(stmt, i + 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
            } else {
                sqlite3_bind_int64(stmt, i + 1, value.toLongLong());
            }
        }
        EXPECT_EQ(sqlite3_step(stmt), SQLITE_DONE) << sqlite3_errmsg(m_db);
        sqlite3_finalize(stmt);
    }

    void addNote(const QString &id, const QString &content, const QVariant &lastModified,
                 const QVariant &created = QVariant(), qint64 dbIndex = 1, bool isSlotted = false,
                 const QVariant &skippedURLs = QVariant())
    {
        exec("INSERT INTO notes VALUES (?, ?, ?, ?, ?, ?, ?)",
             {id, created.isNull() ? lastModified : created, lastModified, content, dbIndex, isSlotted, skippedURLs});
        exec("INSERT INTO fts_notes (note_id, content) VALUES (?, ?)", {id, content});
    }

private:
    sqlite3 *m_db = nullptr;
};

// Seconds since 1970 of 2025-06-01 08:00 UTC plus some minutes: the dates of the tests.
double at(int minute)
{
    return 1748764800.0 + minute * 60;
}

QDateTime dateAt(int minute)
{
    return QDateTime::fromSecsSinceEpoch(qint64(at(minute)), Qt::UTC);
}

QString newId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

class LegacyImportTest : public NotesStoreTest {
protected:
    void SetUp() override
    {
        NotesStoreTest::SetUp();
        importer = std::make_unique<LegacyImporter>(*stack, *manager, settings, clock);
        legacyPath = QDir(dataPath()).filePath(QStringLiteral("notes.sqlite3"));
        m_previousHandler = qInstallMessageHandler(&LegacyImportTest::capture);
        logLines().clear();
    }
    void TearDown() override { qInstallMessageHandler(m_previousHandler); }

    static QStringList &logLines()
    {
        static QStringList lines;
        return lines;
    }
    static void capture(QtMsgType, const QMessageLogContext &, const QString &message) { logLines().append(message); }

    QByteArray storeBytes() const
    {
        QByteArray bytes;
        for (const char *suffix : {"", "-wal"}) {
            QFile file(CoreDataStack::storePath(dataPath()) + QLatin1String(suffix));
            if (file.open(QIODevice::ReadOnly))
                bytes += file.readAll();
        }
        return bytes;
    }

    std::unique_ptr<LegacyImporter> importer;
    QString legacyPath;

private:
    QtMessageHandler m_previousHandler = nullptr;
};

} // namespace

TEST(LegacyDates, NumbersAndIsoTextBothRead)
{
    const QDateTime base = QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5), Qt::UTC);
    const qint64 seconds = base.toSecsSinceEpoch();
    EXPECT_EQ(LegacyDatabase::dateFromNumber(double(seconds)), base);
    EXPECT_EQ(LegacyDatabase::dateFromNumber(seconds + 0.25), base.addMSecs(250));
    EXPECT_EQ(LegacyDatabase::dateFromNumber(double(seconds) * 1000.0), base) << "milliseconds";
    EXPECT_EQ(LegacyDatabase::dateFromNumber(std::nan("")), std::nullopt);

    const std::vector<std::pair<const char *, std::optional<QDateTime>>> texts = {
        {"2024-01-02T03:04:05Z", base},
        {"2024-01-02T03:04:05.123Z", base.addMSecs(123)},
        {"2024-01-02 03:04:05", base},
        {"2024-01-02T03:04:05", base},
        {"2024-01-02T05:04:05+02:00", base},
        {"2024-01-02 03:04:05 +0000", base},
        {" 1704164645 ", base},
        {"", std::nullopt},
        {"yesterday", std::nullopt},
        {"2024-13-45T03:04:05Z", std::nullopt},
    };
    for (const auto &[text, expected] : texts)
        EXPECT_EQ(LegacyDatabase::dateFromText(QLatin1String(text)), expected) << text;
}

TEST_F(LegacyImportTest, ImportsNotesWithTheirRowsOnceOnly)
{
    const QString alpha = QStringLiteral("E621E1F8-C36C-495A-93FC-0C247A3E6E5F"); // as the old app wrote ids
    const QString beta = newId();
    const QString slotted = newId();
    {
        LegacyFile file(legacyPath);
        file.addNote(alpha, QStringLiteral("alpha"), at(10) + 0.5, at(1), 3, false,
                     QStringLiteral("[\"https://a.example\"]"));
        file.addNote(beta, QStringLiteral("beta"), QStringLiteral("2025-06-01 08:20:00"),
                     QStringLiteral("2025-06-01T08:02:00Z"));
        file.addNote(slotted, QStringLiteral("in a slot"), at(30), at(30), 2, true);
        file.exec("INSERT INTO checklist_items VALUES (?, ?, 'second', 1, 40.5, 10, 6, 1, 0)", {newId(), alpha});
        file.exec("INSERT INTO checklist_items VALUES (?, ?, 'first', 0, 20.0, 0, 5, 0, 1)", {newId(), alpha});
        file.exec("INSERT INTO scrivlinks VALUES (?, ?, 'https://example.com/long/path', 'example.com/…', 7, 14)",
                  {newId(), alpha});
        file.exec("INSERT INTO attachments VALUES (?, ?, 'file:///tmp/a.png', 'local', 'image', 2, 'a.png', 0, ?, "
                  "NULL)",
                  {newId(), beta, at(3)});
    }

    const LegacyImportResult first = importer->importLegacyNow();
    ASSERT_TRUE(first.ok) << first.message.toStdString();
    EXPECT_EQ(first.imported, 3);
    EXPECT_EQ(first.message, QStringLiteral("Imported 3 notes"));

    const auto a = manager->fetchNote(QUuid(alpha));
    ASSERT_TRUE(a);
    EXPECT_EQ(a->content, QStringLiteral("alpha"));
    EXPECT_EQ(a->created, dateAt(1));
    EXPECT_EQ(a->lastModified, dateAt(10).addMSecs(500));
    ASSERT_EQ(a->checklistManager->checklist.size(), 2u);
    EXPECT_EQ(a->checklistManager->checklist[0]->content, QStringLiteral("first"));
    EXPECT_TRUE(a->checklistManager->checklist[1]->checked);
    ASSERT_EQ(a->scrivlinkManager->scrivlinks.size(), 1u);
    EXPECT_EQ(a->scrivlinkManager->scrivlinks[0].fullUrl, QStringLiteral("https://example.com/long/path"));
    EXPECT_EQ(manager->fetchRow(QUuid(alpha))->skippedURLs, QStringList{QStringLiteral("https://a.example")});

    const auto b = manager->fetchNote(QUuid(beta));
    ASSERT_TRUE(b);
    EXPECT_EQ(b->created, dateAt(2));
    EXPECT_EQ(b->lastModified, dateAt(20));
    ASSERT_EQ(b->attachments.size(), 1u);
    EXPECT_EQ(b->attachments[0].fileName, QStringLiteral("a.png"));
    EXPECT_EQ(b->attachments[0].fileSize, std::nullopt);

    EXPECT_EQ(manager->fetchNote(QUuid(slotted))->dbIndex, 2) << "slotted notes keep their own sequence";

    // A second run skips every id it finds, even where the old file now says otherwise.
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open(legacyPath.toUtf8().constData(), &db), SQLITE_OK);
    sqlite3_exec(db, "UPDATE notes SET content = 'changed in the old app'", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    const LegacyImportResult second = importer->importFromFile(legacyPath);
    EXPECT_EQ(second.message, QStringLiteral("No new notes: all 3 notes are already here"));
    EXPECT_EQ(manager->fetchAll(true).size(), 3u);
    EXPECT_EQ(manager->fetchNote(QUuid(alpha))->content, QStringLiteral("alpha"));
}

TEST_F(LegacyImportTest, OptionalTablesAndBadIdsDontStopTheImport)
{
    {
        LegacyFile file(legacyPath, LegacyFile::checklist);
        file.addNote(newId(), QStringLiteral("with a list"), at(1));
        file.addNote(QStringLiteral("not-a-uuid"), QStringLiteral("odd id"), at(2));
        file.addNote(QString(), QStringLiteral("no id"), at(3));
        file.exec("INSERT INTO checklist_items (id, note_id, content, \"index\") "
                  "SELECT 'x', id, 'item', 0 FROM notes WHERE content = 'with a list'");
    }
    const LegacyImportResult first = importer->importFromFile(legacyPath);
    ASSERT_TRUE(first.ok) << first.message.toStdString();
    EXPECT_EQ(first.imported, 3);
    const auto notes = manager->fetchAll(false);
    ASSERT_EQ(notes.size(), 3u);
    EXPECT_EQ(notes[0].checklistManager->checklist.size(), 1u);
    EXPECT_EQ(notes[1].content, QStringLiteral("odd id"));

    // Notes without a usable id get the same made-up id each time, so they aren't doubled.
    const LegacyImportResult second = importer->importFromFile(legacyPath);
    EXPECT_EQ(second.imported, 0);
    EXPECT_EQ(manager->fetchAll(false).size(), 3u);
}

TEST_F(LegacyImportTest, ImportedNotesArePlacedByDateAmongPlacedNotes)
{
    const auto placed = [&](qint64 dbIndex, int minute) {
        return insertRaw({.dbIndex = dbIndex,
                          .lastModified = dateAt(minute).toMSecsSinceEpoch(),
                          .created = dateAt(minute).toMSecsSinceEpoch(),
                          .ckChangeTag = QStringLiteral("tag")});
    };
    placed(10000, 10);
    placed(20000, 20);
    placed(20001, 30);
    placed(40000, 40);
    const QString beforeAll = newId(), between = newId(), noRoom = newId(), wide = newId();
    {
        LegacyFile file(legacyPath);
        file.addNote(noRoom, QStringLiteral("no room"), at(25), at(25), 7);
        file.addNote(beforeAll, QStringLiteral("oldest"), at(5), at(5), 999999);
        file.addNote(wide, QStringLiteral("wide gap"), at(35));
        file.addNote(between, QStringLiteral("between"), at(15));
    }
    const LegacyImportResult result = importer->importFromFile(legacyPath);
    ASSERT_TRUE(result.ok) << result.message.toStdString();

    EXPECT_EQ(manager->fetchNote(QUuid(beforeAll))->dbIndex, 0);
    EXPECT_EQ(manager->fetchNote(QUuid(between))->dbIndex, 15000);
    EXPECT_EQ(manager->fetchNote(QUuid(noRoom))->dbIndex, 50000) << "no room between 20000 and 20001: on top";
    EXPECT_EQ(manager->fetchNote(QUuid(wide))->dbIndex, 30000);
    for (const QString &id : {beforeAll, between, noRoom, wide})
        EXPECT_EQ(manager->fetchRow(QUuid(id))->ckChangeTag, QStringLiteral("positioned"));
    EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM notes WHERE ckChangeTag = 'tag' AND dbIndex IN "
                                   "(10000, 20000, 20001, 40000)")),
              4)
        << "the notes already there keep their places";
    EXPECT_TRUE(
        logLines().contains(QStringLiteral("Migrator - tight gap between 20000 and 20001, appending at 50000")));
    EXPECT_TRUE(logLines().contains(QStringLiteral("Migrator - slotted 4 imported notes into existing order")));

    // Nothing new the next time, and so nothing to place.
    importer->importFromFile(legacyPath);
    EXPECT_TRUE(logLines().contains(QStringLiteral("Migrator - no pending notes to reindex")));
}

TEST_F(LegacyImportTest, LargeImportsSaveInBatchesAndKeepDateOrder)
{
    {
        LegacyFile file(legacyPath, LegacyFile::notesOnly);
        file.exec("BEGIN");
        for (int i = 449; i >= 0; --i) // newest first, so the file's order isn't the date order
            file.addNote(newId(), QStringLiteral("note %1").arg(i), at(i), at(i), 450 - i);
        file.exec("COMMIT");
    }
    EXPECT_EQ(importer->importFromFile(legacyPath).imported, 450);
    const auto notes = manager->fetchAll(false);
    ASSERT_EQ(notes.size(), 450u);
    for (int i = 0; i < 450; i += 50)
        EXPECT_EQ(notes[std::size_t(i)].content, QStringLiteral("note %1").arg(i));
    EXPECT_EQ(notes.back().dbIndex, 4500000);
    EXPECT_TRUE(logLines().contains(QStringLiteral("Migrator - saved batch (400 notes)")));
}

TEST_F(LegacyImportTest, BootstrapOfANewInstallTurnsSyncOnOnce)
{
    NotesPreferences preferences(settings);
    preferences.setSyncWithICloud(false);
    importer->bootstrapIfNeeded();
    EXPECT_TRUE(preferences.syncWithICloud());
    EXPECT_TRUE(preferences.migratedToCoreData());
    EXPECT_TRUE(MigrationRecords(settings).didBootstrap_2025_09_iCloudDefault());

    // A legacy file appearing later isn't imported at start.
    preferences.setSyncWithICloud(false);
    LegacyFile(legacyPath).addNote(newId(), QStringLiteral("late"), at(1));
    importer->bootstrapIfNeeded();
    EXPECT_FALSE(preferences.syncWithICloud());
    EXPECT_EQ(manager->fetchAll(false).size(), 0u);
}

TEST_F(LegacyImportTest, BootstrapOfAnUpgradeImportsAndTurnsSyncOff)
{
    // Old backups alone mark an upgrade too, with nothing to import.
    LegacyFile(QDir(dataPath()).filePath(QStringLiteral("notes_backup_2024-05-01.sqlite3")))
        .addNote(newId(), QStringLiteral("in a backup"), at(1));
    importer->bootstrapIfNeeded();
    EXPECT_FALSE(NotesPreferences(settings).syncWithICloud());
    EXPECT_FALSE(settings.contains(QLatin1String(LegacyImporter::kMigratedKey)));
    EXPECT_TRUE(logLines().contains(QStringLiteral("Migrator - no legacy DB found; nothing to do")));

    LegacyFile(legacyPath).addNote(newId(), QStringLiteral("from the old app"), at(1));
    QFile legacy(legacyPath);
    ASSERT_TRUE(legacy.open(QIODevice::ReadOnly));
    const QByteArray legacyBytes = legacy.readAll();
    settings.remove(QStringLiteral("didBootstrap_2025_09_iCloudDefault"));
    NotesPreferences(settings).setSyncWithICloud(true);
    importer->bootstrapIfNeeded();
    EXPECT_FALSE(NotesPreferences(settings).syncWithICloud());
    EXPECT_TRUE(NotesPreferences(settings).migratedToCoreData());
    EXPECT_TRUE(MigrationRecords(settings).didBootstrap_2025_09_iCloudDefault());
    EXPECT_TRUE(settings.value(QLatin1String(LegacyImporter::kMigratedKey)).toBool());
    EXPECT_EQ(manager->fetchAll(false).size(), 1u);
    EXPECT_TRUE(logLines().contains(QStringLiteral("Migrator - migration complete")));
    QFile copy(QDir(dataPath())
                   .filePath(QStringLiteral("notes_preCoreDataBackup_") %
                             clock.now().toLocalTime().toString(QStringLiteral("yyyy-MM-dd_HH-mm-ss")) %
                             QStringLiteral(".sqlite3")));
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly)) << "the legacy file is copied aside before the import";
    EXPECT_EQ(copy.readAll(), legacyBytes);

    importer->migrateLegacyIfNeeded();
    EXPECT_TRUE(logLines().contains(QStringLiteral("Migrator - already migrated; skipping")));
}

TEST_F(LegacyImportTest, DamagedOrForeignFilesLeaveTheStoreAlone)
{
    Note note = manager->createNote();
    note.content = QStringLiteral("mine");
    manager->saveNote(note);
    const QByteArray before = storeBytes();

    const auto write = [](const QString &path, const QByteArray &bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    };
    const QString text = QDir(dataPath()).filePath(QStringLiteral("text.sqlite3"));
    write(text, QByteArray("These are my notes, not a database.\n").repeated(200));
    const QString foreign = QDir(dataPath()).filePath(QStringLiteral("foreign.sqlite3"));
    {
        LegacyFile(foreign, LegacyFile::notesOnly).exec("ALTER TABLE notes RENAME TO recipes");
    }
    const QString damaged = QDir(dataPath()).filePath(QStringLiteral("damaged.sqlite3"));
    {
        LegacyFile file(damaged, LegacyFile::notesOnly);
        file.exec("BEGIN");
        for (int i = 0; i < 300; ++i)
            file.addNote(newId(), QStringLiteral("long text ").repeated(100), at(i));
        file.exec("COMMIT");
    }
    {
        QFile file(damaged);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_GT(file.size(), 40 * 4096);
        file.seek(20 * 4096);
        file.write(QByteArray(3 * 4096, '\x5a'));
    }

    const std::vector<std::pair<QString, const char *>> cases = {
        {text, "Could not import text.sqlite3: the file is not a SQLite database"},
        {foreign, "Could not import foreign.sqlite3: the database holds no notes table"},
        {damaged, "Could not import damaged.sqlite3: the database is damaged"},
    };
    for (const auto &[path, message] : cases) {
        const LegacyImportResult result = importer->importFromFile(path);
        EXPECT_FALSE(result.ok) << message;
        EXPECT_TRUE(result.message.startsWith(QLatin1String(message))) << result.message.toStdString();
        EXPECT_EQ(result.imported, 0);
        EXPECT_EQ(storeBytes(), before) << message;
        EXPECT_FALSE(manager->isImporting());
    }
    EXPECT_EQ(manager->fetchAll(true).size(), 1u);

    // At start the failure is logged and the import is tried again next time.
    ASSERT_TRUE(QFile::copy(text, legacyPath));
    importer->migrateLegacyIfNeeded();
    EXPECT_FALSE(settings.contains(QLatin1String(LegacyImporter::kMigratedKey)));
    EXPECT_TRUE(logLines().filter(QStringLiteral("Migrator - ERROR opening legacy DB or migrating: ")).size() == 1);

    const LegacyImportResult missing = importer->importFromFile(QStringLiteral("/no/such/notes.sqlite3"));
    EXPECT_FALSE(missing.ok);
    EXPECT_EQ(missing.message, QStringLiteral("File not found at /no/such/notes.sqlite3"));
    QFile::remove(legacyPath);
    EXPECT_EQ(importer->importLegacyNow().message, QStringLiteral("No legacy database found"));
    EXPECT_EQ(storeBytes(), before);
}

// A backup of the current store renamed by hand reads too: what was deleted since
// comes back, and nothing is doubled.
TEST_F(LegacyImportTest, ABackupOfTheStoreImportsTheNotesMissingSinceIt)
{
    Note kept = manager->createNote();
    kept.content = QStringLiteral("kept");
    manager->saveNote(kept);
    Note lost = manager->createNote();
    lost.content = QStringLiteral("deleted after the backup");
    manager->saveNote(lost);
    Note inTheVoid = manager->createNote();
    inTheVoid.content = QStringLiteral("already in The Void");
    manager->saveNote(inTheVoid);
    manager->softDelete(inTheVoid.id);

    const auto backup = BackupManager(*stack, *manager, settings, clock).backupNow();
    ASSERT_TRUE(backup.ok()) << backup.error().toStdString();
    manager->deleteRow(lost.id);
    manager->deleteRow(inTheVoid.id);

    const LegacyImportResult result = importer->importFromFile(backup.value());
    ASSERT_TRUE(result.ok) << result.message.toStdString();
    EXPECT_EQ(result.imported, 2);
    EXPECT_EQ(result.skipped, 1);
    EXPECT_EQ(manager->fetchNote(lost.id)->content, QStringLiteral("deleted after the backup"));
    EXPECT_TRUE(manager->fetchNote(inTheVoid.id)->softDeleted);
    EXPECT_EQ(manager->fetchAll(false).size(), 2u);
}
