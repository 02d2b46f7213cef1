#include "shell/preferences/TutorialPreferences.h"

namespace scrivlet {

const std::vector<PreferenceSpec> &TutorialPreferences::table()
{
    static const std::vector<PreferenceSpec> specs = {
        {QStringLiteral("showFirstTimeSettings"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("showOnboarding"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("suppressDeleteWarning"), PreferenceType::Bool, QVariant(false)},
    };
    return specs;
}

} // namespace scrivlet
