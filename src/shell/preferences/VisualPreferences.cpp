#include "shell/preferences/VisualPreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &VisualPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("fontSize"), PreferenceType::Word, QVariant(QStringLiteral("medium")), {QStringLiteral("extraSmall"), QStringLiteral("small"), QStringLiteral("medium"), QStringLiteral("large"), QStringLiteral("extraLarge")}},
        {QStringLiteral("doubleFontSize"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("selectedTheme"), PreferenceType::String, QVariant(QStringLiteral("Vancouver"))},
        {QStringLiteral("selectedLightTheme"), PreferenceType::String, QVariant(QStringLiteral("Vancouver"))},
        {QStringLiteral("selectedDarkTheme"), PreferenceType::String, QVariant(QStringLiteral("Tokyo Drift"))},
        {QStringLiteral("paperType"), PreferenceType::Word, QVariant(QStringLiteral("blank")), {QStringLiteral("blank"), QStringLiteral("lines"), QStringLiteral("dots"), QStringLiteral("smallGrid"), QStringLiteral("bigGrid")}},
        {QStringLiteral("paperOpacity"), PreferenceType::Word, QVariant(QStringLiteral("subtle")), {QStringLiteral("subtle"), QStringLiteral("clear"), QStringLiteral("bold")}},
        {QStringLiteral("appIconPreference"), PreferenceType::Word, QVariant(QStringLiteral("both")), {QStringLiteral("dockOnly"), QStringLiteral("menuOnly"), QStringLiteral("both"), QStringLiteral("neither"), QStringLiteral("trueMenuApp")}},
        {QStringLiteral("popoverWidth"), PreferenceType::Double, QVariant(350.0)},
        {QStringLiteral("popoverHeight"), PreferenceType::Double, QVariant(450.0)},
        {QStringLiteral("hideWhenUnfocused"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("translucentWindow"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("translucentAmount"), PreferenceType::Double, QVariant(0.5)},
    };
    return definitions;
}

} // namespace scrivlet
