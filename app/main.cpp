// scrivlet: the desktop scratchpad.

#include "calculation/CurrencyRates.h"
#include "calculation/UnitConverter.h"
#include "editor/UndoManagement.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "notes/CoreDataStack.h"
#include "views/MessageBoxAlerts.h"
#include "platform/NotificationBus.h"
#include "platform/QSettingsStore.h"
#include "platform/SettingsFile.h"
#include "platform/SystemClock.h"
#include "platform/desktop/DesktopGlobalHotKey.h"
#include "platform/network/QtHttpClient.h"
#include "shell/hotkey/HotKeyManager.h"
#include "shell/lifecycle/AppLifecycle.h"
#include "shell/preferences/KeyboardShortcutPreferences.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MathPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "shell/tutorial/ResettingConfigs.h"
#include "views/MainWindow.h"
#include "views/MainWindowPresenter.h"
#include "views/PopoverWindow.h"
#include "views/StatusItemManager.h"

#include "SingleInstance.h"
#include "WindowEventReport.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QMessageBox>
#include <QSettings>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <sys/socket.h>
#include <unistd.h>

using namespace scrivlet;

namespace {

int g_signalPipe[2] = {-1, -1};

// A session that ends (log out, shutdown) sends SIGTERM: quit through the event loop so
// the open note is saved like on any other quit.
void quitOnTermination(QCoreApplication &app)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(g_signalPipe[1], QSocketNotifier::Read, &app);
    QObject::connect(notifier, &QSocketNotifier::activated, &app, [&app, notifier] {
        notifier->setEnabled(false);
        char byte = 0;
        [[maybe_unused]] const auto n = ::read(g_signalPipe[1], &byte, 1);
        app.quit();
    });
    struct sigaction action = {};
    action.sa_handler = [](int) {
        const char byte = 1;
        [[maybe_unused]] const auto n = ::write(g_signalPipe[0], &byte, 1);
    };
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGHUP, &action, nullptr);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Scrivlet"));
    QApplication::setApplicationName(QStringLiteral("Scrivlet"));
    QApplication::setApplicationVersion(QStringLiteral(SCRIVLET_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Scrivlet, a scratchpad of small notes."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption dataDirOption(QStringLiteral("data-dir"),
                                           QStringLiteral("Keep the notes in <folder> instead of the usual place."),
                                           QStringLiteral("folder"));
    parser.addOption(dataDirOption);
    const QCommandLineOption resetOption(
        QStringLiteral("reset-on-start"),
        QStringLiteral("Put the app back into a first state before it starts: %1. May be repeated.")
            .arg(ResettingConfigs::switchNames().join(QStringLiteral(", "))),
        QStringLiteral("switch"));
    parser.addOption(resetOption);
    parser.process(app);

    ResettingConfigs resets;
    for (const QString &name : parser.values(resetOption)) {
        if (!resets.set(name)) {
            std::fputs(qPrintable(QStringLiteral("scrivlet: unknown --reset-on-start switch \"%1\"; it is one of: %2.\n")
                                      .arg(name, ResettingConfigs::switchNames().join(QStringLiteral(", ")))),
                       stderr);
            return 2;
        }
    }

    // A folder of its own keeps its settings beside the notes, as the command line does,
    // so trying the app on another folder leaves the user's own settings alone.
    const bool ownFolder = parser.isSet(dataDirOption);
    const QString dataDir = ownFolder ? parser.value(dataDirOption) : CoreDataStack::defaultDataDirectory();
    if (ownFolder)
        QDir().mkpath(dataDir);

    // One Scrivlet per folder: a second start brings the running one forward instead
    // of opening the same store twice. Declared before the store so the folder stays
    // locked until the store has closed.
    SingleInstance instance(dataDir);
    switch (instance.claim()) {
    case SingleInstance::Claim::Primary: break;
    case SingleInstance::Claim::ShownRunning: return 0;
    case SingleInstance::Claim::Busy:
        std::fputs(qPrintable(QStringLiteral("scrivlet: another Scrivlet is using %1 and doesn't answer; "
                                             "try again once it has quit.\n")
                                  .arg(QDir::toNativeSeparators(dataDir))),
                   stderr);
        return 1;
    }
    // A settings file that can't be read is left as it is, for the user to mend or
    // remove: the app runs on the defaults this time and writes nothing over it.
    const QString settingsPath = ownFolder ? CoreDataStack::folderSettingsPath(dataDir) : QSettings().fileName();
    std::unique_ptr<SettingsStore> settingsStore;
    if (ownFolder || settingsPath.endsWith(u".conf") || settingsPath.endsWith(u".ini")) {
        SettingsFile::Opened opened = SettingsFile::open(settingsPath);
        if (!opened.problem.isEmpty()) {
            qWarning().noquote() << QStringLiteral("scrivlet: the settings file %1 isn't used because %2; starting "
                                                   "with the default settings, and changes made now aren't kept.")
                                        .arg(QDir::toNativeSeparators(settingsPath), opened.problem);
        }
        settingsStore = std::move(opened.store);
    } else {
        // The platform's own store (the defaults plist on macOS) checks itself.
        settingsStore = std::make_unique<QSettingsStore>();
    }
    SettingsStore &settings = *settingsStore;
    NotificationBus bus;
    SystemClock clock;
    MessageBoxAlerts alerts;

    // Before the store opens: a clean install removes its files.
    resets.applyAtStart(settings, dataDir);

    // The store opens before anything shows: without it there is nothing to show, and
    // a store that can't be opened stops here with its reason, untouched.
    auto opened = CoreDataStack::open(dataDir);
    if (!opened) {
        // Someone who started the app from a menu never sees the terminal: say it in a
        // window too before stopping.
        QMessageBox::critical(nullptr, QStringLiteral("Scrivlet"),
                              QStringLiteral("Scrivlet can't open its notes and has to stop.\n\n%1\n\n"
                                             "Nothing was changed on disk.")
                                  .arg(opened.error().message));
        CoreDataStack::failFatally(opened.error());
    }
    std::unique_ptr<CoreDataStack> stack = std::move(opened).value();

    KeywordPreferences keywordPreferences(settings, &bus);
    KeywordDefinitionsContainer keywords(keywordPreferences);
    VisualPreferences visualPreferences(settings);
    MiscPreferences miscPreferences(settings);
    MathPreferences mathPreferences(settings);
    QtHttpClient http;
    CurrencyRates rates(settings, clock, bus, &http);
    UnitConverter converter(settings, rates);
    UndoManagement undoManagement(clock);
    const EditorContext context{keywords, visualPreferences, miscPreferences, bus, clock,
                                &mathPreferences, &converter, &undoManagement};
    // Math notes open before the day's rates are in; once they are, open notes convert
    // anew with them.
    rates.updateCurrencyRates([&bus] { bus.post(QStringLiteral("mathPreferencesChanged")); });

    MainWindowPresenter windows(context, settings);
    AppLifecycle lifecycle(*stack, settings, bus, clock, alerts, &windows);
    windows.setContent([&lifecycle]() -> CoreDataNotesManager & { return lifecycle.notesManager(); },
                       lifecycle.store());
    // The start-up and hot key benchmarks read when the window paints.
    const bool reportWindowEvents = qEnvironmentVariableIntValue("SCRIVLET_REPORT_FIRST_PAINT") == 1;
    if (reportWindowEvents) {
        app.installEventFilter(new WindowEventReport(
            [&windows]() -> QWidget * { return windows.mainWindow(); }, &app));
    }

    // The hot key is bound before the window comes up, so it answers as soon as there
    // is something to show.
    KeyboardShortcutPreferences shortcutPreferences(settings, &bus);
    std::unique_ptr<GlobalHotKey> desktopHotKey = createDesktopGlobalHotKey();
    HotKeyManager hotKeys(*desktopHotKey, shortcutPreferences, bus, [&windows, reportWindowEvents] {
        if (reportWindowEvents)
            WindowEventReport::reportHotKeyPressed();
        windows.toggleMainWindow();
    });
    hotKeys.start();

    // The tray item, or the main window in its place on a desktop without a tray.
    // Closing the window ends the app only where nothing else could bring it back.
    StatusItemManager::Hooks trayHooks;
    trayHooks.makePopover = [&] {
        return std::make_unique<PopoverWindow>(context, lifecycle.notesManager(), lifecycle.store());
    };
    trayHooks.hotKeyStatus = [&hotKeys] { return hotKeys.statusLine(); };
    trayHooks.quit = [] { QCoreApplication::quit(); };
    StatusItemManager statusItems(AppIconPreferences::fromRawValue(visualPreferences.appIconPreference()),
                                  StatusItemManager::isTrayAvailable(), windows, std::move(trayHooks));
    hotKeys.addStatusObserver([&statusItems] { statusItems.refreshHotKeyStatus(); });
    lifecycle.setPresentedMode(statusItems.mode());
    QApplication::setQuitOnLastWindowClosed(StatusItemManager::quitsWhenWindowCloses(statusItems.mode()));
    // A second start of the app brings this one forward.
    instance.setShowHandler([&statusItems] { statusItems.show(); });

    lifecycle.start();

    // Leaving the app saves the open note at once rather than after the pause; coming
    // back may start a fresh one.
    bool active = false;
    QObject::connect(&app, &QGuiApplication::applicationStateChanged, &app, [&](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive && !active) {
            active = true;
            lifecycle.activate();
        } else if (state != Qt::ApplicationActive && active) {
            active = false;
            lifecycle.resign();
        }
    });
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &app, [&] {
        // A start from now on waits for this one to let go of the folder.
        instance.stopListening();
        lifecycle.quit();
        settings.sync();
    });
    quitOnTermination(app);
    return QApplication::exec();
}
