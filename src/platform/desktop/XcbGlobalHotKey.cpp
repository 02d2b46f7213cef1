#include "platform/desktop/XcbGlobalHotKey.h"

#include <QGuiApplication>
#include <QtGui/qguiapplication_platform.h>

#include <xcb/xcb.h>
#include <xcb/xproto.h>

#include <array>
#include <cstdlib>

namespace scrivlet {

namespace {

constexpr std::uint8_t kBadAccess = 10;
constexpr std::uint32_t kNumLockSym = 0xff7f;
// Modifiers that change nothing about which shortcut was meant.
constexpr std::uint16_t kCapsLock = XCB_MOD_MASK_LOCK;

template<typename T>
struct FreeDeleter {
    void operator()(T *p) const { std::free(p); }
};
template<typename T>
using Reply = std::unique_ptr<T, FreeDeleter<T>>;

// The X key sym of a key as shortcuts name it: Latin-1 characters are their own key
// syms (letters in lower case), the rest comes from the X key sym table.
std::optional<std::uint32_t> keySymFor(const QString &key)
{
    if (key.size() == 1) {
        const QChar c = key.at(0).toLower();
        if (c.unicode() >= 0x20 && c.unicode() <= 0xff)
            return c.unicode();
        return std::nullopt;
    }
    if (key.size() <= 3 && key.at(0) == QLatin1Char('F')) {
        bool ok = false;
        const int n = key.mid(1).toInt(&ok);
        if (ok && n >= 1 && n <= 35)
            return 0xffbe + std::uint32_t(n - 1);
    }
    static const QHash<QString, std::uint32_t> named = {
        {QStringLiteral("Space"), 0x20},      {QStringLiteral("Return"), 0xff0d}, {QStringLiteral("Enter"), 0xff0d},
        {QStringLiteral("Tab"), 0xff09},      {QStringLiteral("Escape"), 0xff1b}, {QStringLiteral("Esc"), 0xff1b},
        {QStringLiteral("Backspace"), 0xff08}, {QStringLiteral("Delete"), 0xffff}, {QStringLiteral("Del"), 0xffff},
        {QStringLiteral("Insert"), 0xff63},   {QStringLiteral("Home"), 0xff50},   {QStringLiteral("End"), 0xff57},
        {QStringLiteral("PgUp"), 0xff55},     {QStringLiteral("PgDown"), 0xff56}, {QStringLiteral("Left"), 0xff51},
        {QStringLiteral("Up"), 0xff52},       {QStringLiteral("Right"), 0xff53},  {QStringLiteral("Down"), 0xff54},
    };
    const auto it = named.constFind(key);
    if (it == named.constEnd())
        return std::nullopt;
    return *it;
}

std::uint16_t modifierMask(unsigned modifiers)
{
    std::uint16_t mask = 0;
    if (modifiers & KeyboardShortcut::Control)
        mask |= XCB_MOD_MASK_CONTROL;
    if (modifiers & KeyboardShortcut::Alt)
        mask |= XCB_MOD_MASK_1;
    if (modifiers & KeyboardShortcut::Shift)
        mask |= XCB_MOD_MASK_SHIFT;
    if (modifiers & KeyboardShortcut::Meta)
        mask |= XCB_MOD_MASK_4;
    return mask;
}

} // namespace

std::unique_ptr<XcbGlobalHotKey> XcbGlobalHotKey::create()
{
    auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || !x11->connection())
        return nullptr;
    return std::unique_ptr<XcbGlobalHotKey>(new XcbGlobalHotKey(x11->connection()));
}

XcbGlobalHotKey::XcbGlobalHotKey(xcb_connection_t *connection) : m_connection(connection)
{
    m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
    m_numLock = numLockMask();
    QCoreApplication::instance()->installNativeEventFilter(this);
}

XcbGlobalHotKey::~XcbGlobalHotKey()
{
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
    for (const Grab &grab : std::as_const(m_grabs))
        ungrab(grab);
    xcb_flush(m_connection);
}

std::optional<std::uint8_t> XcbGlobalHotKey::keyCodeFor(std::uint32_t keySym) const
{
    const xcb_setup_t *setup = xcb_get_setup(m_connection);
    const std::uint8_t first = setup->min_keycode;
    const int count = setup->max_keycode - first + 1;
    Reply<xcb_get_keyboard_mapping_reply_t> reply(xcb_get_keyboard_mapping_reply(
        m_connection, xcb_get_keyboard_mapping(m_connection, first, std::uint8_t(count)), nullptr));
    if (!reply)
        return std::nullopt;
    const xcb_keysym_t *syms = xcb_get_keyboard_mapping_keysyms(reply.get());
    const int perCode = reply->keysyms_per_keycode;
    // The unshifted column first: a shortcut names the key, not what Shift makes of it.
    for (int column = 0; column < perCode; ++column) {
        for (int i = 0; i < count; ++i) {
            if (syms[i * perCode + column] == keySym)
                return std::uint8_t(first + i);
        }
    }
    return std::nullopt;
}

