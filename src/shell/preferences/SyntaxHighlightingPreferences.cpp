#include "shell/preferences/SyntaxHighlightingPreferences.h"

namespace scrivlet {

const std::vector<PreferenceSpec> &SyntaxHighlightingPreferences::table()
{
    static const std::vector<PreferenceSpec> specs = {
        {QStringLiteral("defaultLanguage"), PreferenceType::String, QVariant(QStringLiteral("js"))},
        {QStringLiteral("syntaxDarkTheme"), PreferenceType::String, QVariant(QStringLiteral("paraiso-dark"))},
        {QStringLiteral("syntaxLightTheme"), PreferenceType::String, QVariant(QStringLiteral("paraiso-light"))},
    };
    return specs;
}

} // namespace scrivlet
