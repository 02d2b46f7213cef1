#pragma once

#include "platform/GlobalHotKey.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>

class QDBusMessage;

namespace scrivlet {

// The global hot key on desktops where applications may not grab keys themselves
// (Wayland): the desktop portal's global shortcuts. The app names its shortcuts with a
// preferred key, the desktop binds them (it may ask the user first, or pick another
// key), and reports each press.
//
// Every change binds the whole set anew in a fresh portal session, since a session
// binds only once. A desktop without the portal, or with too old a one, leaves the
// hot key off with "the desktop offers no global shortcuts".
class PortalGlobalHotKey final : public QObject, public GlobalHotKey {
    Q_OBJECT

public:
    explicit PortalGlobalHotKey(QDBusConnection connection = QDBusConnection::sessionBus());
    ~PortalGlobalHotKey() override;

    void registerHotKey(const QString &id, const KeyboardShortcut &shortcut) override;
    void unregisterHotKey(const QString &id) override;

    // The shortcut in the portal's notation: "CTRL+ALT+space".
    static QString portalTrigger(const KeyboardShortcut &shortcut);

private Q_SLOTS:
    void onActivated(const QDBusMessage &message);
    void onSessionCreated(const QDBusMessage &message);
    void onShortcutsBound(const QDBusMessage &message);

private:
    void bindAll();
    void createSession();
    void closeSession();
    // Listens for the answer to a portal request before making it, so no answer is missed.
    QString expectResponse(const QString &token, const char *slot);
    void failAll(const QString &reason);

    QDBusConnection m_connection;
    QHash<QString, KeyboardShortcut> m_wanted;
    QHash<QString, KeyboardShortcut> m_bound;
    QString m_session;
    QString m_pendingRequest;
    bool m_checked = false;
    bool m_available = false;
    bool m_checking = false;
    quint64 m_round = 0;
};

} // namespace scrivlet
