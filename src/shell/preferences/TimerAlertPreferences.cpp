#include "shell/preferences/TimerAlertPreferences.h"

namespace scrivlet {

const std::vector<PreferenceSpec> &TimerAlertPreferences::table()
{
    static const std::vector<PreferenceSpec> specs = {
        {QStringLiteral("noPeekStreak"), PreferenceType::Int, QVariant(0)},
        {QStringLiteral("noPeekStreakMax"), PreferenceType::Int, QVariant(0)},
    };
    return specs;
}

} // namespace scrivlet
