#pragma once

#include <QString>

namespace scrivlet {

// Why the store couldn't be opened. `message` is the text the fatal stop shows.
struct StoreError {
    enum class Kind {
        cannotOpen,      // the file can't be opened or created where it should be
        notADatabase,    // a file is there, but it isn't a store SQLite can read
        newerSchema,     // written by a newer version of the app
        configureFailed, // the journal mode or foreign keys couldn't be set
        migrationFailed, // a schema step failed; the file is left as it was
    };

    Kind kind;
    QString message;
};

} // namespace scrivlet
