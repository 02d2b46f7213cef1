#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class TimerPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit TimerPreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    bool hasMigrated117TimerSettings() const { return boolValue(QStringLiteral("hasMigrated117TimerSettings")); }
    void setHasMigrated117TimerSettings(bool value) { setValue(QStringLiteral("hasMigrated117TimerSettings"), value); }
    bool pauseTheTimerIfAppClosed() const { return boolValue(QStringLiteral("pauseTheTimerIfAppClosed")); }
    void setPauseTheTimerIfAppClosed(bool value) { setValue(QStringLiteral("pauseTheTimerIfAppClosed"), value); }
    bool timerShowInMenuBar() const { return boolValue(QStringLiteral("timerShowInMenuBar")); }
    void setTimerShowInMenuBar(bool value) { setValue(QStringLiteral("timerShowInMenuBar"), value); }
    bool timerCountdownShowNotifications() const { return boolValue(QStringLiteral("timerCountdownShowNotifications")); }
    void setTimerCountdownShowNotifications(bool value) { setValue(QStringLiteral("timerCountdownShowNotifications"), value); }
    bool timerCountdownShowFullScreenAlert() const { return boolValue(QStringLiteral("timerCountdownShowFullScreenAlert")); }
    void setTimerCountdownShowFullScreenAlert(bool value) { setValue(QStringLiteral("timerCountdownShowFullScreenAlert"), value); }
    bool timerCountdownPlaySound() const { return boolValue(QStringLiteral("timerCountdownPlaySound")); }
    void setTimerCountdownPlaySound(bool value) { setValue(QStringLiteral("timerCountdownPlaySound"), value); }
    bool timerPomoShowNotifications() const { return boolValue(QStringLiteral("timerPomoShowNotifications")); }
    void setTimerPomoShowNotifications(bool value) { setValue(QStringLiteral("timerPomoShowNotifications"), value); }
    bool timerPomoShowFullScreenAlert() const { return boolValue(QStringLiteral("timerPomoShowFullScreenAlert")); }
    void setTimerPomoShowFullScreenAlert(bool value) { setValue(QStringLiteral("timerPomoShowFullScreenAlert"), value); }
    bool timerPomoPlaySound() const { return boolValue(QStringLiteral("timerPomoPlaySound")); }
    void setTimerPomoPlaySound(bool value) { setValue(QStringLiteral("timerPomoPlaySound"), value); }
    double timerSoundVolume() const { return doubleValue(QStringLiteral("timerSoundVolume")); }
    void setTimerSoundVolume(double value) { setValue(QStringLiteral("timerSoundVolume"), value); }
};

} // namespace scrivlet
