#include "shell/preferences/PrivacyPreferences.h"

namespace scrivlet {

const std::vector<PreferenceSpec> &PrivacyPreferences::table()
{
    static const std::vector<PreferenceSpec> specs = {
        {QStringLiteral("usedScrivlet"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("featuresUsage"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("personalizationChoices"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("tutorialViews"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("updateConversionRates"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("checkGithubForExtensions"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("queryUrgentAlerts"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("enableUpdater"), PreferenceType::Bool, QVariant(true)},
    };
    return specs;
}

} // namespace scrivlet
