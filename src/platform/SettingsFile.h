#pragma once

#include "platform/SettingsStore.h"

#include <QString>

#include <memory>

namespace scrivlet {

// The settings file the app keeps its settings in, checked before it is trusted. A file
// that can't be read, or holds something other than settings, would be taken as empty
// and then written over with the defaults, losing what the user had: such a file is
// left exactly as it is, and the app runs on the defaults for this session only.
struct SettingsFile final {
    struct Opened {
        std::unique_ptr<SettingsStore> store;
        // Why the file isn't used, as a person reads it; empty when it is.
        QString problem;
    };

    // A missing file is fine: it is simply new.
    static Opened open(const QString &iniFilePath);
    // Empty when the file can be used; otherwise why not.
    static QString problem(const QString &iniFilePath);
};

} // namespace scrivlet
