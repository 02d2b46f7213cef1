#pragma once

#include <QString>

namespace scrivlet {

// What an import from a legacy database did, with the sentence the user is shown.
struct LegacyImportResult {
    bool ok = false;
    int imported = 0; // notes added to the store
    int skipped = 0;  // notes whose id was already in the store
    QString message;
};

} // namespace scrivlet
