#pragma once

#include "platform/KeyboardShortcut.h"

#include <QString>

#include <functional>
#include <utility>

namespace scrivlet {

// A shortcut that reaches the app from anywhere on the desktop, even while another
// application has the focus. Each shortcut is held under an id ("globalShowApp").
//
// The desktop may answer a registration later (a portal asks the user first), so the
// outcome comes back through the registered handler, with an empty reason on success
// and a sentence a person can read when the shortcut was left off ("another
// application already uses Ctrl+Alt+Space"). Handlers run on the main thread.
class GlobalHotKey {
public:
    using PressedHandler = std::function<void(const QString &id)>;
    using RegisteredHandler = std::function<void(const QString &id, const QString &failureReason)>;

    virtual ~GlobalHotKey() = default;

    // Holds `shortcut` under `id`, letting go of whatever `id` held before.
    virtual void registerHotKey(const QString &id, const KeyboardShortcut &shortcut) = 0;
    // Lets go of `id`'s shortcut; nothing for an id that holds none.
    virtual void unregisterHotKey(const QString &id) = 0;

    void setPressedHandler(PressedHandler handler) { m_pressed = std::move(handler); }
    void setRegisteredHandler(RegisteredHandler handler) { m_registered = std::move(handler); }

protected:
    void reportPressed(const QString &id) const
    {
        if (m_pressed)
            m_pressed(id);
    }
    void reportRegistered(const QString &id, const QString &failureReason) const
    {
        if (m_registered)
            m_registered(id, failureReason);
    }

private:
    PressedHandler m_pressed;
    RegisteredHandler m_registered;
};

} // namespace scrivlet
