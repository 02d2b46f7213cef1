#include "NotesStoreFixture.h"
#include "StoreWriterText.h"

#include "notes/BackupManager.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QHash>
#include <QProcess>
#include <QRandomGenerator>

#include <csignal>

using namespace scrivlet;
using namespace scrivlet::test;

namespace {

// Saves the writer reported as returned: the last save number per note.
QHash<QUuid, long> reportedSaves(const QByteArray &output)
{
    QHash<QUuid, long> saves;
    const QList<QByteArray> lines = output.split('\n');
    // The last piece is cut off or empty: only whole lines were reported.
    for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
        const QList<QByteArray> fields = lines.at(i).split(' ');
        if (fields.size() != 2)
            continue;
        saves[QUuid(QString::fromLatin1(fields.at(0)))] = fields.at(1).toLong();
    }
    return saves;
}

// The save number a stored text was written by, or -1 when the text is no save's.
long saveNumberOf(const QString &content)
{
    const qsizetype end = content.indexOf(QLatin1Char('\n'));
    if (!content.startsWith(QLatin1String("save ")) || end < 0)
        return -1;
    bool ok = false;
    const long save = content.mid(5, end - 5).toLong(&ok);
    return ok && content == StoreWriterText::contentFor(save) ? save : -1;
}

} // namespace

// Every save that returned before the process died is on disk whole after a reopen.
TEST(StoreReliability, SavesThatReturnedSurviveSigkill)
{
    QElapsedTimer elapsed;
    elapsed.start();
    for (int run = 0; run < 5; ++run) {
        SCOPED_TRACE(run);
        QTemporaryDir dir;
        ASSERT_TRUE(dir.isValid());
        QProcess writer;
        writer.setProgram(QStringLiteral(SCRIVLET_STORE_WRITER));
        writer.setArguments({dir.path()});
        writer.start();
        ASSERT_TRUE(writer.waitForStarted(5000));

        // Killed at a random moment: after some tens to a few hundred saves.
        const int killAfter = QRandomGenerator::global()->bounded(20, 400);
        QByteArray output;
        while (output.count('\n') < killAfter && writer.state() == QProcess::Running) {
            writer.waitForReadyRead(2000);
            output += writer.readAllStandardOutput();
        }
        ASSERT_EQ(writer.state(), QProcess::Running) << writer.readAllStandardError().toStdString();
        ::kill(pid_t(writer.processId()), SIGKILL);
        ASSERT_TRUE(writer.waitForFinished(5000));
        EXPECT_EQ(writer.exitStatus(), QProcess::CrashExit);
        output += writer.readAllStandardOutput();

        const QHash<QUuid, long> reported = reportedSaves(output);
        ASSERT_GE(reported.size(), 5);
        auto opened = CoreDataStack::open(dir.path());
        ASSERT_TRUE(opened.ok()) << opened.error().message.toStdString();
        ManualClock clock;
        MemorySettingsStore settings;
        CoreDataManager manager(*opened.value(), settings, clock);
        for (auto it = reported.cbegin(); it != reported.cend(); ++it) {
            const auto note = manager.fetchNote(it.key());
            ASSERT_TRUE(note) << "note " << it.key().toString().toStdString() << " is gone";
            // The save in flight at the kill may have landed too, but never in part.
            const long stored = saveNumberOf(note->content);
            EXPECT_GE(stored, it.value()) << "save " << it.value() << " was lost or torn";
        }
        Statement check = opened.value()->database().prepare(QStringLiteral("PRAGMA integrity_check"));
        ASSERT_EQ(check.step(), Statement::Step::Row);
        EXPECT_EQ(check.columnText(0), QStringLiteral("ok"));
    }
    EXPECT_LT(elapsed.elapsed(), 10000);
}

// A backup is restored by putting its files in place of the store's, as the user is
// told: the notes are then as they were when it was taken.
TEST_F(NotesStoreTest, BackupRestoresByRenamingItsFilesOverTheStore)
{
    Note kept = manager->createNote();
    kept.content = QStringLiteral("kept as it was");
    manager->saveNote(kept);
    Note edited = manager->createNote();
    edited.content = QStringLiteral("before the backup");
    manager->saveNote(edited);
    Note deleted = manager->createNote();
    deleted.content = QStringLiteral("deleted after the backup");
    manager->saveNote(deleted);
    ASSERT_TRUE(QFile::exists(CoreDataStack::storePath(dataPath()) + QStringLiteral("-wal")))
        << "the notes are still in the journal, so the backup must carry it";

    BackupManager backups(*stack, *manager, settings, clock);
    const auto backup = backups.backupNow();
    ASSERT_TRUE(backup.ok()) << backup.error().toStdString();
    const std::vector<Note> atBackup = manager->fetchAll(true);

    clock.advance(std::chrono::minutes(5));
    edited.content = QStringLiteral("after the backup");
    manager->saveNote(edited);
    manager->deleteRow(deleted.id);
    manager->createNote();
    ASSERT_EQ(manager->fetchNote(edited.id)->content, QStringLiteral("after the backup"));
    ASSERT_FALSE(manager->fetchNote(deleted.id));

    manager.reset();
    stack.reset();
    const QString store = CoreDataStack::storePath(dataPath());
    for (const char *suffix : {"", "-wal", "-shm"}) {
        const QString from = backup.value() + QLatin1String(suffix);
        const QString to = store + QLatin1String(suffix);
        QFile::remove(to);
        if (QFile::exists(from)) {
            ASSERT_TRUE(QFile::rename(from, to)) << suffix;
        }
    }
    openStore();

    const std::vector<Note> restored = manager->fetchAll(true);
    ASSERT_EQ(restored.size(), atBackup.size());
    for (std::size_t i = 0; i < restored.size(); ++i) {
        EXPECT_EQ(restored[i].id, atBackup[i].id);
        EXPECT_EQ(restored[i].content, atBackup[i].content);
        EXPECT_EQ(restored[i].dbIndex, atBackup[i].dbIndex);
    }
    EXPECT_EQ(manager->fetchNote(edited.id)->content, QStringLiteral("before the backup"));
    EXPECT_TRUE(manager->fetchNote(deleted.id));
}
