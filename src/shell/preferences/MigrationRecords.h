#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class MigrationRecords final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit MigrationRecords(SettingsStore &store) : PreferencesGroup(store, table()) {}

    bool migratedTutorials_2025_11() const { return boolValue(QStringLiteral("migratedTutorials_2025_11")); }
    void setMigratedTutorials_2025_11(bool value) { setValue(QStringLiteral("migratedTutorials_2025_11"), value); }
    bool didBootstrap_2025_09_iCloudDefault() const { return boolValue(QStringLiteral("didBootstrap_2025_09_iCloudDefault")); }
    void setDidBootstrap_2025_09_iCloudDefault(bool value) { setValue(QStringLiteral("didBootstrap_2025_09_iCloudDefault"), value); }
};

} // namespace scrivlet
