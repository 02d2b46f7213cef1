#include "NotesStoreFixture.h"

#include "notes/AutoBackupIntervalOption.h"
#include "notes/BackupManager.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace scrivlet;
using namespace scrivlet::test;

namespace {

class BackupTest : public NotesStoreTest {
protected:
    void SetUp() override
    {
        NotesStoreTest::SetUp();
        backups = std::make_unique<BackupManager>(*stack, *manager, settings, clock);
        Note note = manager->createNote();
        note.content = QStringLiteral("worth keeping");
        manager->saveNote(note);
    }

    QString stampOf(const QDateTime &time) const
    {
        return time.toLocalTime().toString(QLatin1String(BackupManager::kStampFormat));
    }

    // A backup file as an earlier run would have left it, `age` before now.
    QString plantBackup(std::chrono::seconds age, bool withCompanions = false)
    {
        const QString path = QDir(dataPath())
                                 .filePath(QStringLiteral("cd-v1-notes_cdbackup_") %
                                           stampOf(clock.now().addSecs(-age.count())) % QStringLiteral(".sqlite"));
        touch(path);
        if (withCompanions) {
            touch(path + QStringLiteral("-wal"));
            touch(path + QStringLiteral("-shm"));
        }
        return path;
    }

    static void touch(const QString &path)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        file.write("planted");
    }

    QStringList backupNames() const
    {
        QStringList names;
        for (const QString &path : backups->backups())
            names.append(QFileInfo(path).fileName());
        return names;
    }

    QStringList filesInFolder() const { return QDir(dataPath()).entryList(QDir::Files, QDir::Name); }

    std::unique_ptr<BackupManager> backups;
};

constexpr auto kHour = std::chrono::hours(1);

} // namespace

TEST(BackupDate, ReadsTheStampAtTheEndOfTheStem)
{
    const QDateTime expected(QDate(2025, 3, 14), QTime(15, 9, 26)); // local time
    EXPECT_EQ(BackupManager::backupDate(QStringLiteral("/folder/my_old_store_cdbackup_2025-03-14_15-09-26.sqlite")),
              expected);
    for (const char *name : {"x_cdbackup_bad.sqlite", "cd-v1-notes_cdbackup_2025-13-40_15-09-26.sqlite",
                             "a_2025-03-14.sqlite", "cd-v1-notes_cdbackup_2025-03-14_15:09:26.sqlite"}) {
        EXPECT_EQ(BackupManager::backupDate(QLatin1String(name)), BackupManager::distantPast()) << name;
    }
    EXPECT_EQ(AutoBackupInterval::fromRawValue(QStringLiteral("3 hours")), AutoBackupIntervalOption::threeHours);
    EXPECT_EQ(AutoBackupInterval::seconds(AutoBackupInterval::fromRawValue(QStringLiteral("1 month"))), 2592000);
}
TEST_F(BackupTest, SavesThenCopiesTheStoreWithItsJournalFiles)
{
    // A write still in the open context, as an import leaves it between batches.
    CDNote record;
    record.id = QUuid::createUuid();
    record.content = QStringLiteral("not yet saved");
    ASSERT_TRUE(manager->insertImportedNote(record));

    const auto made = backups->backupNow();
    ASSERT_TRUE(made.ok()) << made.error().toStdString();
    EXPECT_FALSE(manager->hasChanges());
    EXPECT_EQ(made.value(), QDir(dataPath())
                                .filePath(QStringLiteral("cd-v1-notes_cdbackup_") % stampOf(clock.now()) %
                                          QStringLiteral(".sqlite")));
    const QString store = CoreDataStack::storePath(dataPath());
    for (const char *suffix : {"", "-wal", "-shm"}) {
        QFile source(store + QLatin1String(suffix));
        QFile copy(made.value() + QLatin1String(suffix));
        ASSERT_TRUE(source.open(QIODevice::ReadOnly) && copy.open(QIODevice::ReadOnly)) << suffix;
        EXPECT_EQ(copy.readAll(), source.readAll()) << suffix;
    }
    EXPECT_EQ(filesInFolder().filter(QStringLiteral(".part")), QStringList());
    // A second backup within the same second replaces the first rather than failing.
    EXPECT_TRUE(backups->backupNow().ok());
    EXPECT_EQ(backupNames().size(), 1);

    // The copy holds the write that was pending.
    manager.reset();
    stack.reset();
    for (const char *suffix : {"", "-wal", "-shm"}) {
        QFile::remove(store + QLatin1String(suffix));
        QFile::copy(made.value() + QLatin1String(suffix), store + QLatin1String(suffix));
    }
    openStore();
    const auto restored = manager->fetchNote(*record.id);
    ASSERT_TRUE(restored);
    EXPECT_EQ(restored->content, QStringLiteral("not yet saved"));
}

