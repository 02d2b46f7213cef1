#pragma once

#include "notes/LegacyImportResult.h"

#include <QString>
#include <QtGlobal>

namespace scrivlet {

class Clock;
class CoreDataManager;
class CoreDataStack;
class SettingsStore;

// Brings notes from the app's earlier SQLite database ("notes.sqlite3" in the data
// folder) into the store. Legacy notes keep their ids, so importing the same file
// again adds nothing, and they are placed into the existing stack by date.
//
// Used on the main thread only, like the store.
class LegacyImporter {
    Q_DISABLE_COPY_MOVE(LegacyImporter)

public:
    static constexpr const char *kLegacyFileName = "notes.sqlite3";
    static constexpr const char *kMigratedKey = "migratedFromLegacySQLite_v1";

    LegacyImporter(CoreDataStack &stack, CoreDataManager &manager, SettingsStore &settings, const Clock &clock);

    // The one-time step at start: an upgrade from the legacy database is imported and
    // starts with sync off; a new install starts with sync on. Runs once per settings.
    void bootstrapIfNeeded();

    // The automatic import, once: skipped when done before or when there is no legacy
    // file; the legacy file is copied aside first.
    void migrateLegacyIfNeeded();

    // The button "Import Legacy Notes": imports "notes.sqlite3" whether or not it was
    // imported before.
    LegacyImportResult importLegacyNow();

    // Imports a chosen legacy database or one of its backups.
    LegacyImportResult importFromFile(const QString &path);

    QString legacyDatabasePath() const;
    // Whether the legacy database or one of its backups lies in the data folder.
    bool legacyDataPresent() const;

private:
    LegacyImportResult importDatabase(const QString &path);
    int reindexImportedNotes();

    CoreDataStack &m_stack;
    CoreDataManager &m_manager;
    SettingsStore &m_settings;
    const Clock &m_clock;
};

} // namespace scrivlet
