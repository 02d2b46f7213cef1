#include "shell/preferences/MigrationRecords.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &MigrationRecords::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("migratedTutorials_2025_11"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("didBootstrap_2025_09_iCloudDefault"), PreferenceType::Bool, QVariant(false)},
    };
    return definitions;
}

} // namespace scrivlet
