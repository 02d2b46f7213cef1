#pragma once

#include <QDeadlineTimer>
#include <QLockFile>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>

class QLocalServer;

namespace scrivlet {

// One Scrivlet per notes folder. The first to start holds a lock file in the folder for
// as long as its store is open, and listens for later starts; a later start for the
// same folder asks it to show its window and goes away without touching the store.
// A start that finds the folder locked by an instance that is quitting waits for the
// lock, and one that finds the lock of a crashed instance takes it over.
class SingleInstance {
    Q_DISABLE_COPY_MOVE(SingleInstance)

public:
    enum class Claim {
        Primary,       // this process owns the folder now
        ShownRunning,  // the instance already running shows its window; exit quietly
        Busy,          // another instance holds the folder and didn't answer in time
    };

    explicit SingleInstance(const QString &dataDirectory);
    ~SingleInstance();

    // `wait` bounds how long a start waits for an instance that is quitting.
    Claim claim(std::chrono::milliseconds wait = std::chrono::seconds(5));

    // What the owner does when a later start asks for the window.
    void setShowHandler(std::function<void()> handler) { m_show = std::move(handler); }
    // At quit: later starts no longer reach this instance and wait for the lock instead.
    void stopListening();

    // The local socket that the owner of `dataDirectory` listens on: one per user and
    // folder, so different folders run side by side.
    static QString serverName(const QString &dataDirectory);
    static QString lockFilePath(const QString &dataDirectory);

private:
    bool askRunningToShow(const QDeadlineTimer &claimDeadline);
    void listen();

    QString m_directory;
    QLockFile m_lock;
    std::unique_ptr<QLocalServer> m_server;
    std::function<void()> m_show;
};

} // namespace scrivlet
