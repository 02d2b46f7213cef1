// How fast Scrivlet is there for the user. Budgets: from starting the process to the
// first painted frame of the main window 400 ms, on a store of 100,000 notes; from a
// press of the global hot key to the hidden window shown again 50 ms.
//
// Both run the real app on an X server that the benchmark starts itself (Xvfb, on
// SCRIVLET_BENCH_DISPLAY or :98). The app reports when it paints (SCRIVLET_REPORT_FIRST_PAINT)
// on the monotonic clock, which the benchmark reads too. The key press goes through
// xdotool; the time to start xdotool itself is in the figure, so the figure errs high.
// The store takes a while to make: SCRIVLET_BENCH_STORE may name a folder where it is
// kept between runs (its "startup" subfolder is used).

#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "notes/Database.h"
#include "notes/Statement.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "support/VirtualDisplay.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>
#include <QUuid>

#include <benchmark/benchmark.h>

#include <csignal>
#include <cstdio>
#include <ctime>
#include <memory>
#include <optional>
#include <random>

namespace scrivlet {
namespace {

constexpr int kNotes = 100000;
const QString kApp = QStringLiteral(SCRIVLET_APP_PATH);

double monotonicMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) * 1000.0 + double(now.tv_nsec) / 1.0e6;
}

// Notes of a long-used scratchpad: mostly a line or two, some paragraphs, a few long
// documents, newest on top.
QString noteText(std::mt19937 &random)
{
    static const char *const kWords[] = {"meeting", "project", "plan", "call", "tomorrow", "buy", "milk", "idea",
                                         "invoice", "client", "draft", "budget", "review", "todo", "fix", "bug",
                                         "flight", "hotel", "recipe", "garden", "coffee", "café", "report", "12",
                                         "= 4", "deadline", "release", "database", "query", "cache", "poem", "list"};
    const int bucket = int(random() % 100);
    const int length = bucket < 60 ? 20 + int(random() % 180)
        : bucket < 90             ? 200 + int(random() % 800)
        : bucket < 99             ? 1000 + int(random() % 3000)
                                  : 4000 + int(random() % 8000);
    QString text;
    while (text.size() < length) {
        text += QString::fromUtf8(kWords[random() % (sizeof(kWords) / sizeof(kWords[0]))]);
        text += random() % 12 == 0 ? QLatin1Char('\n') : QLatin1Char(' ');
    }
    return text;
}

QString storeDirectory()
{
    static QTemporaryDir temporary;
    static const QString kept = qEnvironmentVariable("SCRIVLET_BENCH_STORE");
    static const QString path = kept.isEmpty() ? temporary.path() : QDir(kept).filePath(QStringLiteral("startup"));
    static bool made = false;
    if (made)
        return path;
    made = true;
    QDir().mkpath(path);
    // The app makes no network call and shows the window as a returning user left it.
    QFile settings(CoreDataStack::folderSettingsPath(path));
    settings.open(QIODevice::WriteOnly | QIODevice::Truncate);
    settings.write("[General]\nupdateConversionRates=false\nshowOnboarding=false\nshowFirstTimeSettings=false\n");
    settings.close();
    if (QFileInfo::exists(CoreDataStack::storePath(path)))
        return path;

    auto opened = CoreDataStack::open(path);
    if (!opened.ok()) {
        std::fprintf(stderr, "%s\n", qPrintable(opened.error().message));
        std::abort();
    }
    auto stack = std::move(opened).value();
    Database &db = stack->database();
    std::mt19937 random(20260101);
    const qint64 start = QDateTime(QDate(2020, 1, 1), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    db.exec(QStringLiteral("BEGIN"));
    Statement insert = db.prepare(
        QStringLiteral("INSERT INTO notes (id, content, created, lastModified, dbIndex, isSlotted, softDeleted) "
                       "VALUES (?1, ?2, ?3, ?3, ?4, 0, 0)"));
    for (int i = 1; i <= kNotes; ++i) {
        insert.reset();
        insert.bind(1, QUuid::createUuid().toString(QUuid::WithoutBraces))
            .bind(2, noteText(random))
            .bind(3, start + qint64(i) * 30 * 60 * 1000)
            .bind(4, qint64(i) * CoreDataManager::kIndexStep);
        if (!insert.exec()) {
            std::fprintf(stderr, "insert failed: %s\n", qPrintable(insert.lastError()));
            std::abort();
        }
    }
    db.exec(QStringLiteral("COMMIT"));
    MemorySettingsStore memorySettings;
    ManualClock clock;
    CoreDataManager manager(*stack, memorySettings, clock);
    manager.ensureSlots();
    db.exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)"));
    return path;
}

