#include "platform/desktop/DesktopGlobalHotKey.h"

#include "platform/desktop/PortalGlobalHotKey.h"
#include "platform/desktop/XcbGlobalHotKey.h"

#include <QGuiApplication>
#include <QLoggingCategory>

namespace scrivlet {

namespace {

Q_LOGGING_CATEGORY(lcDesktopHotKey, "scrivlet.hotkey")

// A desktop without any global shortcut service (the offscreen platform, a bare
// Wayland compositor without the portal).
class NoGlobalHotKey final : public GlobalHotKey {
public:
    void registerHotKey(const QString &id, const KeyboardShortcut &) override
    {
        reportRegistered(id, QStringLiteral("the desktop offers no global shortcuts"));
    }
    void unregisterHotKey(const QString &) override {}
};

} // namespace

std::unique_ptr<GlobalHotKey> createDesktopGlobalHotKey()
{
    const QString platform = QGuiApplication::platformName();
    const bool waylandSession = platform.startsWith(QLatin1String("wayland"))
        || qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland");
    // Under Wayland an X grab sees keys only while an X window has the focus, so the
    // portal comes first there, even for the app running through XWayland.
    if (waylandSession && QDBusConnection::sessionBus().isConnected()) {
        qCDebug(lcDesktopHotKey) << "global hot key through the desktop portal";
        return std::make_unique<PortalGlobalHotKey>();
    }
    if (platform == QLatin1String("xcb")) {
        if (auto xcb = XcbGlobalHotKey::create())
            return xcb;
    }
    return std::make_unique<NoGlobalHotKey>();
}

} // namespace scrivlet
