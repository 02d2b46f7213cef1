// scrivlet: the desktop scratchpad.

#include "calculation/CurrencyRates.h"
#include "calculation/UnitConverter.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "notes/CoreDataStack.h"
#include "platform/MemoryAlerts.h"
#include "platform/NotificationBus.h"
#include "platform/QSettingsStore.h"
#include "platform/SystemClock.h"
#include "platform/network/QtHttpClient.h"
#include "shell/lifecycle/AppLifecycle.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MathPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "shell/tutorial/ResettingConfigs.h"
#include "views/MainWindowPresenter.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QMessageBox>
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
    std::unique_ptr<QSettingsStore> settingsStore = ownFolder
        ? std::make_unique<QSettingsStore>(CoreDataStack::folderSettingsPath(dataDir))
        : std::make_unique<QSettingsStore>();
    QSettingsStore &settings = *settingsStore;
    NotificationBus bus;
    SystemClock clock;
    MemoryAlerts alerts;

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
    const EditorContext context{keywords, visualPreferences, miscPreferences, bus, clock, &mathPreferences, &converter};
    // Math notes open before the day's rates are in; once they are, open notes convert
    // anew with them.
    rates.updateCurrencyRates([&bus] { bus.post(QStringLiteral("mathPreferencesChanged")); });

    MainWindowPresenter windows(context, settings);
    AppLifecycle lifecycle(*stack, settings, bus, clock, alerts, &windows);
    windows.setContent([&lifecycle]() -> CoreDataNotesManager & { return lifecycle.notesManager(); },
                       lifecycle.store());
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
        lifecycle.quit();
        settings.sync();
    });
    quitOnTermination(app);
    return QApplication::exec();
}
