#pragma once

#include "platform/Result.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace scrivlet {

class Clock;
class CoreDataManager;
class CoreDataStack;
class SettingsStore;

// The rolling set of file copies of the store, taken beside it when the app loses
// focus and at quit. A backup is "<store stem>_cdbackup_<local time>.sqlite" plus the
// "-wal" and "-shm" companions, so restoring one is renaming its files over the store.
//
// Used on the main thread only, like the store.
class BackupManager {
    Q_DISABLE_COPY_MOVE(BackupManager)

public:
    static constexpr const char *kBackupMarker = "_cdbackup_";
    static constexpr const char *kStampFormat = "yyyy-MM-dd_HH-mm-ss";

    BackupManager(CoreDataStack &stack, CoreDataManager &manager, SettingsStore &settings, const Clock &clock);

    // At resign and quit: a new backup unless the newest is younger than
    // `autoBackupInterval` or the interval is "Never", keeping at most
    // `autoBackupQuantity`. Never reports to the user: every failure is logged.
    void runPeriodicBackup();

    // A backup on request, whatever the interval: the same rotation and copy. Gives
    // the path of the new ".sqlite" file, or a message saying why there is none.
    Result<QString, QString> backupNow();

    // The time in a backup's file name (a name or a path), read as local time; the
    // distant past when the name holds none.
    static QDateTime backupDate(const QString &fileName);
    static QDateTime distantPast();

    // Paths of the backups beside the store, oldest first.
    QStringList backups() const;

private:
    enum class Trigger { periodic, onRequest };
    Result<QString, QString> run(Trigger trigger);

    CoreDataStack &m_stack;
    CoreDataManager &m_manager;
    SettingsStore &m_settings;
    const Clock &m_clock;
};

} // namespace scrivlet
