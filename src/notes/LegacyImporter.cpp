#include "notes/LegacyImporter.h"

#include "notes/BackupManager.h"
#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "notes/LegacyDatabase.h"
#include "notes/NotesLogging.h"
#include "platform/Clock.h"
#include "platform/SettingsStore.h"
#include "shell/preferences/MigrationRecords.h"
#include "shell/preferences/NotesPreferences.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <vector>

namespace scrivlet {

namespace {

constexpr int kImportBatch = 200;
constexpr qint64 kImportStep = CoreDataManager::kIndexStep;
constexpr qint64 kImportBase = CoreDataManager::kIndexStep;

// A nil date sorts as the distant past.
qint64 sortKey(const std::optional<QDateTime> &date)
{
    return date ? date->toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
}

// Earlier edits first; equal edit times fall back to the creation time.
bool earlier(const CDNote &a, const CDNote &b)
{
    const qint64 left = sortKey(a.lastModified);
    const qint64 right = sortKey(b.lastModified);
    return left < right || (left == right && sortKey(a.created) < sortKey(b.created));
}

QString notesCount(int count)
{
    return count == 1 ? QStringLiteral("1 note") : QStringLiteral("%1 notes").arg(count);
}

// Keeps `isImporting` true for exactly the length of an import.
class ImportingScope {
public:
    explicit ImportingScope(CoreDataManager &manager) : m_manager(manager) { m_manager.setIsImporting(true); }
    ~ImportingScope() { m_manager.setIsImporting(false); }
    ImportingScope(const ImportingScope &) = delete;
    ImportingScope &operator=(const ImportingScope &) = delete;

private:
    CoreDataManager &m_manager;
};

} // namespace

LegacyImporter::LegacyImporter(CoreDataStack &stack, CoreDataManager &manager, SettingsStore &settings,
                               const Clock &clock)
    : m_stack(stack), m_manager(manager), m_settings(settings), m_clock(clock)
{
}

QString LegacyImporter::legacyDatabasePath() const
{
    return QFileInfo(m_stack.filePath()).absoluteDir().filePath(QLatin1String(kLegacyFileName));
}

bool LegacyImporter::legacyDataPresent() const
{
    if (QFileInfo::exists(legacyDatabasePath()))
        return true;
    const QDir folder = QFileInfo(m_stack.filePath()).absoluteDir();
    return !folder.entryList({QStringLiteral("notes_backup_*.sqlite3")}, QDir::Files).isEmpty();
}

void LegacyImporter::bootstrapIfNeeded()
{
    MigrationRecords records(m_settings);
    if (records.didBootstrap_2025_09_iCloudDefault())
        return;
    NotesPreferences preferences(m_settings);
    if (legacyDataPresent()) {
        migrateLegacyIfNeeded();
        // Someone coming from the old database turns sync on by choice.
        preferences.setSyncWithICloud(false);
    } else {
        preferences.setSyncWithICloud(true);
    }
    preferences.setMigratedToCoreData(true);
    records.setDidBootstrap_2025_09_iCloudDefault(true);
    m_settings.sync();
}

void LegacyImporter::migrateLegacyIfNeeded()
{
    if (m_settings.value(QLatin1String(kMigratedKey)).toBool()) {
        qCInfo(lcNotes) << "Migrator - already migrated; skipping";
        return;
    }
    const QString legacy = legacyDatabasePath();
    if (!QFileInfo::exists(legacy)) {
        qCInfo(lcNotes) << "Migrator - no legacy DB found; nothing to do";
        return;
    }

    // The legacy file is kept as it was before the first import, whatever follows.
    const QFileInfo info(legacy);
    const QString copy =
        info.absoluteDir().filePath(info.completeBaseName() % QStringLiteral("_preCoreDataBackup_") %
                                    m_clock.now().toLocalTime().toString(QLatin1String(BackupManager::kStampFormat)) %
                                    QLatin1Char('.') % info.suffix());
    QFile source(legacy);
    if (!source.copy(copy)) {
        qCWarning(lcNotes).noquote() << "Migrator - WARNING: could not backup legacy DB: " << source.errorString();
    } else {
        // What SQLite hasn't yet moved into the file itself lies in its journal.
        for (const char *suffix : {"-wal", "-shm"}) {
            const QString companion = legacy + QLatin1String(suffix);
            if (QFileInfo::exists(companion) && !QFile::copy(companion, copy + QLatin1String(suffix)))
                qCWarning(lcNotes).noquote() << "Migrator - WARNING: could not backup legacy DB: " << companion;
        }
    }

    const LegacyImportResult result = importDatabase(legacy);
    if (!result.ok) {
        qCWarning(lcNotes).noquote() << "Migrator - ERROR opening legacy DB or migrating: " << result.message;
        return;
    }
    qCInfo(lcNotes) << "Migrator - migration complete";
    m_settings.setValue(QLatin1String(kMigratedKey), true);
    m_settings.sync();
}

LegacyImportResult LegacyImporter::importLegacyNow()
{
    const QString legacy = legacyDatabasePath();
    if (!QFileInfo::exists(legacy)) {
        qCInfo(lcNotes) << "Migrator - no legacy DB found";
        return LegacyImportResult{false, 0, 0, QStringLiteral("No legacy database found")};
    }
    const LegacyImportResult result = importDatabase(legacy);
    if (result.ok)
        qCInfo(lcNotes) << "Migrator - imported" << result.imported << "notes, skipped" << result.skipped;
    return result;
}

LegacyImportResult LegacyImporter::importFromFile(const QString &path)
{
    if (!QFileInfo(path).isFile()) {
        const QString message = QStringLiteral("File not found at ") % QDir::toNativeSeparators(path);
        qCWarning(lcNotes).noquote() << "Migrator -" << message;
        return LegacyImportResult{false, 0, 0, message};
    }
    return importDatabase(path);
}

LegacyImportResult LegacyImporter::importDatabase(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    const auto failed = [&](const QString &reason, int imported, int skipped) {
        qCWarning(lcNotes).noquote() << "Migrator - ERROR importing" << QDir::toNativeSeparators(path) << ":" << reason;
        return LegacyImportResult{false, imported, skipped,
                                  QStringLiteral("Could not import ") % name % QStringLiteral(": ") % reason};
    };

    auto opened = LegacyDatabase::open(path);
    if (!opened)
        return failed(opened.error(), 0, 0);
    LegacyDatabase &legacy = *opened.value();

    const ImportingScope importing(m_manager);
    // Whatever the app has pending goes in first, so a failed import can drop its own
    // writes without taking anything else with them.
    if (!m_manager.save())
        return failed(QStringLiteral("the store couldn't save the notes it holds"), 0, 0);

    int walked = 0;
    int imported = 0;
    int skipped = 0;
    int committed = 0;
    QString storeFailure;
    const std::optional<QString> readFailure = legacy.readNotes([&](CDNote &&note) {
        ++walked;
        if (m_manager.containsNote(*note.id)) {
            ++skipped;
        } else {
            // Placed among the existing notes once all are in; until then it keeps
            // the place it had in the old app.
            note.ckChangeTag.reset();
            note.ckSystemFields.reset();
            if (!m_manager.insertImportedNote(note)) {
                storeFailure = QStringLiteral("the store refused note ") % note.id->toString(QUuid::WithoutBraces);
                return false;
            }
            ++imported;
        }
        if (walked % kImportBatch == 0) {
            if (!m_manager.save()) {
                storeFailure = QStringLiteral("the store couldn't save a batch of notes");
                return false;
            }
            committed = imported;
            qCInfo(lcNotes).noquote() << QStringLiteral("Migrator - saved batch (") % QString::number(walked) %
                                             QStringLiteral(" notes)");
        }
        return true;
    });

    if (readFailure || !storeFailure.isEmpty()) {
        m_manager.discardChanges();
        // Batches already saved stay; they are placed now, and a retry skips them.
        if (committed > 0)
            reindexImportedNotes();
        return failed(readFailure ? *readFailure : storeFailure, committed, skipped);
    }

    qCInfo(lcNotes).noquote() << QStringLiteral("Migrator - final save (") % QString::number(walked) %
                                     QStringLiteral(" notes)");
    if (!m_manager.save()) {
        m_manager.discardChanges();
        if (committed > 0)
            reindexImportedNotes();
        return failed(QStringLiteral("the store couldn't save the imported notes"), committed, skipped);
    }
    reindexImportedNotes();
    if (imported > 0)
        m_manager.setIsReloadingFromImport(true);

    QString message;
    if (walked == 0)
        message = name % QStringLiteral(" holds no notes");
    else if (imported == 0)
        message = QStringLiteral("No new notes: all ") % notesCount(skipped) % QStringLiteral(" are already here");
    else if (skipped == 0)
        message = QStringLiteral("Imported ") % notesCount(imported);
    else
        message = QStringLiteral("Imported ") % notesCount(imported) % QStringLiteral(" (") % notesCount(skipped) %
                  QStringLiteral(" already here)");
    return LegacyImportResult{true, imported, skipped, message};
}

int LegacyImporter::reindexImportedNotes()
{
    auto rows = m_manager.fetchStackRows();
    if (!rows) {
        qCWarning(lcNotes) << "Migrator - ERROR fetching notes for reindexing";
        return 0;
    }
    std::vector<CDNote> placed;
    std::vector<CDNote> pending;
    for (CDNote &row : *rows)
        (row.ckChangeTag ? placed : pending).push_back(std::move(row));
    if (pending.empty()) {
        qCInfo(lcNotes) << "Migrator - no pending notes to reindex";
        return 0;
    }
    std::stable_sort(placed.begin(), placed.end(), earlier);
    std::stable_sort(pending.begin(), pending.end(), earlier);

    qint64 highest = 0;
    for (const CDNote &row : placed)
        highest = std::max<qint64>(highest, row.dbIndex);
    qint64 lastAssigned = 0;
    int slotted = 0;
    for (CDNote &row : pending) {
        const auto next = std::lower_bound(placed.begin(), placed.end(), row, earlier);
        const bool hasNext = next != placed.end();
        const bool hasPrev = next != placed.begin();
        qint64 index;
        if (hasPrev && hasNext) {
            const qint64 lower = std::prev(next)->dbIndex;
            const qint64 upper = next->dbIndex;
            if (upper - lower > 1) {
                index = lower + (upper - lower) / 2;
            } else {
                // No room left between the two: the note goes on top rather than
                // sharing a place with a neighbour.
                index = highest + kImportStep;
                qCInfo(lcNotes).noquote() << QStringLiteral("Migrator - tight gap between %1 and %2, appending at %3")
                                                 .arg(lower)
                                                 .arg(upper)
                                                 .arg(index);
            }
        } else if (hasPrev) {
            index = std::prev(next)->dbIndex + kImportStep;
        } else if (hasNext) {
            index = next->dbIndex - kImportStep;
        } else {
            index = std::max(lastAssigned, kImportBase - kImportStep) + kImportStep;
        }
        lastAssigned = index;
        if (m_manager.placeImportedNote(row, index))
            ++slotted;
        row.dbIndex = qint32(index);
        row.ckChangeTag = QStringLiteral("positioned");
        highest = std::max(highest, index);
        placed.insert(std::upper_bound(placed.begin(), placed.end(), row, earlier), std::move(row));
    }
    if (!m_manager.save())
        qCWarning(lcNotes).noquote() << "Migrator - ERROR saving reindexed notes: " << m_stack.database().lastError();
    qCInfo(lcNotes).noquote() << QStringLiteral("Migrator - slotted ") % QString::number(slotted) %
                                     QStringLiteral(" imported notes into existing order");
    return slotted;
}

} // namespace scrivlet
