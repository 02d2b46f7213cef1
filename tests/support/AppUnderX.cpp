#include "support/AppUnderX.h"

#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "platform/MemorySettingsStore.h"
#include "platform/SystemClock.h"
#include "support/VirtualDisplay.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>
#include <QSettings>
#include <QThread>

#include <csignal>

namespace scrivlet::testing {

namespace {

// Time the app gets to handle input that has reached the X server before the next
// step looks at its effects.
constexpr int kSettleMs = 150;

QProcessEnvironment environmentFor(const QString &display, const QString &home)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DISPLAY"), display);
    // The test runner draws offscreen; the app under test draws on the display.
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    env.remove(QStringLiteral("WAYLAND_DISPLAY"));
    env.remove(QStringLiteral("XAUTHORITY"));
    // Nothing of the user's own configuration is read or written.
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/config"));
    env.insert(QStringLiteral("XDG_DATA_HOME"), home + QStringLiteral("/data"));
    env.insert(QStringLiteral("XDG_CACHE_HOME"), home + QStringLiteral("/cache"));
    return env;
}

} // namespace

AppUnderX::AppUnderX(QString appPath) : m_appPath(std::move(appPath))
{
    m_settings.insert(QStringLiteral("updateConversionRates"), false);
}

AppUnderX::~AppUnderX()
{
    stopApp();
    stopDisplay();
}

void AppUnderX::setSetting(const QString &key, const QVariant &value)
{
    m_settings.insert(key, value);
}

bool AppUnderX::fail(const QString &message)
{
    m_error = message;
    return false;
}

bool AppUnderX::startDisplay()
{
    if (!m_xvfb)
        m_xvfb = std::make_unique<VirtualDisplay>();
    if (!m_xvfb->start(QStringLiteral("1280x900x24")))
        return fail(m_xvfb->errorString());
    m_display = m_xvfb->display();
    return true;
}

void AppUnderX::writeSettings()
{
    QSettings settings(CoreDataStack::folderSettingsPath(dataDir()), QSettings::IniFormat);
    for (auto it = m_settings.cbegin(); it != m_settings.cend(); ++it)
        settings.setValue(it.key(), it.value());
    settings.sync();
}

bool AppUnderX::start(int timeoutMs)
{
    if (!m_dataDir.isValid())
        return fail(QStringLiteral("no temporary folder"));
    if (!startDisplay())
        return false;
    writeSettings();

    m_app = std::make_unique<QProcess>();
    m_app->setProcessChannelMode(QProcess::MergedChannels);
    m_app->setProcessEnvironment(environmentFor(m_display, dataDir()));
    m_app->start(m_appPath, QStringList{QStringLiteral("--data-dir"), dataDir()} + m_arguments);
    if (!m_app->waitForStarted(5000))
        return fail(QStringLiteral("the app did not start: ") + m_app->errorString());

    const QString id = waitForWindow(QStringLiteral("^Scrivlet$"), timeoutMs);
    if (id.isEmpty())
        return fail(QStringLiteral("no Scrivlet window showed; the app said: ") + QString::fromLocal8Bit(output()));
    m_windowId = id;
    if (!focusMainWindow())
        return fail(QStringLiteral("the window did not take the focus"));
    // The first full pass of the note runs on the loop's next turn after showing.
    QThread::msleep(kSettleMs);
    return true;
}

bool AppUnderX::quit(int timeoutMs)
{
    if (!isRunning())
        return fail(QStringLiteral("the app is not running; it said: ") + QString::fromLocal8Bit(output()));
    // Input already sent is handled before the signal, which comes on another path.
    QThread::msleep(300);
    ::kill(pid_t(m_app->processId()), SIGTERM);
    if (!m_app->waitForFinished(timeoutMs)) {
        stopApp();
        return fail(QStringLiteral("the app did not quit on SIGTERM"));
    }
    output();
    if (m_app->exitStatus() != QProcess::NormalExit || m_app->exitCode() != 0)
        return fail(
            QStringLiteral("the app ended with %1: %2").arg(m_app->exitCode()).arg(QString::fromLocal8Bit(m_output)));
    return true;
}

bool AppUnderX::isRunning() const
{
    return m_app && m_app->state() == QProcess::Running;
}

QByteArray AppUnderX::output()
{
    if (m_app)
        m_output += m_app->readAll();
    return m_output;
}

void AppUnderX::stopApp()
{
    if (!m_app || m_app->state() == QProcess::NotRunning)
        return;
    m_app->terminate();
    if (!m_app->waitForFinished(10000)) {
        m_app->kill();
        m_app->waitForFinished(3000);
    }
}

void AppUnderX::stopDisplay()
{
    if (m_xvfb)
        m_xvfb->stop();
}

