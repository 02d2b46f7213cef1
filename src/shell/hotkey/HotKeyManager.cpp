#include "shell/hotkey/HotKeyManager.h"

#include "platform/GlobalHotKey.h"
#include "shell/preferences/KeyboardShortcutPreferences.h"

#include <QLoggingCategory>

namespace scrivlet {

namespace {
Q_LOGGING_CATEGORY(lcHotKey, "scrivlet.hotkey")
} // namespace

HotKeyManager::HotKeyManager(GlobalHotKey &hotKey, KeyboardShortcutPreferences &shortcuts, NotificationBus &bus,
                             std::function<void()> toggle)
    : m_hotKey(hotKey), m_shortcuts(shortcuts), m_bus(bus), m_toggle(std::move(toggle))
{
}

HotKeyManager::~HotKeyManager()
{
    m_hotKey.setPressedHandler({});
    m_hotKey.setRegisteredHandler({});
}

void HotKeyManager::start()
{
    if (m_started)
        return;
    m_started = true;
    const QString &id = KeyboardShortcutPreferences::kGlobalShowApp;
    m_hotKey.setPressedHandler([this, id](const QString &pressed) {
        if (pressed == id && m_toggle)
            m_toggle();
    });
    m_hotKey.setRegisteredHandler([this](const QString &which, const QString &reason) { registered(which, reason); });
    m_subscriptions.push_back(
        m_bus.subscribe(QStringLiteral("keyboardShortcutChanged"), [this, id](const QVariantMap &payload) {
            if (!m_resetting && payload.value(QStringLiteral("id")).toString() == id)
                registerShowApp();
        }));
    m_subscriptions.push_back(m_bus.subscribe(QStringLiteral("resetGlobalHotkeyRequested"), [this, id](const QVariantMap &) {
        // The reset announces the change itself; bind once, after the default is back.
        m_resetting = true;
        m_shortcuts.resetShortcut(id);
        m_resetting = false;
        registerShowApp();
    }));
    registerShowApp();
}

void HotKeyManager::registerShowApp()
{
    const QString &id = KeyboardShortcutPreferences::kGlobalShowApp;
    m_shortcut = m_shortcuts.shortcut(id);
    if (!m_shortcut) {
        m_hotKey.unregisterHotKey(id);
        setState(State::Off, QStringLiteral("no shortcut is set"));
        return;
    }
    setState(State::Waiting, {});
    m_hotKey.registerHotKey(id, *m_shortcut);
}

void HotKeyManager::registered(const QString &id, const QString &failureReason)
{
    if (id != KeyboardShortcutPreferences::kGlobalShowApp || !m_shortcut)
        return;
    if (failureReason.isEmpty()) {
        qCInfo(lcHotKey).noquote() << "Global hot key" << m_shortcut->toString() << "is on";
        setState(State::Registered, {});
    } else {
        qCInfo(lcHotKey).noquote() << "Global hot key left off:" << failureReason;
        setState(State::Off, failureReason);
    }
}

void HotKeyManager::setState(State state, const QString &reason)
{
    m_state = state;
    m_failureReason = state == State::Off ? reason : QString();
    for (const auto &observer : m_observers)
        observer();
}

QString HotKeyManager::statusLine() const
{
    const QString head = QStringLiteral("Global hot key: ");
    switch (m_state) {
    case State::Registered: return head + m_shortcut->toString();
    case State::Waiting: return head + m_shortcut->toString() + QStringLiteral(" (waiting for the desktop)");
    case State::Off: break;
    }
    return head + QStringLiteral("off (") + m_failureReason + QLatin1Char(')');
}

} // namespace scrivlet
