// scrivlet: the desktop scratchpad.

#include "keywords/KeywordDefinitionsContainer.h"
#include "keywords/NoteEditorSession.h"
#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "notes/NoteViewModel.h"
#include "platform/NotificationBus.h"
#include "platform/QSettingsStore.h"
#include "platform/SystemClock.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/NotesPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "views/MainWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
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
    parser.process(app);

    QSettingsStore settings;
    NotificationBus bus;
    SystemClock clock;

    // The store opens before anything shows: without it there is nothing to show, and
    // a store that can't be opened stops here with its reason, untouched.
    const QString dataDir =
        parser.isSet(dataDirOption) ? parser.value(dataDirOption) : CoreDataStack::defaultDataDirectory();
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
    CoreDataManager store(*stack, settings, clock);
    store.migrateToSparseIndex();
    if (NotesPreferences(settings).syncWithICloud()) {
        QTimer::singleShot(0, &app, [&] {
            if (store.positionUnplacedNotes() > 0)
                bus.post(QStringLiteral("refetchNotes"));
        });
    }

    KeywordPreferences keywordPreferences(settings, &bus);
    KeywordDefinitionsContainer keywords(keywordPreferences);
    VisualPreferences visualPreferences(settings);
    MiscPreferences miscPreferences(settings);
    const EditorContext context{keywords, visualPreferences, miscPreferences, bus, clock};

    const std::vector<Note> latest = store.fetchLatest(1, false);
    auto note = std::make_shared<NoteViewModel>(latest.empty() ? store.createNote() : latest.back());
    NoteViewModelList openNotes{note};

    MainWindow window(context, settings, note,
                      [&](const Note &edited) { store.saveFromEditor(edited, &openNotes, nullptr); });
    window.show();

    // Leaving the app saves at once rather than after the pause, and so does quitting.
    QObject::connect(&app, &QGuiApplication::applicationStateChanged, &window, [&](Qt::ApplicationState state) {
        if (state != Qt::ApplicationActive) {
            window.flushPendingSave();
            window.saveFrame();
        }
    });
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &window, [&] {
        window.saveFrame();
        window.flushPendingSave();
        store.save();
    });
    quitOnTermination(app);
    return QApplication::exec();
}