std::uint16_t XcbGlobalHotKey::numLockMask() const
{
    const auto numLockCode = keyCodeFor(kNumLockSym);
    if (!numLockCode)
        return XCB_MOD_MASK_2;
    Reply<xcb_get_modifier_mapping_reply_t> reply(
        xcb_get_modifier_mapping_reply(m_connection, xcb_get_modifier_mapping(m_connection), nullptr));
    if (!reply)
        return XCB_MOD_MASK_2;
    const xcb_keycode_t *codes = xcb_get_modifier_mapping_keycodes(reply.get());
    const int perModifier = reply->keycodes_per_modifier;
    for (int modifier = 0; modifier < 8; ++modifier) {
        for (int i = 0; i < perModifier; ++i) {
            if (codes[modifier * perModifier + i] == *numLockCode)
                return std::uint16_t(1u << modifier);
        }
    }
    return XCB_MOD_MASK_2;
}

void XcbGlobalHotKey::registerHotKey(const QString &id, const KeyboardShortcut &shortcut)
{
    unregisterHotKey(id);
    const auto keySym = keySymFor(shortcut.key);
    const auto keyCode = keySym ? keyCodeFor(*keySym) : std::nullopt;
    if (!keyCode) {
        reportRegistered(id, QStringLiteral("the keyboard has no key \"%1\"").arg(shortcut.key));
        return;
    }
    const Grab wanted{*keyCode, modifierMask(shortcut.modifiers)};
    for (auto it = m_grabs.cbegin(); it != m_grabs.cend(); ++it) {
        if (it->keyCode == wanted.keyCode && it->modifiers == wanted.modifiers) {
            reportRegistered(id, QStringLiteral("%1 is already taken by \"%2\"").arg(shortcut.toString(), it.key()));
            return;
        }
    }
    const QString failure = grab(wanted, shortcut);
    if (failure.isEmpty())
        m_grabs.insert(id, wanted);
    reportRegistered(id, failure);
}

void XcbGlobalHotKey::unregisterHotKey(const QString &id)
{
    const auto it = m_grabs.constFind(id);
    if (it == m_grabs.constEnd())
        return;
    ungrab(*it);
    xcb_flush(m_connection);
    m_grabs.erase(it);
}

QString XcbGlobalHotKey::grab(const Grab &grab, const KeyboardShortcut &shortcut)
{
    const std::array<std::uint16_t, 4> locks = {0, m_numLock, kCapsLock, std::uint16_t(m_numLock | kCapsLock)};
    std::array<xcb_void_cookie_t, 4> cookies{};
    for (std::size_t i = 0; i < locks.size(); ++i) {
        cookies[i] = xcb_grab_key_checked(m_connection, 1, m_root, grab.modifiers | locks[i], grab.keyCode,
                                          XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    }
    QString failure;
    for (const xcb_void_cookie_t &cookie : cookies) {
        Reply<xcb_generic_error_t> error(xcb_request_check(m_connection, cookie));
        if (error && failure.isEmpty()) {
            failure = error->error_code == kBadAccess
                ? QStringLiteral("another application already uses %1").arg(shortcut.toString())
                : QStringLiteral("the X server refused %1 (error %2)").arg(shortcut.toString()).arg(error->error_code);
        }
    }
    if (!failure.isEmpty()) {
        // Don't keep half of it: a hot key that works only with Caps Lock on is worse than none.
        this->ungrab(grab);
        xcb_flush(m_connection);
    }
    return failure;
}

void XcbGlobalHotKey::ungrab(const Grab &grab)
{
    for (const std::uint16_t lock : {std::uint16_t(0), m_numLock, kCapsLock, std::uint16_t(m_numLock | kCapsLock)})
        xcb_ungrab_key(m_connection, grab.keyCode, m_root, grab.modifiers | lock);
}

bool XcbGlobalHotKey::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    const std::uint8_t type = event->response_type & 0x7f;
    if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE)
        return false;
    const auto *key = static_cast<const xcb_key_press_event_t *>(message);
    const std::uint16_t relevant = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_4;
    const std::uint16_t state = key->state & relevant;
    for (auto it = m_grabs.cbegin(); it != m_grabs.cend(); ++it) {
        if (it->keyCode == key->detail && it->modifiers == state) {
            // The release is swallowed too, so the editor never sees half a key stroke.
            if (type == XCB_KEY_RELEASE) {
                m_lastReleaseTime = key->time;
                m_lastReleaseCode = key->detail;
                return true;
            }
            const bool repeat = m_lastReleaseCode == key->detail && m_lastReleaseTime == key->time;
            if (!repeat)
                reportPressed(it.key());
            return true;
        }
    }
    return false;
}

} // namespace scrivlet