TEST_F(BackupTest, RotationRemovesTheOldestToMakeRoom)
{
    NotesPreferences(settings).setAutoBackupQuantity(12);
    // Eleven dated backups, the oldest with its journal files, and one without a date.
    const QString oldest = plantBackup(std::chrono::hours(24 * 30), true);
    for (int day = 1; day <= 10; ++day)
        plantBackup(std::chrono::hours(24 * day));
    const QString undated = QDir(dataPath()).filePath(QStringLiteral("x_cdbackup_bad.sqlite"));
    touch(undated);
    // Not backups: a journal without its file, and the legacy database.
    touch(QDir(dataPath()).filePath(QStringLiteral("cd-v1-notes_cdbackup_2020-01-01_00-00-00.sqlite-wal")));
    touch(QDir(dataPath()).filePath(QStringLiteral("notes.sqlite3")));
    ASSERT_EQ(backups->backups().size(), 12);
    ASSERT_EQ(QFileInfo(backups->backups().first()).fileName(), QStringLiteral("x_cdbackup_bad.sqlite"))
        << "an undated backup counts as the oldest of all";

    backups->runPeriodicBackup();
    EXPECT_FALSE(QFile::exists(undated)) << "the undated one goes first";
    EXPECT_TRUE(QFile::exists(oldest));
    QStringList names = backupNames();
    EXPECT_EQ(names.size(), 12);
    EXPECT_EQ(names.last(), QStringLiteral("cd-v1-notes_cdbackup_") % stampOf(clock.now()) % QStringLiteral(".sqlite"));

    // Three hours on, the next run makes room by taking the oldest dated one, journal
    // files included.
    clock.advance(3 * kHour);
    backups->runPeriodicBackup();
    EXPECT_FALSE(QFile::exists(oldest));
    EXPECT_FALSE(QFile::exists(oldest + QStringLiteral("-wal")));
    EXPECT_FALSE(QFile::exists(oldest + QStringLiteral("-shm")));
    names = backupNames();
    EXPECT_EQ(names.size(), 12);
    EXPECT_EQ(names.last(), QStringLiteral("cd-v1-notes_cdbackup_") % stampOf(clock.now()) % QStringLiteral(".sqlite"));
    EXPECT_TRUE(QFile::exists(QDir(dataPath()).filePath(QStringLiteral("notes.sqlite3"))));

    // A smaller quantity trims down to it, counting the new backup.
    NotesPreferences(settings).setAutoBackupQuantity(3);
    clock.advance(std::chrono::seconds(1));
    backups->backupNow();
    EXPECT_EQ(backupNames().size(), 3);
}

TEST_F(BackupTest, NothingIsMadeWithinTheIntervalOrWhenOff)
{
    NotesPreferences preferences(settings);
    preferences.setAutoBackupInterval(QStringLiteral("1 hr"));
    plantBackup(std::chrono::minutes(59));
    backups->runPeriodicBackup();
    EXPECT_EQ(backupNames().size(), 1) << "the newest is younger than an hour";

    clock.advance(std::chrono::minutes(1));
    backups->runPeriodicBackup();
    EXPECT_EQ(backupNames().size(), 2) << "an hour old is old enough";
    clock.advance(std::chrono::minutes(30));
    backups->runPeriodicBackup(); // e.g. at quit, right after a resign
    EXPECT_EQ(backupNames().size(), 2);

    // An unknown interval is three hours.
    preferences.setAutoBackupInterval(QStringLiteral("hourly"));
    clock.advance(2 * kHour);
    backups->runPeriodicBackup();
    EXPECT_EQ(backupNames().size(), 2);
    clock.advance(std::chrono::minutes(31));
    backups->runPeriodicBackup();
    EXPECT_EQ(backupNames().size(), 3);

    // "Never" stops the periodic run but not a backup asked for.
    preferences.setAutoBackupInterval(QStringLiteral("Never"));
    clock.advance(24 * 30 * kHour);
    backups->runPeriodicBackup();
    EXPECT_EQ(backupNames().size(), 3);
    EXPECT_TRUE(backups->backupNow().ok());
    EXPECT_EQ(backupNames().size(), 4);

    // A backup dated ahead of the clock doesn't stop backups until the clock gets there.
    preferences.setAutoBackupInterval(QStringLiteral("10 mins"));
    plantBackup(-std::chrono::hours(24 * 365));
    clock.advance(std::chrono::minutes(11));
    backups->runPeriodicBackup();
    EXPECT_EQ(backupNames().size(), 6);
}
