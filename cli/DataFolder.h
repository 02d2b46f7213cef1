#pragma once

#include "platform/MemoryAlerts.h"
#include "platform/NotificationBus.h"
#include "platform/QSettingsStore.h"
#include "platform/Result.h"
#include "platform/SystemClock.h"

#include <QString>

#include <memory>

class QLockFile;

namespace scrivlet {
class AppLifecycle;
class CoreDataManager;
class CoreDataNotesManager;
class CoreDataStack;
class NoteCommands;
} // namespace scrivlet

namespace scrivlet::cli {

// A folder of notes as the command line opens it: the store file and, beside it, the
// settings of that folder alone ("settings.ini"), so a run never reads or changes the
// user's own. Opening it runs the app's own start-up, and closing it its quit, so the
// notes are in the state the app would leave them in.
//
// Questions the app would ask in an alert are answered by the command: the verb that
// asks for the deletion is the confirmation, queued in `alerts()` by whoever runs it.
class DataFolder final {
    Q_DISABLE_COPY_MOVE(DataFolder)

public:
    // Creates the folder if needed and opens its store. The error is a sentence for
    // the user naming the folder and the reason.
    static Result<std::unique_ptr<DataFolder>, QString> open(const QString &path);
    ~DataFolder();

    // The app's start-up: slots, the tutorial notes of a fresh folder, the stack, and
    // The Void's clearing by the retention setting.
    void start();
    // The app's quit: the open note is saved, a backup is due after the interval, and
    // the settings reach the disk.
    void quit();

    const QString &path() const { return m_path; }
    SettingsStore &settings() { return m_settings; }
    NotificationBus &bus() { return m_bus; }
    MemoryAlerts &alerts() { return m_alerts; }
    Clock &clock() { return m_clock; }
    CoreDataStack &stack() { return *m_stack; }
    CoreDataManager &store();
    CoreDataNotesManager &notes();
    NoteCommands &commands();

private:
    DataFolder(QString path, std::unique_ptr<QLockFile> lock, std::unique_ptr<CoreDataStack> stack);

    QString m_path;
    // Held from before the store opens until after it closes.
    std::unique_ptr<QLockFile> m_lock;
    QSettingsStore m_settings;
    NotificationBus m_bus;
    SystemClock m_clock;
    MemoryAlerts m_alerts;
    std::unique_ptr<CoreDataStack> m_stack;
    std::unique_ptr<AppLifecycle> m_lifecycle;
};

} // namespace scrivlet::cli
