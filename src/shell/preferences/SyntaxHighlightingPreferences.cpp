#include "shell/preferences/SyntaxHighlightingPreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &SyntaxHighlightingPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("defaultLanguage"), PreferenceType::String, QVariant(QStringLiteral("js"))},
        {QStringLiteral("syntaxDarkTheme"), PreferenceType::String, QVariant(QStringLiteral("paraiso-dark"))},
        {QStringLiteral("syntaxLightTheme"), PreferenceType::String, QVariant(QStringLiteral("paraiso-light"))},
    };
    return definitions;
}

} // namespace scrivlet
