#include "platform/desktop/PortalGlobalHotKey.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QLoggingCategory>
#include <QSet>

namespace scrivlet {

namespace {

Q_LOGGING_CATEGORY(lcPortal, "scrivlet.hotkey.portal")

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kShortcuts = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString kRequest = QStringLiteral("org.freedesktop.portal.Request");
const QString kNoPortal = QStringLiteral("the desktop offers no global shortcuts");

struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

QString pathText(const QVariant &value)
{
    if (value.canConvert<QDBusObjectPath>() && value.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return value.value<QDBusObjectPath>().path();
    return value.toString();
}

} // namespace
} // namespace scrivlet

Q_DECLARE_METATYPE(scrivlet::PortalShortcut)

namespace scrivlet {

PortalGlobalHotKey::PortalGlobalHotKey(QDBusConnection connection) : m_connection(std::move(connection))
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    m_connection.connect(kService, kPath, kShortcuts, QStringLiteral("Activated"), this,
                         SLOT(onActivated(QDBusMessage)));
}

PortalGlobalHotKey::~PortalGlobalHotKey()
{
    closeSession();
}

QString PortalGlobalHotKey::portalTrigger(const KeyboardShortcut &shortcut)
{
    QString trigger;
    if (shortcut.modifiers & KeyboardShortcut::Control)
        trigger += QLatin1String("CTRL+");
    if (shortcut.modifiers & KeyboardShortcut::Alt)
        trigger += QLatin1String("ALT+");
    if (shortcut.modifiers & KeyboardShortcut::Shift)
        trigger += QLatin1String("SHIFT+");
    if (shortcut.modifiers & KeyboardShortcut::Meta)
        trigger += QLatin1String("LOGO+");
    // Key names as the keyboard layout names them: letters in lower case, the rest
    // as spelled there.
    static const QHash<QString, QString> named = {
        {QStringLiteral("Space"), QStringLiteral("space")},   {QStringLiteral("Esc"), QStringLiteral("Escape")},
        {QStringLiteral("Enter"), QStringLiteral("Return")},  {QStringLiteral("Backspace"), QStringLiteral("BackSpace")},
        {QStringLiteral("Del"), QStringLiteral("Delete")},    {QStringLiteral("PgUp"), QStringLiteral("Prior")},
        {QStringLiteral("PgDown"), QStringLiteral("Next")},   {QStringLiteral("+"), QStringLiteral("plus")},
    };
    const QString key = shortcut.key.size() == 1 ? shortcut.key.toLower() : shortcut.key;
    return trigger + named.value(shortcut.key, key);
}

void PortalGlobalHotKey::registerHotKey(const QString &id, const KeyboardShortcut &shortcut)
{
    m_wanted.insert(id, shortcut);
    bindAll();
}

void PortalGlobalHotKey::unregisterHotKey(const QString &id)
{
    if (!m_wanted.remove(id))
        return;
    m_bound.remove(id);
    bindAll();
}

void PortalGlobalHotKey::bindAll()
{
    if (m_wanted.isEmpty()) {
        closeSession();
        return;
    }
    if (m_checked) {
        if (!m_available)
            failAll(kNoPortal);
        else
            createSession();
        return;
    }
    if (m_checking)
        return;
    m_checking = true;
    // The version says whether the portal knows global shortcuts at all: a portal
    // without them answers with an error.
    QDBusMessage get = QDBusMessage::createMethodCall(kService, kPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                      QStringLiteral("Get"));
    get << kShortcuts << QStringLiteral("version");
    auto *watcher = new QDBusPendingCallWatcher(m_connection.asyncCall(get, 3000), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *call) {
        call->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *call;
        m_checking = false;
        m_checked = true;
        m_available = !reply.isError() && reply.value().variant().toUInt() >= 1;
        if (!m_available)
            qCInfo(lcPortal) << "no global shortcuts portal:" << reply.error().message();
        bindAll();
    });
}

QString PortalGlobalHotKey::expectResponse(const QString &token, const char *slot)
{
    QString sender = m_connection.baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    const QString path = kPath + QStringLiteral("/request/") + sender + QLatin1Char('/') + token;
    if (!m_pendingRequest.isEmpty())
        m_connection.disconnect(kService, m_pendingRequest, kRequest, QStringLiteral("Response"), this, nullptr);
    m_connection.connect(kService, path, kRequest, QStringLiteral("Response"), this, slot);
    m_pendingRequest = path;
    return path;
}

