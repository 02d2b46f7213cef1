#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class TutorialPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit TutorialPreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    bool showFirstTimeSettings() const { return boolValue(QStringLiteral("showFirstTimeSettings")); }
    void setShowFirstTimeSettings(bool value) { setValue(QStringLiteral("showFirstTimeSettings"), value); }
    bool showOnboarding() const { return boolValue(QStringLiteral("showOnboarding")); }
    void setShowOnboarding(bool value) { setValue(QStringLiteral("showOnboarding"), value); }
    bool suppressDeleteWarning() const { return boolValue(QStringLiteral("suppressDeleteWarning")); }
    void setSuppressDeleteWarning(bool value) { setValue(QStringLiteral("suppressDeleteWarning"), value); }
};

} // namespace scrivlet
