#include "shell/preferences/CopyPastePreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &CopyPastePreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("skipKeyword"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("skipChecked"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("removeLeadingTabs"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("removeNumbers"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("removeBullets"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("removeMarkdown"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("keepIndentation"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("removeEmptyLines"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("autoCopyOnSelect"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("enableTexReplacements"), PreferenceType::Bool, QVariant(false)},
    };
    return definitions;
}

} // namespace scrivlet
