#pragma once

#include <QString>
#include <QStringList>

namespace scrivlet {

class SettingsStore;

// Switches that put the app back into a first state as it starts, for trying the first
// launch again. All are off unless the program is told otherwise. They are applied
// once, before the store opens, and each one used is switched off again, so a second
// pass in the same run changes nothing.
//
// Keychain items are left alone: the switches that name the keychain reset the rest
// of what they name.
class ResettingConfigs final {
public:
    // Settings, database files; ends the pass.
    bool resetToCleanInstall = false;
    // Settings and database files, keeping the keychain; ends the pass.
    bool resetToCleanInstallKeepKeychain = false;
    // Settings only.
    bool resetAppStorage = false;
    bool resetKeychain = false;
    // Nothing of its own: it is cleared.
    bool resetCurrencyRatesOnly = false;

    // The switch by its name ("resetAppStorage"...); false for an unknown name.
    bool set(const QString &name);
    static QStringList switchNames();
    bool isAnySet() const;

    // Applies the switches in order to the settings and to the store's folder, whose
    // store must not be open. Returns what it did, one line for each switch used; a
    // file that could not be deleted is named there.
    QStringList applyAtStart(SettingsStore &settings, const QString &dataDirectory);
};

} // namespace scrivlet
