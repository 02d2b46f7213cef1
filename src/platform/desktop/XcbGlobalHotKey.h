#pragma once

#include "platform/GlobalHotKey.h"

#include <QAbstractNativeEventFilter>
#include <QHash>

#include <cstdint>
#include <memory>
#include <optional>

struct xcb_connection_t;

namespace scrivlet {

// The global hot key on an X11 desktop: the key is grabbed on the root window, so the
// X server hands every press of it to the app whichever window has the focus. Num Lock
// and Caps Lock count as modifiers to X, so each shortcut is grabbed in the four
// lock states; otherwise the hot key would die whenever Num Lock is on.
//
// Needs the app to run on the xcb platform; `create` gives nothing elsewhere.
class XcbGlobalHotKey final : public GlobalHotKey, private QAbstractNativeEventFilter {
public:
    static std::unique_ptr<XcbGlobalHotKey> create();
    ~XcbGlobalHotKey() override;

    void registerHotKey(const QString &id, const KeyboardShortcut &shortcut) override;
    void unregisterHotKey(const QString &id) override;

private:
    struct Grab {
        std::uint8_t keyCode = 0;
        std::uint16_t modifiers = 0;
    };

    explicit XcbGlobalHotKey(xcb_connection_t *connection);
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

    std::optional<std::uint8_t> keyCodeFor(std::uint32_t keySym) const;
    std::uint16_t numLockMask() const;
    // Grabs the key in every lock state; on failure lets go of what it took and says why.
    QString grab(const Grab &grab, const KeyboardShortcut &shortcut);
    void ungrab(const Grab &grab);

    xcb_connection_t *m_connection;
    std::uint32_t m_root = 0;
    std::uint16_t m_numLock = 0;
    // Auto-repeat sends a release and a press with one time stamp: only the first
    // press of a held key toggles.
    std::uint32_t m_lastReleaseTime = 0;
    std::uint8_t m_lastReleaseCode = 0;
    QHash<QString, Grab> m_grabs;
};

} // namespace scrivlet
