#include "shell/lifecycle/AppLifecycle.h"

#include "calculation/NumberLocale.h"
#include "notes/BackupManager.h"
#include "notes/CoreDataManager.h"
#include "notes/CoreDataNotesManager.h"
#include "notes/LegacyImporter.h"
#include "notes/NoteCommands.h"
#include "notes/TrashManager.h"
#include "platform/WindowPresenter.h"
#include "shell/lifecycle/AppIconPreference.h"
#include "shell/lifecycle/AutoNewNoteRule.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/NotesPreferences.h"
#include "shell/preferences/TutorialPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "shell/tutorial/TutorialNotes.h"

namespace scrivlet {

using namespace std::chrono_literals;

AppLifecycle::AppLifecycle(CoreDataStack &stack, SettingsStore &settings, NotificationBus &bus, Clock &clock,
                           Alerts &alerts, WindowPresenter *presenter)
    : m_stack(stack), m_settings(settings), m_bus(bus), m_clock(clock), m_alerts(alerts), m_presenter(presenter),
      m_store(std::make_unique<CoreDataManager>(stack, settings, clock)),
      m_backups(std::make_unique<BackupManager>(stack, *m_store, settings, clock))
{
}

AppLifecycle::~AppLifecycle()
{
    if (m_placingTimer)
        m_clock.cancel(*m_placingTimer);
    // The window shows notes of the stack owned here: it goes first.
    if (m_presenter)
        m_presenter->destroyMainWindow();
}

CoreDataManager &AppLifecycle::store()
{
    return *m_store;
}

CoreDataNotesManager &AppLifecycle::notesManager()
{
    if (!m_notesManager) {
        m_notesManager = std::make_unique<CoreDataNotesManager>(*m_store, m_settings, m_bus, m_clock, m_alerts);
        // Read when the stack is seeded, so the amounts follow the number format the
        // app runs with.
        m_notesManager->setTutorialTexts([] { return TutorialNotes::seedingOrder(NumberLocale::current()); });
        m_notesManager->setUp();
    }
    return *m_notesManager;
}

NoteCommands &AppLifecycle::noteCommands()
{
    if (!m_noteCommands)
        m_noteCommands = std::make_unique<NoteCommands>(notesManager(), m_settings, m_bus);
    return *m_noteCommands;
}

void AppLifecycle::start()
{
    if (m_started)
        return;
    m_started = true;

    // Settled before anything reads the store: an upgrade from the old database brings
    // its notes in and starts with sync off, a new install starts with sync on.
    LegacyImporter(m_stack, *m_store, m_settings, m_clock).bootstrapIfNeeded();

    // Notes are placed by the sparse index, so it must exist before anything places one.
    m_store->migrateToSparseIndex();

    // Notes that came from an older device without a position find theirs once the
    // start-up is done, before the next event.
    if (NotesPreferences(m_settings).syncWithICloud() && !m_store->isImporting()) {
        m_placingTimer = m_clock.schedule(0ms, [this] {
            m_placingTimer.reset();
            if (m_store->positionUnplacedNotes() > 0)
                m_bus.post(QStringLiteral("refetchNotes"));
        });
    }

    bringUpMainWindow();

    if (m_presenter) {
        const MiscPreferences misc(m_settings);
        if (misc.restorePinOnOpen() && misc.lastPinState())
            m_presenter->setPinned(true);
    }

    m_trash = std::make_unique<TrashManager>(*m_store, m_settings, m_bus, m_alerts, m_clock);
    m_trash->autoEmpty();

    m_subscriptions.push_back(m_bus.subscribe(QStringLiteral("emptyTrashClicked"),
                                              [this](const QVariantMap &) { m_trash->emptyFromMenu(); }));
    // The new-note request of the button and of the return to the app. A request the
    // user didn't make is quiet about an empty note it finds on top.
    m_subscriptions.push_back(
        m_bus.subscribe(QStringLiteral("newButtonClickedNotification"), [this](const QVariantMap &info) {
            noteCommands().newNote(false, info.value(QStringLiteral("isAutoRequest")).toBool());
        }));
}

void AppLifecycle::bringUpMainWindow()
{
    // The stack is loaded before the first window shows; without a window (the command
    // line, the menu-bar-only mode) it is loaded here all the same.
    notesManager();

    const AppIconPreference mode = presentedMode();
    if (!m_presenter || !AppIconPreferences::hasMainWindow(mode))
        return;

    m_presenter->createMainWindow();
    if (AppIconPreferences::showsWindowAtStart(mode))
        m_presenter->showMainWindow();
    else
        m_presenter->orderOutMainWindow(true);

    TutorialPreferences tutorial(m_settings);
    if (tutorial.showFirstTimeSettings()) {
        m_presenter->centerMainWindow();
        // Only the very first launch is centred; after it the window opens where the
        // user left it.
        tutorial.setShowFirstTimeSettings(false);
    }
}

void AppLifecycle::activate()
{
    if (!m_started)
        return;
    const NotesPreferences preferences(m_settings);
    if (AutoNewNoteRule::fires(preferences.autoNewNoteTiming(), preferences.lastWindowCloseTime(), m_clock.now())) {
        m_bus.post(QStringLiteral("newButtonClickedNotification"),
                   {{QStringLiteral("isAutoRequest"), true}, {QStringLiteral("fromMakeKey"), true}});
    }
}

void AppLifecycle::resign()
{
    if (!m_started)
        return;
    m_bus.post(QStringLiteral("saveCurrentNote"));

    if (m_presenter) {
        m_presenter->saveMainWindowFrame();
        if (VisualPreferences(m_settings).hideWhenUnfocused() && !m_presenter->isPinned()) {
            m_presenter->orderOutMainWindow(true);
            storeCloseTime();
        }
    }

    // After the save above, so the copy holds what the user just typed.
    m_backups->runPeriodicBackup();
    storeCloseTime();

    m_bus.post(QStringLiteral("cleanUpDeletedArray"));
}

void AppLifecycle::quit()
{
    if (!m_started)
        return;
    if (m_presenter)
        m_presenter->saveMainWindowFrame();
    m_backups->runPeriodicBackup();
    // Last: the resign that comes before a quit has saved the note, and a backup taken
    // now need not wait for the final keystrokes.
    m_bus.post(QStringLiteral("saveCurrentNote"));
}

void AppLifecycle::reopen()
{
    if (!m_started || !m_presenter || m_presenter->isMainWindowVisible())
        return;
    const AppIconPreference mode = presentedMode();
    if (AppIconPreferences::showsWindowAtStart(mode))
        m_presenter->showMainWindow();
}

AppIconPreference AppLifecycle::presentedMode() const
{
    return m_presentedMode.value_or(
        AppIconPreferences::fromRawValue(VisualPreferences(m_settings).appIconPreference()));
}

void AppLifecycle::storeCloseTime()
{
    NotesPreferences(m_settings).setLastWindowCloseTime(double(m_clock.now().toMSecsSinceEpoch()) / 1000.0);
}

} // namespace scrivlet
