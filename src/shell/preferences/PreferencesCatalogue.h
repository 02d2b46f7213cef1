#pragma once

#include "shell/preferences/PreferenceDefinition.h"

#include <vector>

namespace scrivlet {

class SettingsStore;

// Every key of every `...Preferences` class, for code that handles keys by name:
// the command line's `--set`, settings export, and the tests of the catalogue.
class PreferencesCatalogue {
public:
    struct Group {
        QString name;
        const std::vector<PreferenceDefinition> *definitions;
    };

    static const std::vector<Group> &groups();
    static const PreferenceDefinition *find(const QString &key);

    enum class SetError { UnknownKey, WrongType };
    // Parses `text` as the value of `key` and stores it. On failure nothing is stored.
    static std::optional<SetError> setFromText(SettingsStore &store, const QString &key, const QString &text);
};

} // namespace scrivlet
