#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"

#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace scrivlet {
namespace {

struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

CliRun runCli(const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(QStringLiteral(SCRIVLET_CLI_PATH), arguments);
    EXPECT_TRUE(process.waitForStarted());
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60000));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

TEST(ScrivletCliLinks, ProcessShortensLinksAndLeavesMailAndCodeAlone)
{
    const CliRun plain = runCli({QStringLiteral("process")},
                                "note\nsee https://www.example.com/path/to/my-long-article-name/ ok\n"
                                "twice https://x.com/a/abcdef-ghi https://x.com/b/abcdef-ghi\nmail bob@example.com\n");
    EXPECT_EQ(plain.exitCode, 0) << plain.err.constData();
    EXPECT_EQ(plain.out, QByteArray("note\nsee +example.com/...long-article-name+ ok\n"
                                    "twice +x.com/...abcdef-ghi+ +x.com/...abcdef-ghi[1]+\nmail bob@example.com\n"));

    const QByteArray code("code\nhttps://www.example.com/path/to/my-long-article-name/ ok");
    EXPECT_EQ(runCli({QStringLiteral("process")}, code).out, code);

    const QByteArray off("note\nhttps://www.example.com/path/to/my-long-article-name/ ok");
    EXPECT_EQ(
        runCli({QStringLiteral("process"), QStringLiteral("--set"), QStringLiteral("disableLinkShortening=true")}, off)
            .out,
        off);
}

TEST(ScrivletCliLinks, ShowPrintsTheNoteWithItsLinksInFull)
{
    QTemporaryDir dir;
    const QStringList dataDir{QStringLiteral("--data-dir"), dir.path()};
    const CliRun created =
        runCli(dataDir + QStringList{QStringLiteral("notes"), QStringLiteral("new"), QStringLiteral("placeholder")});
    ASSERT_EQ(created.exitCode, 0) << created.err.constData();
    const QString id = QString::fromUtf8(created.out).trimmed();

    const QString shortForm = QStringLiteral("+example.com/...long-article-name+");
    const QString fullUrl = QStringLiteral("https://www.example.com/path/to/my-long-article-name/");
    {
        auto stack = CoreDataStack::open(dir.path());
        ASSERT_TRUE(stack.ok());
        MemorySettingsStore settings;
        ManualClock clock;
        CoreDataManager store(*stack.value(), settings, clock);
        auto note = store.fetchNote(QUuid::fromString(id));
        ASSERT_TRUE(note.has_value()) << id.toStdString();
        note->content = QStringLiteral("links\nread ") + shortForm + QStringLiteral(" today");
        note->scrivlinkManager->scrivlinks.push_back(Scrivlink{QUuid::createUuid(), fullUrl, shortForm, {11, 34}});
        store.saveNote(*note);
    }

    const CliRun shown = runCli(dataDir + QStringList{QStringLiteral("notes"), QStringLiteral("show"), id});
    EXPECT_EQ(shown.exitCode, 0) << shown.err.constData();
    EXPECT_EQ(QString::fromUtf8(shown.out), QStringLiteral("links\nread ") + fullUrl + QStringLiteral(" today\n"));
}

} // namespace
} // namespace scrivlet
