#include "shell/preferences/PrivacyPreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &PrivacyPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("usedScrivlet"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("featuresUsage"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("personalizationChoices"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("tutorialViews"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("updateConversionRates"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("checkGithubForExtensions"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("queryUrgentAlerts"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("enableUpdater"), PreferenceType::Bool, QVariant(true)},
        // The product's API server, which the rates and notices calls above go to.
        {QStringLiteral("apiServerAddress"), PreferenceType::String, QVariant(QStringLiteral("https://api.scrivlet.app"))},
    };
    return definitions;
}

} // namespace scrivlet