void PortalGlobalHotKey::createSession()
{
    closeSession();
    ++m_round;
    const QString token = QStringLiteral("scrivlet%1").arg(m_round);
    expectResponse(token, SLOT(onSessionCreated(QDBusMessage)));
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kShortcuts, QStringLiteral("CreateSession"));
    call << QVariantMap{{QStringLiteral("handle_token"), token},
                        {QStringLiteral("session_handle_token"), QStringLiteral("scrivlet_session%1").arg(m_round)}};
    auto *watcher = new QDBusPendingCallWatcher(m_connection.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *pending) {
        pending->deleteLater();
        if (pending->isError())
            failAll(QStringLiteral("the desktop refused a shortcut session (%1)").arg(pending->error().message()));
    });
}

void PortalGlobalHotKey::onSessionCreated(const QDBusMessage &message)
{
    const QList<QVariant> arguments = message.arguments();
    const uint response = arguments.value(0).toUInt();
    const QVariantMap results = qdbus_cast<QVariantMap>(arguments.value(1));
    m_session = pathText(results.value(QStringLiteral("session_handle")));
    if (response != 0 || m_session.isEmpty()) {
        failAll(QStringLiteral("the desktop refused a shortcut session"));
        return;
    }
    QList<PortalShortcut> shortcuts;
    for (auto it = m_wanted.cbegin(); it != m_wanted.cend(); ++it) {
        shortcuts.append({it.key(),
                          {{QStringLiteral("description"), QStringLiteral("Show or hide Scrivlet")},
                           {QStringLiteral("preferred_trigger"), portalTrigger(it.value())}}});
    }
    const QString token = QStringLiteral("scrivlet_bind%1").arg(m_round);
    expectResponse(token, SLOT(onShortcutsBound(QDBusMessage)));
    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, kShortcuts, QStringLiteral("BindShortcuts"));
    call << QVariant::fromValue(QDBusObjectPath(m_session)) << QVariant::fromValue(shortcuts) << QString()
         << QVariantMap{{QStringLiteral("handle_token"), token}};
    auto *watcher = new QDBusPendingCallWatcher(m_connection.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *pending) {
        pending->deleteLater();
        if (pending->isError())
            failAll(QStringLiteral("the desktop refused the shortcut (%1)").arg(pending->error().message()));
    });
}

void PortalGlobalHotKey::onShortcutsBound(const QDBusMessage &message)
{
    const QList<QVariant> arguments = message.arguments();
    const uint response = arguments.value(0).toUInt();
    if (response != 0) {
        failAll(response == 1 ? QStringLiteral("the shortcut was declined on the desktop")
                              : QStringLiteral("the desktop could not bind the shortcut"));
        return;
    }
    const QVariantMap results = qdbus_cast<QVariantMap>(arguments.value(1));
    const auto bound = qdbus_cast<QList<PortalShortcut>>(results.value(QStringLiteral("shortcuts")));
    QSet<QString> granted;
    for (const PortalShortcut &shortcut : bound)
        granted.insert(shortcut.id);
    m_bound.clear();
    for (auto it = m_wanted.cbegin(); it != m_wanted.cend(); ++it) {
        if (granted.contains(it.key())) {
            m_bound.insert(it.key(), it.value());
            reportRegistered(it.key(), {});
        } else {
            reportRegistered(it.key(), QStringLiteral("the desktop didn't grant %1").arg(it.value().toString()));
        }
    }
}

void PortalGlobalHotKey::onActivated(const QDBusMessage &message)
{
    const QList<QVariant> arguments = message.arguments();
    if (m_session.isEmpty() || pathText(arguments.value(0)) != m_session)
        return;
    const QString id = arguments.value(1).toString();
    if (m_bound.contains(id))
        reportPressed(id);
}

void PortalGlobalHotKey::closeSession()
{
    if (m_session.isEmpty())
        return;
    m_connection.call(QDBusMessage::createMethodCall(kService, m_session, QStringLiteral("org.freedesktop.portal.Session"),
                                                     QStringLiteral("Close")),
                      QDBus::NoBlock);
    m_session.clear();
    m_bound.clear();
}

void PortalGlobalHotKey::failAll(const QString &reason)
{
    m_bound.clear();
    for (auto it = m_wanted.cbegin(); it != m_wanted.cend(); ++it)
        reportRegistered(it.key(), reason);
}

} // namespace scrivlet
