#include "shell/tutorial/AppReset.h"

#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "notes/Database.h"
#include "notes/LegacyImporter.h"
#include "notes/Transaction.h"
#include "platform/SettingsStore.h"
#include "shell/tutorial/ShellLogging.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace scrivlet {

namespace {

void wipeSettings(SettingsStore &settings)
{
    settings.clear();
    settings.sync();
}

// Empties the store in one transaction. Every child row goes with its note, and the
// search index with its triggers. The file is then rewritten, so that no text of the
// old notes lingers in its free pages or its log.
std::optional<QString> emptyStore(CoreDataStack &stack, CoreDataManager &store)
{
    // Writes still pending belong to the transaction the deletion needs.
    if (!store.save())
        return QStringLiteral("the notes could not be removed: pending changes could not be saved");
    Database &db = stack.database();
    Transaction transaction(db);
    if (!transaction.isActive())
        return QStringLiteral("the notes could not be removed: %1").arg(transaction.lastError());
    if (!db.exec(QStringLiteral("DELETE FROM notes")))
        return QStringLiteral("the notes could not be removed: %1").arg(db.lastError());
    if (!transaction.commit())
        return QStringLiteral("the notes could not be removed: %1").arg(transaction.lastError());
    if (!db.exec(QStringLiteral("VACUUM")) || !db.exec(QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)")))
        qCWarning(lcShell).noquote() << "The emptied store was not compacted:" << db.lastError();
    return std::nullopt;
}

} // namespace

void AppReset::resetPreferences(SettingsStore &settings)
{
    wipeSettings(settings);
    qCInfo(lcShell) << "Preferences reset";
}

AppReset::Outcome AppReset::resetToFactorySettings(SettingsStore &settings, CoreDataStack &stack,
                                                   CoreDataManager &store)
{
    wipeSettings(settings);

    const QString folder = QFileInfo(stack.filePath()).absolutePath();
    Outcome outcome = removeFiles(legacyDatabaseFiles(folder));
    if (const auto failure = emptyStore(stack, store))
        outcome.failures.append(*failure);

    if (outcome.ok())
        qCInfo(lcShell) << "App reset to factory settings";
    else
        qCWarning(lcShell).noquote() << "Factory reset incomplete:" << outcome.failures.join(QStringLiteral("; "));
    return outcome;
}

QStringList AppReset::legacyDatabaseFiles(const QString &folder)
{
    const QDir dir(folder);
    QStringList paths;
    const QString legacy = dir.filePath(QString::fromLatin1(LegacyImporter::kLegacyFileName));
    if (QFileInfo::exists(legacy))
        paths.append(legacy);
    const QFileInfoList backups =
        dir.entryInfoList({QStringLiteral("notes_backup_*.sqlite3")}, QDir::Files | QDir::Hidden, QDir::Name);
    for (const QFileInfo &backup : backups)
        paths.append(backup.absoluteFilePath());
    return paths;
}

QStringList AppReset::storeFiles(const QString &folder)
{
    const QString store = CoreDataStack::storePath(folder);
    QStringList paths;
    for (const QString &path : {store, QString(store + u"-wal"), QString(store + u"-shm")}) {
        if (QFileInfo::exists(path))
            paths.append(path);
    }
    return paths;
}

AppReset::Outcome AppReset::removeFiles(const QStringList &paths)
{
    Outcome outcome;
    for (const QString &path : paths) {
        QFile file(path);
        if (file.remove() || !file.exists())
            outcome.removedFiles.append(path);
        else
            outcome.failures.append(QStringLiteral("\"%1\" could not be deleted: %2").arg(path, file.errorString()));
    }
    return outcome;
}

} // namespace scrivlet
