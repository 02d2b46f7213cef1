#include "platform/desktop/PortalGlobalHotKey.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDeadlineTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>
#include <gtest/gtest.h>

#include <functional>
#include <optional>

using namespace scrivlet;

namespace {

struct BoundShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const BoundShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, BoundShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

} // namespace

Q_DECLARE_METATYPE(BoundShortcut)

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");

// A desktop portal with global shortcuts, on a private bus: it grants what it is asked
// for unless told to decline, and can press a bound shortcut.
class FakePortal final : public QDBusVirtualObject {
public:
    explicit FakePortal(QDBusConnection connection) : m_connection(std::move(connection)) {}

    uint declineWith = 0;
    QList<BoundShortcut> bound;
    QString session;
    int closedSessions = 0;

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        const QString member = message.member();
        const QList<QVariant> arguments = message.arguments();
        if (member == QLatin1String("Get")) {
            connection.send(message.createReply(QVariant::fromValue(QDBusVariant(uint(1)))));
            return true;
        }
        if (member == QLatin1String("Close")) {
            ++closedSessions;
            connection.send(message.createReply());
            return true;
        }
        if (member == QLatin1String("CreateSession")) {
            const QVariantMap options = qdbus_cast<QVariantMap>(arguments.value(0));
            session = kPath + QStringLiteral("/session/") + sender(message)
                + QLatin1Char('/') + options.value(QStringLiteral("session_handle_token")).toString();
            respond(message, options, 0, {{QStringLiteral("session_handle"), session}});
            return true;
        }
        if (member == QLatin1String("BindShortcuts")) {
            bound = qdbus_cast<QList<BoundShortcut>>(arguments.value(1));
            const QVariantMap options = qdbus_cast<QVariantMap>(arguments.value(3));
            respond(message, options, declineWith,
                    {{QStringLiteral("shortcuts"), QVariant::fromValue(declineWith ? QList<BoundShortcut>() : bound)}});
            return true;
        }
        return false;
    }

    void press(const QString &id, const QString &inSession)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(kPath, QStringLiteral("org.freedesktop.portal.GlobalShortcuts"),
                                       QStringLiteral("Activated"));
        signal << QVariant::fromValue(QDBusObjectPath(inSession)) << id << qulonglong(0) << QVariantMap();
        m_connection.send(signal);
    }

private:
    static QString sender(const QDBusMessage &message)
    {
        QString name = message.service().mid(1);
        return name.replace(QLatin1Char('.'), QLatin1Char('_'));
    }

    // The answer comes as a signal on the request's path after the call returns.
    void respond(const QDBusMessage &message, const QVariantMap &options, uint code, const QVariantMap &results)
    {
        const QString request = kPath + QStringLiteral("/request/") + sender(message) + QLatin1Char('/')
            + options.value(QStringLiteral("handle_token")).toString();
        m_connection.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        QTimer::singleShot(10, [this, request, code, results] {
            QDBusMessage response = QDBusMessage::createSignal(request, QStringLiteral("org.freedesktop.portal.Request"),
                                                               QStringLiteral("Response"));
            response << code << results;
            m_connection.send(response);
        });
    }

    QDBusConnection m_connection;
};

