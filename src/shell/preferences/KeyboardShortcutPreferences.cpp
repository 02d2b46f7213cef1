#include "shell/preferences/KeyboardShortcutPreferences.h"

#include "platform/NotificationBus.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace scrivlet {

const QString KeyboardShortcutPreferences::kKey = QStringLiteral("keyboardShortcuts");
const QString KeyboardShortcutPreferences::kGlobalShowApp = QStringLiteral("globalShowApp");

namespace {

const QHash<QString, QString> &defaults()
{
    static const QHash<QString, QString> table = {
        {KeyboardShortcutPreferences::kGlobalShowApp, QStringLiteral("Ctrl+Alt+Space")},
    };
    return table;
}

QString defaultsAsJson()
{
    QJsonObject object;
    for (auto it = defaults().begin(); it != defaults().end(); ++it)
        object.insert(it.key(), it.value());
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

const std::vector<PreferenceDefinition> &KeyboardShortcutPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {kKey, PreferenceType::String, QVariant(defaultsAsJson())},
    };
    return definitions;
}

std::optional<KeyboardShortcut> KeyboardShortcutPreferences::defaultShortcut(const QString &id)
{
    return KeyboardShortcut::fromString(defaults().value(id));
}

QJsonObject KeyboardShortcutPreferences::stored() const
{
    // Anything but a JSON object counts as never set, like any ill-typed value.
    const QJsonDocument document = QJsonDocument::fromJson(stringValue(kKey).toUtf8());
    return document.isObject() ? document.object() : QJsonObject();
}

std::optional<KeyboardShortcut> KeyboardShortcutPreferences::shortcut(const QString &id) const
{
    const QJsonValue value = stored().value(id);
    if (!value.isString())
        return defaultShortcut(id);
    const QString text = value.toString();
    if (text.trimmed().isEmpty())
        return std::nullopt;
    const auto parsed = KeyboardShortcut::fromString(text);
    return parsed ? parsed : defaultShortcut(id);
}

void KeyboardShortcutPreferences::setShortcut(const QString &id, const std::optional<KeyboardShortcut> &shortcut)
{
    QJsonObject all = stored();
    all.insert(id, shortcut ? shortcut->toString() : QString());
    store(id, all);
}

void KeyboardShortcutPreferences::resetShortcut(const QString &id)
{
    QJsonObject all = stored();
    const QString fallback = defaults().value(id);
    if (fallback.isEmpty())
        all.remove(id);
    else
        all.insert(id, fallback);
    store(id, all);
}

void KeyboardShortcutPreferences::store(const QString &id, const QJsonObject &all)
{
    setValue(kKey, QString::fromUtf8(QJsonDocument(all).toJson(QJsonDocument::Compact)));
    if (m_bus)
        m_bus->post(QStringLiteral("keyboardShortcutChanged"), {{QStringLiteral("id"), id}});
}

} // namespace scrivlet
