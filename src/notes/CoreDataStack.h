#pragma once

#include "notes/Database.h"
#include "notes/StoreError.h"
#include "platform/Result.h"

#include <QString>

#include <memory>

namespace scrivlet {

// The open store file and its schema. The app opens it once at start, before the
// stack is loaded, and passes it to `CoreDataManager`; a failure stops the app with
// `failFatally`, because there is no repair path and no fallback to memory.
class CoreDataStack {
public:
    static constexpr const char *kStoreFileName = "cd-v1-notes.sqlite";
    // The version the schema steps lead to; kept in the file's user_version.
    static int currentSchemaVersion();

    // The app's data directory for the store (its application-support folder).
    static QString defaultDataDirectory();
    static QString storePath(const QString &dataDirectory);
    // The settings of a data folder chosen on the command line (the app's `--data-dir`
    // and the command line's verbs), kept beside its store so that trying another
    // folder never reads or changes the user's own settings.
    static QString folderSettingsPath(const QString &dataDirectory);
    // The lock file that whoever has the folder's store open holds: the app for as long
    // as it runs, a command-line verb for its run. No two of them write the same notes.
    static QString folderLockPath(const QString &dataDirectory);

    // Creates `dataDirectory` if needed (a failure there is only logged), then opens
    // the store file in it. A file that can't be read as a store is never changed.
    static Result<std::unique_ptr<CoreDataStack>, StoreError> open(const QString &dataDirectory);

    // Stops the app with "Core Data store failed: " and the error text.
    [[noreturn]] static void failFatally(const StoreError &error);

    ~CoreDataStack() = default;
    CoreDataStack(const CoreDataStack &) = delete;
    CoreDataStack &operator=(const CoreDataStack &) = delete;

    Database &database() { return m_db; }
    const QString &filePath() const { return m_filePath; }

private:
    explicit CoreDataStack(QString filePath) : m_filePath(std::move(filePath)) {}

    Database m_db;
    QString m_filePath;
};

} // namespace scrivlet
