#include "shell/preferences/MigrationRecords.h"

namespace scrivlet {

const std::vector<PreferenceSpec> &MigrationRecords::table()
{
    static const std::vector<PreferenceSpec> specs = {
        {QStringLiteral("migratedTutorials_2025_11"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("didBootstrap_2025_09_iCloudDefault"), PreferenceType::Bool, QVariant(false)},
    };
    return specs;
}

} // namespace scrivlet
