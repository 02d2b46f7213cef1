#include "notes/BackupManager.h"

#include "notes/AutoBackupIntervalOption.h"
#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "notes/NotesLogging.h"
#include "platform/Clock.h"
#include "shell/preferences/NotesPreferences.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <vector>

namespace scrivlet {

namespace {

// SQLite keeps these beside the store; a backup keeps them beside its ".sqlite" file
// under the same pattern, so renaming restores them.
constexpr std::array kCompanionSuffixes = {"-wal", "-shm"};

struct Backup {
    QString path;
    QDateTime date;
};

QStringList filesOf(const QString &sqlitePath)
{
    QStringList files{sqlitePath};
    for (const char *suffix : kCompanionSuffixes)
        files.append(sqlitePath + QLatin1String(suffix));
    return files;
}

std::optional<std::vector<Backup>> listBackups(const QString &folder)
{
    const QFileInfo info(folder);
    if (!info.isDir() || !info.isReadable())
        return std::nullopt;
    std::vector<Backup> backups;
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QString &name : names) {
        if (!name.contains(QLatin1String(BackupManager::kBackupMarker)) ||
            QFileInfo(name).suffix() != QLatin1String("sqlite"))
            continue;
        backups.push_back(Backup{QDir(folder).filePath(name), BackupManager::backupDate(name)});
    }
    return backups;
}

// Removes a backup with its companions; says whether everything went.
bool removeBackup(const QString &sqlitePath)
{
    bool removed = true;
    for (const QString &file : filesOf(sqlitePath)) {
        QFile target(file);
        if (target.exists() && !target.remove()) {
            qCWarning(lcNotes).noquote() << "backup - could not remove old backup" << QDir::toNativeSeparators(file)
                                         << ":" << target.errorString();
            removed = false;
        }
    }
    return removed;
}

} // namespace

BackupManager::BackupManager(CoreDataStack &stack, CoreDataManager &manager, SettingsStore &settings,
                             const Clock &clock)
    : m_stack(stack), m_manager(manager), m_settings(settings), m_clock(clock)
{
}

QDateTime BackupManager::distantPast()
{
    return QDateTime(QDate(1, 1, 1), QTime(0, 0), Qt::UTC);
}

QDateTime BackupManager::backupDate(const QString &fileName)
{
    const QStringList parts = QFileInfo(fileName).completeBaseName().split(QLatin1Char('_'));
    if (parts.size() < 3)
        return distantPast();
    const QString stamp = parts.at(parts.size() - 2) % QLatin1Char('_') % parts.last();
    const QDateTime date = QDateTime::fromString(stamp, QLatin1String(kStampFormat));
    return date.isValid() ? date : distantPast();
}

QStringList BackupManager::backups() const
{
    auto found = listBackups(QFileInfo(m_stack.filePath()).absolutePath());
    if (!found)
        return {};
    std::stable_sort(found->begin(), found->end(), [](const Backup &a, const Backup &b) { return a.date < b.date; });
    QStringList paths;
    for (const Backup &backup : *found)
        paths.append(backup.path);
    return paths;
}

void BackupManager::runPeriodicBackup()
{
    run(Trigger::periodic);
}

Result<QString, QString> BackupManager::backupNow()
{
    return run(Trigger::onRequest);
}

Result<QString, QString> BackupManager::run(Trigger trigger)
{
    using RunResult = Result<QString, QString>;
    const auto fail = [](const QString &reason) {
        qCWarning(lcNotes).noquote() << "backup -" << reason;
        return RunResult::failure(reason);
    };

    const QString storePath = m_stack.filePath();
    const QFileInfo store(storePath);
    if (!store.exists())
        return fail(QStringLiteral("There is no store to back up at ") % QDir::toNativeSeparators(storePath));
    const QString folder = store.absolutePath();

    const NotesPreferences preferences(m_settings);
    const auto interval =
        AutoBackupInterval::seconds(AutoBackupInterval::fromRawValue(preferences.autoBackupInterval()));
    if (trigger == Trigger::periodic && !interval) {
        qCDebug(lcNotes) << "backup - backups are off";
        return RunResult::failure(QStringLiteral("Backups are off"));
    }

    auto backups = listBackups(folder);
    if (!backups)
        return fail(QStringLiteral("Can't list the backups in ") % QDir::toNativeSeparators(folder));

    const QDateTime now = m_clock.now();
    if (trigger == Trigger::periodic && !backups->empty()) {
        const auto newest = std::max_element(backups->begin(), backups->end(),
                                             [](const Backup &a, const Backup &b) { return a.date < b.date; });
        const qint64 age = newest->date.secsTo(now);
        // A backup dated ahead of the clock (the clock was set back) doesn't hold up
        // new ones: otherwise there would be none until the clock caught up.
        if (age >= 0 && age < *interval) {
            qCDebug(lcNotes) << "backup - the newest backup is" << age << "s old; next one after" << *interval << "s";
            return RunResult::failure(QStringLiteral("The newest backup is still recent"));
        }
    }

    std::stable_sort(backups->begin(), backups->end(),
                     [](const Backup &a, const Backup &b) { return a.date < b.date; });
    // The new backup takes the place of the oldest ones.
    const std::size_t quantity = std::size_t(std::max(1, preferences.autoBackupQuantity()));
    auto oldest = backups->begin();
    while (std::size_t(backups->end() - oldest) >= quantity) {
        removeBackup(oldest->path);
        ++oldest;
    }

    // The files are copied as they lie on disk, so what the user has written must be
    // in them first.
    if (!m_manager.save())
        qCWarning(lcNotes) << "backup - could not save the store before the backup; copying what is saved";

    const QString stem = store.completeBaseName() % QLatin1String(kBackupMarker) %
                         now.toLocalTime().toString(QLatin1String(kStampFormat));
    const QString target = QDir(folder).filePath(stem % QStringLiteral(".sqlite"));

    // Each file is copied under a provisional name and renamed when all are there, the
    // ".sqlite" file last: a copy cut short never looks like a backup.
    struct Copy {
        QString source;
        QString provisional;
        QString final;
    };
    std::vector<Copy> copies;
    const QStringList sources = filesOf(storePath);
    const QStringList finals = filesOf(target);
    for (qsizetype i = 0; i < sources.size(); ++i) {
        if (i == 0 || QFileInfo::exists(sources.at(i)))
            copies.push_back(Copy{sources.at(i), finals.at(i) % QStringLiteral(".part"), finals.at(i)});
    }
    const auto discard = [&copies] {
        for (const Copy &copy : copies)
            QFile::remove(copy.provisional);
    };
    for (const Copy &copy : copies) {
        QFile::remove(copy.provisional);
        QFile source(copy.source);
        if (!source.copy(copy.provisional)) {
            discard();
            return fail(QStringLiteral("Could not copy ") % QDir::toNativeSeparators(copy.source) %
                        QStringLiteral(" to ") % QDir::toNativeSeparators(copy.final) % QStringLiteral(": ") %
                        source.errorString());
        }
    }
    // A backup already made in this same second is replaced whole.
    for (const QString &file : finals)
        QFile::remove(file);
    for (auto it = copies.rbegin(); it != copies.rend(); ++it) {
        if (!QFile::rename(it->provisional, it->final)) {
            discard();
            removeBackup(target);
            return fail(QStringLiteral("Could not finish the backup ") % QDir::toNativeSeparators(target));
        }
    }
    qCInfo(lcNotes).noquote() << "backup - saved" << QDir::toNativeSeparators(target);
    return RunResult(target);
}

} // namespace scrivlet