// A session bus of the test's own.
class PrivateBus {
public:
    PrivateBus()
    {
        const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
        if (daemon.isEmpty())
            return;
        m_daemon.start(daemon, {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address")});
        if (!m_daemon.waitForStarted() || !m_daemon.waitForReadyRead(5000))
            return;
        address = QString::fromUtf8(m_daemon.readLine().trimmed());
    }
    ~PrivateBus()
    {
        m_daemon.terminate();
        m_daemon.waitForFinished(3000);
    }
    QDBusConnection connect(const QString &name) const { return QDBusConnection::connectToBus(address, name); }

    QString address;

private:
    QProcess m_daemon;
};

bool waitUntil(const std::function<bool()> &done)
{
    const QDeadlineTimer deadline(5000);
    while (!done() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return done();
}

struct Outcome {
    std::optional<QString> reason;
    QStringList presses;
};

void listen(PortalGlobalHotKey &hotKey, Outcome &outcome)
{
    hotKey.setRegisteredHandler([&outcome](const QString &, const QString &reason) { outcome.reason = reason; });
    hotKey.setPressedHandler([&outcome](const QString &id) { outcome.presses << id; });
}

const KeyboardShortcut kCtrlAltSpace{QStringLiteral("Space"), KeyboardShortcut::Control | KeyboardShortcut::Alt};

} // namespace

TEST(PortalGlobalHotKey, BindsThroughThePortalAndHearsItsPresses)
{
    qDBusRegisterMetaType<BoundShortcut>();
    qDBusRegisterMetaType<QList<BoundShortcut>>();
    PrivateBus bus;
    if (bus.address.isEmpty())
        GTEST_SKIP() << "needs dbus-daemon";
    QDBusConnection portalSide = bus.connect(QStringLiteral("portal"));
    ASSERT_TRUE(portalSide.registerService(kService));
    FakePortal portal(portalSide);
    ASSERT_TRUE(portalSide.registerVirtualObject(kPath, &portal, QDBusConnection::SubPath));

    PortalGlobalHotKey hotKey(bus.connect(QStringLiteral("app")));
    Outcome outcome;
    listen(hotKey, outcome);
    hotKey.registerHotKey(QStringLiteral("globalShowApp"), kCtrlAltSpace);
    ASSERT_TRUE(waitUntil([&] { return outcome.reason.has_value(); }));
    EXPECT_EQ(*outcome.reason, QString());
    ASSERT_EQ(portal.bound.size(), 1);
    EXPECT_EQ(portal.bound.at(0).id, QStringLiteral("globalShowApp"));
    EXPECT_EQ(portal.bound.at(0).properties.value(QStringLiteral("preferred_trigger")).toString(),
              QStringLiteral("CTRL+ALT+space"));

    portal.press(QStringLiteral("globalShowApp"), QStringLiteral("/org/freedesktop/portal/desktop/session/x/other"));
    portal.press(QStringLiteral("globalShowApp"), portal.session);
    ASSERT_TRUE(waitUntil([&] { return !outcome.presses.isEmpty(); }));
    EXPECT_EQ(outcome.presses, QStringList{QStringLiteral("globalShowApp")});

    // A new shortcut is a new session; the old one is closed.
    outcome.reason.reset();
    const QString firstSession = portal.session;
    hotKey.registerHotKey(QStringLiteral("globalShowApp"), *KeyboardShortcut::fromString(QStringLiteral("Meta+F5")));
    ASSERT_TRUE(waitUntil([&] { return outcome.reason.has_value(); }));
    EXPECT_NE(portal.session, firstSession);
    EXPECT_EQ(portal.closedSessions, 1);
    EXPECT_EQ(portal.bound.at(0).properties.value(QStringLiteral("preferred_trigger")).toString(),
              QStringLiteral("LOGO+F5"));

    // The user may decline on the desktop.
    outcome.reason.reset();
    portal.declineWith = 1;
    hotKey.registerHotKey(QStringLiteral("globalShowApp"), kCtrlAltSpace);
    ASSERT_TRUE(waitUntil([&] { return outcome.reason.has_value(); }));
    EXPECT_EQ(*outcome.reason, QStringLiteral("the shortcut was declined on the desktop"));
}

TEST(PortalGlobalHotKey, ADesktopWithoutThePortalLeavesTheHotKeyOff)
{
    PrivateBus bus;
    if (bus.address.isEmpty())
        GTEST_SKIP() << "needs dbus-daemon";
    PortalGlobalHotKey hotKey(bus.connect(QStringLiteral("lonely")));
    Outcome outcome;
    listen(hotKey, outcome);
    hotKey.registerHotKey(QStringLiteral("globalShowApp"), kCtrlAltSpace);
    ASSERT_TRUE(waitUntil([&] { return outcome.reason.has_value(); }));
    EXPECT_EQ(*outcome.reason, QStringLiteral("the desktop offers no global shortcuts"));
}
