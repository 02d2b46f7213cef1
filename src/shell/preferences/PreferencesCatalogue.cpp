#include "shell/preferences/PreferencesCatalogue.h"

#include "platform/SettingsStore.h"
#include "shell/preferences/CopyPastePreferences.h"
#include "shell/preferences/ExportPreferences.h"
#include "shell/preferences/KeyboardShortcutPreferences.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MathPreferences.h"
#include "shell/preferences/MigrationRecords.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/NotesPreferences.h"
#include "shell/preferences/PrivacyPreferences.h"
#include "shell/preferences/SyntaxHighlightingPreferences.h"
#include "shell/preferences/TimerAlertPreferences.h"
#include "shell/preferences/TimerPreferences.h"
#include "shell/preferences/TutorialPreferences.h"
#include "shell/preferences/VisualPreferences.h"

#include <QHash>

namespace scrivlet {

const std::vector<PreferencesCatalogue::Group> &PreferencesCatalogue::groups()
{
    static const std::vector<Group> all = {
        {QStringLiteral("MiscPreferences"), &MiscPreferences::table()},
        {QStringLiteral("KeywordPreferences"), &KeywordPreferences::table()},
        {QStringLiteral("SyntaxHighlightingPreferences"), &SyntaxHighlightingPreferences::table()},
        {QStringLiteral("VisualPreferences"), &VisualPreferences::table()},
        {QStringLiteral("TutorialPreferences"), &TutorialPreferences::table()},
        {QStringLiteral("TimerPreferences"), &TimerPreferences::table()},
        {QStringLiteral("CopyPastePreferences"), &CopyPastePreferences::table()},
        {QStringLiteral("PrivacyPreferences"), &PrivacyPreferences::table()},
        {QStringLiteral("timer alert"), &TimerAlertPreferences::table()},
        {QStringLiteral("MathPreferences"), &MathPreferences::table()},
        {QStringLiteral("ExportPreferences"), &ExportPreferences::table()},
        {QStringLiteral("MigrationRecords"), &MigrationRecords::table()},
        {QStringLiteral("NotesPreferences"), &NotesPreferences::table()},
        {QStringLiteral("KeyboardShortcutPreferences"), &KeyboardShortcutPreferences::table()},
    };
    return all;
}

const PreferenceDefinition *PreferencesCatalogue::find(const QString &key)
{
    static const QHash<QString, const PreferenceDefinition *> byKey = [] {
        QHash<QString, const PreferenceDefinition *> map;
        for (const Group &group : groups()) {
            for (const PreferenceDefinition &definition : *group.definitions)
                map.insert(definition.key, &definition);
        }
        return map;
    }();
    return byKey.value(key, nullptr);
}

std::optional<PreferencesCatalogue::SetError> PreferencesCatalogue::setFromText(SettingsStore &store,
                                                                               const QString &key, const QString &text)
{
    const PreferenceDefinition *definition = find(key);
    if (!definition)
        return SetError::UnknownKey;
    const auto value = definition->coerce(QVariant(text));
    if (!value)
        return SetError::WrongType;
    store.setValue(key, *value);
    return std::nullopt;
}

} // namespace scrivlet