// The X server every run draws on, kept for the whole program.
class XServer {
public:
    static XServer &instance()
    {
        static XServer server;
        return server;
    }
    QString display() const { return m_display; }
    bool ok() const { return m_ok; }

private:
    XServer()
    {
        m_ok = m_server.start(QStringLiteral("1280x900x24"));
        m_display = m_server.display();
    }
    VirtualDisplay m_server;
    QString m_display;
    bool m_ok = false;
};

QProcessEnvironment appEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), XServer::instance().display());
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment.insert(QStringLiteral("SCRIVLET_REPORT_FIRST_PAINT"), QStringLiteral("1"));
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("*.info=false"));
    environment.remove(QStringLiteral("XDG_SESSION_TYPE"));
    return environment;
}

// One running app and the times it reports.
class RunningApp {
public:
    RunningApp()
    {
        m_process.setProcessEnvironment(appEnvironment());
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(kApp, {QStringLiteral("--data-dir"), storeDirectory()});
        m_process.waitForStarted();
    }
    ~RunningApp()
    {
        // Killed rather than quit: a quit saves and backs up a 100,000-note store,
        // which is no part of what is measured; the next start takes over the lock.
        ::kill(pid_t(m_process.processId()), SIGKILL);
        m_process.waitForFinished(5000);
    }
    // The time of the next "<event> <ms>" line.
    std::optional<double> next(const QByteArray &event, int timeoutMs = 20000)
    {
        const QDeadlineTimer deadline(timeoutMs);
        while (!deadline.hasExpired()) {
            while (m_process.canReadLine()) {
                const QByteArray line = m_process.readLine().trimmed();
                if (line.startsWith(QByteArray(event + ' ')))
                    return line.mid(event.size() + 1).toDouble();
            }
            if (!m_process.waitForReadyRead(int(std::max<qint64>(1, deadline.remainingTime()))))
                break;
        }
        return std::nullopt;
    }

private:
    QProcess m_process;
};

void pressHotKey()
{
    QProcess tool;
    tool.setProcessEnvironment(appEnvironment());
    tool.start(QStringLiteral("xdotool"), {QStringLiteral("key"), QStringLiteral("ctrl+alt+space")});
    tool.waitForFinished(5000);
}

void BM_StartToFirstPaint(benchmark::State &state)
{
    storeDirectory();
    if (!XServer::instance().ok()) {
        state.SkipWithError("no Xvfb");
        return;
    }
    {
        // One start before measuring, so every measured start finds the files in the
        // page cache, as a user's second start of the day does.
        RunningApp warm;
        warm.next("first-paint");
    }
    for (auto _ : state) {
        const double started = monotonicMs();
        RunningApp app;
        const auto painted = app.next("first-paint");
        if (!painted) {
            state.SkipWithError("the app never painted");
            return;
        }
        state.SetIterationTime((*painted - started) / 1000.0);
    }
}
BENCHMARK(BM_StartToFirstPaint)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_HotKeyToWindowShown(benchmark::State &state)
{
    storeDirectory();
    if (!XServer::instance().ok()) {
        state.SkipWithError("no Xvfb");
        return;
    }
    RunningApp app;
    if (!app.next("first-paint")) {
        state.SkipWithError("the app never painted");
        return;
    }
    QThread::msleep(300);
    for (auto _ : state) {
        pressHotKey();
        if (!app.next("window-hidden")) {
            state.SkipWithError("the hot key didn't hide the window");
            return;
        }
        QThread::msleep(100);
        // From the moment the key reaches the app: the xdotool that presses it takes
        // longer to start than the app takes to answer.
        pressHotKey();
        const auto pressed = app.next("hotkey-pressed");
        const auto shown = app.next("window-shown");
        if (!pressed || !shown) {
            state.SkipWithError("the hot key didn't show the window");
            return;
        }
        state.SetIterationTime((*shown - *pressed) / 1000.0);
        QThread::msleep(100);
    }
}
BENCHMARK(BM_HotKeyToWindowShown)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);

} // namespace
} // namespace scrivlet

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
