#pragma once

#include "platform/KeyboardShortcut.h"
#include "shell/preferences/PreferencesGroup.h"

#include <optional>

class QJsonObject;

namespace scrivlet {

class NotificationBus;

// The user's keyboard shortcuts, all under the one key "keyboardShortcuts" as a JSON
// object from shortcut id to its text: {"globalShowApp": "Ctrl+Alt+Space"}. An id the
// object doesn't name has its default; an empty text is a shortcut the user cleared.
// Every change posts "keyboardShortcutChanged" with the id under "id", so whoever
// binds the shortcut (the global hot key, the editor's key table) binds it anew.
class KeyboardShortcutPreferences final : public PreferencesGroup {
public:
    static const QString kKey;
    // Shows and hides the main window from anywhere on the desktop.
    static const QString kGlobalShowApp;

    static const std::vector<PreferenceDefinition> &table();
    explicit KeyboardShortcutPreferences(SettingsStore &store, NotificationBus *bus = nullptr)
        : PreferencesGroup(store, table()), m_bus(bus)
    {
    }

    // Ctrl+Alt+Space for the global hot key: no desktop of the common ones (GNOME,
    // KDE, Xfce, Cinnamon) binds it, and unlike Ctrl+Alt+S it doesn't take the
    // settings shortcut of the usual IDEs away from them. Nothing for an id without one.
    static std::optional<KeyboardShortcut> defaultShortcut(const QString &id);

    // The user's shortcut for `id`, its default if the user never set one, nothing
    // if the user cleared it.
    std::optional<KeyboardShortcut> shortcut(const QString &id) const;
    // Nothing clears the shortcut.
    void setShortcut(const QString &id, const std::optional<KeyboardShortcut> &shortcut);
    // Back to the default.
    void resetShortcut(const QString &id);

private:
    QJsonObject stored() const;
    void store(const QString &id, const QJsonObject &all);

    NotificationBus *m_bus;
};

} // namespace scrivlet
