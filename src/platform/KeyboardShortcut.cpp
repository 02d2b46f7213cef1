#include "platform/KeyboardShortcut.h"

#include <QStringList>

namespace scrivlet {

namespace {

std::optional<unsigned> modifierNamed(const QString &word)
{
    const QString name = word.toLower();
    if (name == QLatin1String("ctrl") || name == QLatin1String("control"))
        return KeyboardShortcut::Control;
    if (name == QLatin1String("alt") || name == QLatin1String("option"))
        return KeyboardShortcut::Alt;
    if (name == QLatin1String("shift"))
        return KeyboardShortcut::Shift;
    if (name == QLatin1String("meta") || name == QLatin1String("super") || name == QLatin1String("cmd")
        || name == QLatin1String("command"))
        return KeyboardShortcut::Meta;
    return std::nullopt;
}

// "space" and "SPACE" are the same key as "Space"; single letters are upper case.
QString canonicalKey(const QString &word)
{
    if (word.size() == 1)
        return word.toUpper();
    QString key = word.toLower();
    key[0] = key[0].toUpper();
    if (key.size() <= 3 && key[0] == QLatin1Char('F'))
        return key;
    static const char *const kSpelled[] = {"PgUp", "PgDown", "Backspace", "Return", "Enter", "Escape", "Esc",
                                           "Tab",  "Home",   "End",       "Insert", "Delete", "Del",
                                           "Up",   "Down",   "Left",      "Right",  "Space"};
    for (const char *spelled : kSpelled) {
        if (key.compare(QLatin1String(spelled), Qt::CaseInsensitive) == 0)
            return QLatin1String(spelled);
    }
    return key;
}

} // namespace

std::optional<KeyboardShortcut> KeyboardShortcut::fromString(const QString &text)
{
    QString rest = text.trimmed();
    if (rest.isEmpty())
        return std::nullopt;
    // "Ctrl++" binds the plus key itself.
    QString key;
    if (rest.endsWith(QLatin1String("++")) || rest == QLatin1String("+")) {
        key = QStringLiteral("+");
        rest.chop(rest == QLatin1String("+") ? 1 : 2);
    }
    const QStringList words = rest.isEmpty() ? QStringList() : rest.split(QLatin1Char('+'));
    KeyboardShortcut shortcut;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString word = words.at(i).trimmed();
        if (word.isEmpty())
            return std::nullopt;
        if (const auto modifier = modifierNamed(word)) {
            shortcut.modifiers |= *modifier;
            continue;
        }
        if (!key.isEmpty() || i != words.size() - 1)
            return std::nullopt;
        key = canonicalKey(word);
    }
    if (key.isEmpty())
        return std::nullopt;
    shortcut.key = key;
    return shortcut;
}

QString KeyboardShortcut::toString() const
{
    QString text;
    if (modifiers & Control)
        text += QLatin1String("Ctrl+");
    if (modifiers & Alt)
        text += QLatin1String("Alt+");
    if (modifiers & Shift)
        text += QLatin1String("Shift+");
    if (modifiers & Meta)
        text += QLatin1String("Meta+");
    return text + key;
}

} // namespace scrivlet
