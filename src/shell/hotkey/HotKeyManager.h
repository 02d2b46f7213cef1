#pragma once

#include "platform/KeyboardShortcut.h"
#include "platform/NotificationBus.h"

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace scrivlet {

class GlobalHotKey;
class KeyboardShortcutPreferences;

// Binds the user's "globalShowApp" shortcut on the desktop, so the window comes and
// goes from anywhere: at start, again whenever "keyboardShortcutChanged" names that id,
// and with its default on "resetGlobalHotkeyRequested". A press runs the toggle.
//
// A shortcut the desktop refuses is left off rather than fought over; the reason is
// kept so the settings and the tray can say why the hot key doesn't answer.
//
// Used on the main thread only.
class HotKeyManager {
    Q_DISABLE_COPY_MOVE(HotKeyManager)

public:
    enum class State {
        Off,        // no shortcut, or the desktop refused it: see failureReason()
        Waiting,    // asked; the desktop hasn't answered yet
        Registered, // a press of shortcut() reaches the app
    };

    HotKeyManager(GlobalHotKey &hotKey, KeyboardShortcutPreferences &shortcuts, NotificationBus &bus,
                  std::function<void()> toggle);
    ~HotKeyManager();

    // Registers the shortcut and starts following its changes. Runs once.
    void start();

    State state() const { return m_state; }
    // The shortcut last asked for; nothing when the user cleared it.
    std::optional<KeyboardShortcut> shortcut() const { return m_shortcut; }
    // Why the hot key is off, as a person reads it; empty unless the state is Off.
    QString failureReason() const { return m_failureReason; }
    // One line for the tray and the settings: "Global hot key: Ctrl+Alt+Space", or
    // "Global hot key: off (another application already uses Ctrl+Alt+Space)".
    QString statusLine() const;

    // Called after every change of state().
    void addStatusObserver(std::function<void()> observer) { m_observers.push_back(std::move(observer)); }

private:
    void registerShowApp();
    void registered(const QString &id, const QString &failureReason);
    void setState(State state, const QString &reason);

    GlobalHotKey &m_hotKey;
    KeyboardShortcutPreferences &m_shortcuts;
    NotificationBus &m_bus;
    std::function<void()> m_toggle;
    std::vector<NotificationBus::Subscription> m_subscriptions;
    std::vector<std::function<void()>> m_observers;
    std::optional<KeyboardShortcut> m_shortcut;
    State m_state = State::Off;
    QString m_failureReason;
    bool m_started = false;
    bool m_resetting = false;
};

} // namespace scrivlet
