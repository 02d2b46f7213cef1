#pragma once

#include <QString>

#include <optional>

namespace scrivlet {

// A key with its modifiers, as the user sets a shortcut: "Ctrl+Alt+Space", "Meta+F5",
// "Ctrl+Shift+N". The text form is the one the settings keep and the one Qt's key
// sequences read, so a settings screen can show and edit it as it stands. Key names
// are kept as written ("Space", "F5", "N"); letters are upper case.
struct KeyboardShortcut {
    enum Modifier : unsigned {
        NoModifier = 0,
        Control = 1u << 0,
        Alt = 1u << 1,
        Shift = 1u << 2,
        Meta = 1u << 3,
    };

    QString key;
    unsigned modifiers = NoModifier;

    // Reads "Ctrl+Alt+Space" (any case, spaces around '+' allowed, "Option" for Alt,
    // "Super"/"Cmd" for Meta). Nothing for an empty text, a text without a key, two
    // keys, or an unknown modifier.
    static std::optional<KeyboardShortcut> fromString(const QString &text);
    // Modifiers first, in the order Ctrl, Alt, Shift, Meta, then the key.
    QString toString() const;

    bool operator==(const KeyboardShortcut &other) const = default;
};

} // namespace scrivlet
