#include "DataFolder.h"

#include "notes/CoreDataStack.h"
#include "shell/lifecycle/AppLifecycle.h"

#include <QDir>
#include <QFileInfo>

namespace scrivlet::cli {

Result<std::unique_ptr<DataFolder>, QString> DataFolder::open(const QString &path)
{
    using Opened = Result<std::unique_ptr<DataFolder>, QString>;
    const QFileInfo info(path);
    if (info.exists() && !info.isDir())
        return Opened::failure(QStringLiteral("the data folder \"%1\" is a file, not a folder").arg(path));
    if (!QDir().mkpath(path))
        return Opened::failure(QStringLiteral("cannot create the data folder \"%1\"").arg(path));

    auto stack = CoreDataStack::open(path);
    if (!stack)
        return Opened::failure(
            QStringLiteral("cannot open the notes in \"%1\": %2").arg(path, stack.error().message));
    return std::unique_ptr<DataFolder>(new DataFolder(path, std::move(stack).value()));
}

DataFolder::DataFolder(QString path, std::unique_ptr<CoreDataStack> stack)
    : m_path(std::move(path)), m_settings(CoreDataStack::folderSettingsPath(m_path)),
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
