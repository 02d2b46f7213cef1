#include "shell/preferences/TimerPreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &TimerPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("hasMigrated117TimerSettings"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("pauseTheTimerIfAppClosed"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("timerShowInMenuBar"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("timerCountdownShowNotifications"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("timerCountdownShowFullScreenAlert"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("timerCountdownPlaySound"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("timerPomoShowNotifications"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("timerPomoShowFullScreenAlert"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("timerPomoPlaySound"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("timerSoundVolume"), PreferenceType::Double, QVariant(0.4)},
    };
    return definitions;
}

} // namespace scrivlet
