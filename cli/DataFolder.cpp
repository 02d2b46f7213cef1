#include "DataFolder.h"

#include "notes/CoreDataStack.h"
#include "shell/lifecycle/AppLifecycle.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>

namespace scrivlet::cli {

namespace {
// How long a run waits for an app that is just quitting to let go of the folder.
constexpr int kLockWaitMs = 3000;
} // namespace

Result<std::unique_ptr<DataFolder>, QString> DataFolder::open(const QString &path)
{
    using Opened = Result<std::unique_ptr<DataFolder>, QString>;
    const QFileInfo info(path);
    if (info.exists() && !info.isDir())
        return Opened::failure(QStringLiteral("the data folder \"%1\" is a file, not a folder").arg(path));
    if (!QDir().mkpath(path))
        return Opened::failure(QStringLiteral("cannot create the data folder \"%1\"").arg(path));

    // The app keeps its notes in memory and writes them back: a run beside it would have
    // its changes overwritten, or overwrite the app's. A lock left by a process that is
    // gone is taken over.
    auto lock = std::make_unique<QLockFile>(CoreDataStack::folderLockPath(path));
    lock->setStaleLockTime(0);
    if (!lock->tryLock(kLockWaitMs)) {
        if (lock->error() == QLockFile::LockFailedError)
            return Opened::failure(
                QStringLiteral("Scrivlet is running on \"%1\"; quit it first, so that the two don't write the "
                               "same notes")
                    .arg(path));
        return Opened::failure(QStringLiteral("cannot lock the data folder \"%1\"").arg(path));
    }

    auto stack = CoreDataStack::open(path);
    if (!stack)
        return Opened::failure(
            QStringLiteral("cannot open the notes in \"%1\": %2").arg(path, stack.error().message));
    return std::unique_ptr<DataFolder>(new DataFolder(path, std::move(lock), std::move(stack).value()));
}

DataFolder::DataFolder(QString path, std::unique_ptr<QLockFile> lock, std::unique_ptr<CoreDataStack> stack)
    : m_path(std::move(path)), m_lock(std::move(lock)), m_settings(CoreDataStack::folderSettingsPath(m_path)),
      m_stack(std::move(stack))
{
    m_lifecycle = std::make_unique<AppLifecycle>(*m_stack, m_settings, m_bus, m_clock, m_alerts, nullptr);
}

DataFolder::~DataFolder() = default;

void DataFolder::start()
{
    m_lifecycle->start();
}

void DataFolder::quit()
{
    m_lifecycle->quit();
    m_settings.sync();
}

CoreDataManager &DataFolder::store()
{
    return m_lifecycle->store();
}

CoreDataNotesManager &DataFolder::notes()
{
    return m_lifecycle->notesManager();
}

NoteCommands &DataFolder::commands()
{
    return m_lifecycle->noteCommands();
}

} // namespace scrivlet::cli
