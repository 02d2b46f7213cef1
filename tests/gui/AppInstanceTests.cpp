#include "support/VirtualDisplay.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

#include <memory>
#include <signal.h>

// These tests run the real app, several copies of it at a time, the way a user who
// starts it twice (or after a crash) does.

namespace {

const QString kApp = QStringLiteral(SCRIVLET_APP_PATH);

// A notes folder that makes no network calls.
std::unique_ptr<QTemporaryDir> notesFolder()
{
    auto dir = std::make_unique<QTemporaryDir>();
    QFile settings(dir->filePath(QStringLiteral("settings.ini")));
    settings.open(QIODevice::WriteOnly);
    settings.write("[General]\nupdateConversionRates=false\n");
    return dir;
}

struct App {
    std::unique_ptr<QProcess> process = std::make_unique<QProcess>();
    QByteArray out;
    QByteArray err;

    App(const QString &folder, const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
    {
        process->setProcessEnvironment(environment);
        process->start(kApp, {QStringLiteral("--data-dir"), folder});
        process->waitForStarted();
    }
    ~App()
    {
        if (process->state() != QProcess::NotRunning) {
            process->terminate();
            if (!process->waitForFinished(10000))
                process->kill();
            process->waitForFinished(2000);
        }
    }
    void collect()
    {
        out += process->readAllStandardOutput();
        err += process->readAllStandardError();
    }
    // Waits until `text` shows on standard output or error.
    bool waitFor(const QByteArray &text, int ms = 15000)
    {
        const QDeadlineTimer deadline(ms);
        while (!deadline.hasExpired()) {
            collect();
            if (out.contains(text) || err.contains(text))
                return true;
            process->waitForReadyRead(100);
        }
        collect();
        return false;
    }
    bool running() const { return process->state() == QProcess::Running; }
    // Waits until this instance holds `folder`'s lock, that is, it owns the folder.
    bool waitUntilOwns(const QString &folder, int ms = 15000)
    {
        const QByteArray pid = QByteArray::number(process->processId());
        const QDeadlineTimer deadline(ms);
        while (!deadline.hasExpired() && running()) {
            QFile lock(QDir(folder).filePath(QStringLiteral("scrivlet.lock")));
            if (lock.open(QIODevice::ReadOnly) && lock.readLine().trimmed() == pid)
                return true;
            collect();
            QThread::msleep(20);
        }
        return false;
    }
};

// Starts the app once more on `folder` and returns its exit code, or -1 if it was
// still running after `ms`.
int startAgain(const QString &folder, int ms = 15000, QByteArray *err = nullptr)
{
    QProcess again;
    again.start(kApp, {QStringLiteral("--data-dir"), folder});
    if (!again.waitForFinished(ms)) {
        again.kill();
        again.waitForFinished();
        ADD_FAILURE() << "still running: " << again.readAllStandardError().constData();
        return -1;
    }
    if (err)
        *err = again.readAllStandardError();
    return again.exitStatus() == QProcess::NormalExit ? again.exitCode() : -2;
}

const QByteArray kAsked = QByteArrayLiteral("a second start asked for the window");

} // namespace

TEST(SingleInstance, ASecondStartShowsTheFirstAndLeaves)
{
    auto folder = notesFolder();
    App first(folder->path());
    ASSERT_TRUE(first.waitUntilOwns(folder->path()));

    EXPECT_EQ(startAgain(folder->path()), 0);
    EXPECT_TRUE(first.waitFor(kAsked));
    EXPECT_TRUE(first.running());
    EXPECT_TRUE(QFile::exists(folder->filePath(QStringLiteral("scrivlet.lock"))));

    // Another folder is another instance: it stays.
    auto other = notesFolder();
    App second(other->path());
    QThread::msleep(1500);
    EXPECT_TRUE(second.running());
    first.collect();
    EXPECT_EQ(first.err.count(kAsked), 1);
}

TEST(SingleInstance, AStartWaitsForAnInstanceThatIsQuitting)
{
    auto folder = notesFolder();
    // What a quitting instance leaves for a moment: the folder locked, nobody answering.
    auto quitting = std::make_unique<QLockFile>(folder->filePath(QStringLiteral("scrivlet.lock")));
    ASSERT_TRUE(quitting->tryLock(0));

    App next(folder->path());
    QThread::msleep(1000);
    EXPECT_TRUE(next.running());
    EXPECT_FALSE(QFile::exists(folder->filePath(QStringLiteral("cd-v1-notes.sqlite"))))
        << "the store opened while another instance held it";
    quitting.reset();

    // Once the lock is free the waiting start comes up as the folder's instance.
    ASSERT_TRUE(next.waitUntilOwns(folder->path()));
    EXPECT_EQ(startAgain(folder->path()), 0);
    EXPECT_TRUE(next.waitFor(kAsked));
    EXPECT_TRUE(QFile::exists(folder->filePath(QStringLiteral("cd-v1-notes.sqlite"))));
}

TEST(SingleInstance, AStartGivesUpOnAnInstanceThatNeverAnswers)
{
    auto folder = notesFolder();
    QLockFile stuck(folder->filePath(QStringLiteral("scrivlet.lock")));
    ASSERT_TRUE(stuck.tryLock(0));
    QByteArray err;
    EXPECT_EQ(startAgain(folder->path(), 20000, &err), 1);
    EXPECT_TRUE(err.contains("another Scrivlet is using")) << err.constData();
    EXPECT_FALSE(QFile::exists(folder->filePath(QStringLiteral("cd-v1-notes.sqlite"))));
}

TEST(SingleInstance, TheLockOfAKilledInstanceIsTakenOver)
{
    auto folder = notesFolder();
    {
        App crashed(folder->path());
        ASSERT_TRUE(crashed.waitUntilOwns(folder->path()));
        ::kill(pid_t(crashed.process->processId()), SIGKILL);
        crashed.process->waitForFinished(5000);
    }
    ASSERT_TRUE(QFile::exists(folder->filePath(QStringLiteral("scrivlet.lock"))));

    App next(folder->path());
    ASSERT_TRUE(next.waitUntilOwns(folder->path()));
    EXPECT_EQ(startAgain(folder->path()), 0);
    EXPECT_TRUE(next.waitFor(kAsked));
    EXPECT_TRUE(next.running());
}

// The global hot key on a real X server: the app grabs it, a press toggles the window,
// and a second app that wants the same keys says why it can't have them.
TEST(GlobalHotKey, TogglesTheWindowOnAnXDesktop)
{
    const QString xvfb = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
    const QString xdotool = QStandardPaths::findExecutable(QStringLiteral("xdotool"));
    if (xvfb.isEmpty() || xdotool.isEmpty())
        GTEST_SKIP() << "needs Xvfb and xdotool";
    scrivlet::VirtualDisplay server;
    ASSERT_TRUE(server.start(QStringLiteral("1024x768x24"))) << server.errorString().toStdString();
    const QString display = server.display();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), display);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment.insert(QStringLiteral("SCRIVLET_REPORT_FIRST_PAINT"), QStringLiteral("1"));
    environment.remove(QStringLiteral("XDG_SESSION_TYPE"));
    auto xdo = [&](const QStringList &arguments) {
        QProcess tool;
        tool.setProcessEnvironment(environment);
        tool.start(xdotool, arguments);
        tool.waitForFinished(5000);
        return tool.readAllStandardOutput().trimmed();
    };
    auto visibleWindows = [&] {
        return xdo({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                    QStringLiteral("^Scrivlet$")});
    };

    auto folder = notesFolder();
    App app(folder->path(), environment);
    ASSERT_TRUE(app.waitFor("first-paint")) << app.err.constData();
    ASSERT_TRUE(app.waitFor("Global hot key Ctrl+Alt+Space is on")) << app.err.constData();
    ASSERT_FALSE(visibleWindows().isEmpty());

    xdo({QStringLiteral("key"), QStringLiteral("ctrl+alt+space")});
    QDeadlineTimer hidden(5000);
    while (!visibleWindows().isEmpty() && !hidden.hasExpired())
        QThread::msleep(50);
    EXPECT_TRUE(visibleWindows().isEmpty()) << "the hot key didn't hide the window";

    xdo({QStringLiteral("key"), QStringLiteral("ctrl+alt+space")});
    EXPECT_TRUE(app.waitFor("window-shown"));
    EXPECT_FALSE(visibleWindows().isEmpty());

    // Held by the first app: the second runs without the hot key and says why.
    auto otherFolder = notesFolder();
    App other(otherFolder->path(), environment);
    EXPECT_TRUE(other.waitFor("Global hot key left off: another application already uses Ctrl+Alt+Space"))
        << other.err.constData();
    EXPECT_TRUE(other.running());
}
