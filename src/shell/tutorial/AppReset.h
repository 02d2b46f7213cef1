#pragma once

#include <QString>
#include <QStringList>

namespace scrivlet {

class CoreDataManager;
class CoreDataStack;
class SettingsStore;

// The two ways back to a first state that the settings offer, after a confirmation
// there; the command line's `reset` verbs call them too.
class AppReset final {
public:
    struct Outcome {
        // Files deleted from the notes folder.
        QStringList removedFiles;
        // One sentence for each part that could not be reset; empty when all went.
        QStringList failures;
        bool ok() const { return failures.isEmpty(); }
    };

    // Every setting back to its default; the notes stay. Logs "Preferences reset".
    static void resetPreferences(SettingsStore &settings);

    // Settings wiped, the legacy database and its backups deleted from the notes folder
    // (the store's folder), and the store emptied, slots and The Void included, so that
    // the next start is a first start, tutorial notes and all. Copies taken by the
    // periodic backup stay. Nothing removed here is sent to sync: the user's other
    // machines keep their notes. Logs "App reset to factory settings".
    //
    // The stack and window over `store` still hold the old notes: the app ends its run
    // after this, and the next start begins afresh.
    static Outcome resetToFactorySettings(SettingsStore &settings, CoreDataStack &stack, CoreDataManager &store);

    // The legacy database "notes.sqlite3" and its backups "notes_backup_*.sqlite3" in
    // `folder`, as paths.
    static QStringList legacyDatabaseFiles(const QString &folder);
    // The store file of `folder` with its "-wal" and "-shm" companions, where present.
    static QStringList storeFiles(const QString &folder);
    // Deletes each file; a file already gone counts as deleted.
    static Outcome removeFiles(const QStringList &paths);
};

} // namespace scrivlet