bool AppUnderX::xdotool(const QStringList &arguments, QByteArray *out, int timeoutMs)
{
    QProcess process;
    process.setProcessEnvironment(environmentFor(m_display, dataDir()));
    process.start(QStringLiteral("xdotool"), arguments);
    if (!process.waitForStarted(5000))
        return fail(QStringLiteral("xdotool did not start: ") + process.errorString());
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished(2000);
        return fail(QStringLiteral("xdotool %1 did not finish in time").arg(arguments.join(QLatin1Char(' '))));
    }
    if (out)
        *out = process.readAllStandardOutput();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return fail(QStringLiteral("xdotool %1 failed: %2")
                        .arg(arguments.join(QLatin1Char(' ')), QString::fromLocal8Bit(process.readAllStandardError())));
    return true;
}

QString AppUnderX::waitForWindow(const QString &titlePattern, int timeoutMs)
{
    // `search --sync` waits without end; the bound is ours.
    QByteArray out;
    if (!xdotool({QStringLiteral("search"), QStringLiteral("--sync"), QStringLiteral("--onlyvisible"),
                  QStringLiteral("--name"), titlePattern},
                 &out, timeoutMs))
        return {};
    const QList<QByteArray> ids = out.trimmed().split('\n');
    return ids.isEmpty() ? QString() : QString::fromLatin1(ids.last().trimmed());
}

bool AppUnderX::focusWindow(const QString &windowId)
{
    QByteArray focused;
    if (xdotool({QStringLiteral("getwindowfocus")}, &focused) && QString::fromLatin1(focused.trimmed()) == windowId)
        return true;
    if (!xdotool({QStringLiteral("windowfocus"), windowId}))
        return false;
    return waitUntil(
        [&] {
            QByteArray now;
            return xdotool({QStringLiteral("getwindowfocus")}, &now) && QString::fromLatin1(now.trimmed()) == windowId;
        },
        5000);
}

bool AppUnderX::focusMainWindow()
{
    return focusWindow(m_windowId);
}

bool AppUnderX::isWindowVisible(const QString &windowId)
{
    QByteArray out;
    if (!xdotool(
            {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), QStringLiteral(".*")},
            &out))
        return false;
    for (const QByteArray &line : out.split('\n')) {
        if (QString::fromLatin1(line.trimmed()) == windowId)
            return true;
    }
    return false;
}

bool AppUnderX::key(const QString &keys)
{
    QStringList arguments{QStringLiteral("key"), QStringLiteral("--clearmodifiers"), QStringLiteral("--delay"),
                          QStringLiteral("40")};
    arguments += keys.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const bool ok = xdotool(arguments);
    QThread::msleep(kSettleMs);
    return ok;
}

bool AppUnderX::type(const QString &text)
{
    // xdotool types a newline as a character some apps ignore: it is a Return here.
    const QStringList lines = text.split(QLatin1Char('\n'));
    bool ok = true;
    for (qsizetype i = 0; i < lines.size() && ok; ++i) {
        if (i > 0)
            ok = xdotool({QStringLiteral("key"), QStringLiteral("--clearmodifiers"), QStringLiteral("Return")});
        if (ok && !lines[i].isEmpty())
            ok = xdotool({QStringLiteral("type"), QStringLiteral("--clearmodifiers"), QStringLiteral("--delay"),
                          QStringLiteral("25"), QStringLiteral("--"), lines[i]},
                         nullptr, 60000);
    }
    QThread::msleep(kSettleMs);
    return ok;
}

bool AppUnderX::click(int x, int y)
{
    const bool ok = xdotool({QStringLiteral("mousemove"), QStringLiteral("--window"), m_windowId, QString::number(x),
                             QString::number(y), QStringLiteral("click"), QStringLiteral("1")});
    QThread::msleep(kSettleMs);
    return ok;
}

QString AppUnderX::windowProperty(const QString &windowId, const QString &property)
{
    QProcess process;
    process.setProcessEnvironment(environmentFor(m_display, dataDir()));
    process.start(QStringLiteral("xprop"), {QStringLiteral("-id"), windowId, property});
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished(2000);
        return {};
    }
    return QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
}

bool AppUnderX::screenshot(const QString &pngPath)
{
    QProcess process;
    process.setProcessEnvironment(environmentFor(m_display, dataDir()));
    process.start(QStringLiteral("import"), {QStringLiteral("-window"), QStringLiteral("root"), pngPath});
    return process.waitForFinished(15000) && process.exitCode() == 0;
}

bool AppUnderX::waitUntil(const std::function<bool()> &condition, int timeoutMs, int stepMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!deadline.hasExpired()) {
        if (condition())
            return true;
        QThread::msleep(stepMs);
    }
    return condition();
}

QVariant AppUnderX::setting(const QString &key) const
{
    const QSettings settings(CoreDataStack::folderSettingsPath(m_dataDir.path()), QSettings::IniFormat);
    return settings.value(key);
}

bool AppUnderX::withStore(const std::function<void(CoreDataManager &store)> &body)
{
    auto opened = CoreDataStack::open(dataDir());
    if (!opened)
        return fail(QStringLiteral("the store did not open: ") + opened.error().message);
    std::unique_ptr<CoreDataStack> stack = std::move(opened).value();
    MemorySettingsStore settings;
    SystemClock clock;
    CoreDataManager store(*stack, settings, clock);
    body(store);
    return true;
}

} // namespace scrivlet::testing
