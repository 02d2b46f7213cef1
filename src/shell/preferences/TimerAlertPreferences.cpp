#include "shell/preferences/TimerAlertPreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &TimerAlertPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("noPeekStreak"), PreferenceType::Int, QVariant(0)},
        {QStringLiteral("noPeekStreakMax"), PreferenceType::Int, QVariant(0)},
    };
    return definitions;
}

} // namespace scrivlet
