#pragma once

#include "platform/Clock.h"
#include "shell/lifecycle/AppIconPreference.h"
#include "platform/NotificationBus.h"

#include <QtGlobal>

#include <memory>
#include <optional>
#include <vector>

namespace scrivlet {

class Alerts;
class BackupManager;
class CoreDataManager;
class CoreDataNotesManager;
class CoreDataStack;
class NoteCommands;
class SettingsStore;
class TrashManager;
class WindowPresenter;

// What runs when Scrivlet comes up, whenever it gains or loses the focus, and when it
// quits. The app calls these from its application events; the command line and tests
// call them directly. The order inside each step matters: the sparse index exists
// before anything places notes, the stack is loaded before the first window shows, and
// the backup runs after the last save.
//
// Used on the main thread only.
class AppLifecycle {
    Q_DISABLE_COPY_MOVE(AppLifecycle)

public:
    // presenter may be null (the command line has no windows).
    AppLifecycle(CoreDataStack &stack, SettingsStore &settings, NotificationBus &bus, Clock &clock, Alerts &alerts,
                 WindowPresenter *presenter);
    ~AppLifecycle();

    // The whole start-up order; afterwards notesManager() is ready (slots ensured,
    // tutorial seeded, notes initialised, The Void auto-emptied). Runs once.
    void start();
    // The application became active.
    void activate();
    // The application resigned active.
    void resign();
    // The application will terminate.
    void quit();
    // The user asked for the app again (a click on its icon) while no window showed.
    void reopen();

    // The way the app really presents itself when that isn't the stored
    // `appIconPreference`: a desktop without a tray can't show the tray's modes. Set
    // before start().
    void setPresentedMode(AppIconPreference mode) { m_presentedMode = mode; }

    bool isStarted() const { return m_started; }
    CoreDataManager &store();
    // Made on first use, as the main window's content is built: slots, tutorial notes
    // of a fresh store, the loaded stack.
    CoreDataNotesManager &notesManager();
    NoteCommands &noteCommands();

private:
    void bringUpMainWindow();
    void storeCloseTime();
    AppIconPreference presentedMode() const;

    CoreDataStack &m_stack;
    SettingsStore &m_settings;
    NotificationBus &m_bus;
    Clock &m_clock;
    Alerts &m_alerts;
    WindowPresenter *m_presenter;

    std::unique_ptr<CoreDataManager> m_store;
    std::unique_ptr<BackupManager> m_backups;
    std::unique_ptr<CoreDataNotesManager> m_notesManager;
    std::unique_ptr<NoteCommands> m_noteCommands;
    std::unique_ptr<TrashManager> m_trash;
    std::vector<NotificationBus::Subscription> m_subscriptions;
    std::optional<Clock::TimerId> m_placingTimer;
    std::optional<AppIconPreference> m_presentedMode;
    bool m_started = false;
};

} // namespace scrivlet
