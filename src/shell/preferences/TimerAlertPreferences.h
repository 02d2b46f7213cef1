#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class TimerAlertPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit TimerAlertPreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    int noPeekStreak() const { return intValue(QStringLiteral("noPeekStreak")); }
    void setNoPeekStreak(int value) { setValue(QStringLiteral("noPeekStreak"), value); }
    int noPeekStreakMax() const { return intValue(QStringLiteral("noPeekStreakMax")); }
    void setNoPeekStreakMax(int value) { setValue(QStringLiteral("noPeekStreakMax"), value); }
};

} // namespace scrivlet
