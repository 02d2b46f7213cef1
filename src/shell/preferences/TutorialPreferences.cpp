#include "shell/preferences/TutorialPreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &TutorialPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("showFirstTimeSettings"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("showOnboarding"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("suppressDeleteWarning"), PreferenceType::Bool, QVariant(false)},
    };
    return definitions;
}

} // namespace scrivlet
