#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>
#include <QVariantMap>

#include <functional>
#include <memory>

class QProcess;

namespace scrivlet {

class CoreDataManager;
class VirtualDisplay;

namespace testing {

// The real `scrivlet` on a display of its own, driven the way a person drives it: real
// key presses and clicks through the X server (xdotool), and a look into the notes
// folder once it has quit. Each instance has its own Xvfb, its own notes folder and
// its own settings; everything it started is stopped when it goes, also when a test
// fails half-way.
//
// Typical use:
//     AppUnderX app;
//     app.setSetting("showOnboarding", false);
//     ASSERT_TRUE(app.start()) << app.lastError();
//     app.type("hello");
//     app.key("ctrl+n");
//     ASSERT_TRUE(app.quit());
//     app.withStore([](CoreDataManager &store) { ... });
class AppUnderX {
public:
    // The app binary; tests pass the path CMake gives them.
    explicit AppUnderX(QString appPath);
    ~AppUnderX();
    AppUnderX(const AppUnderX &) = delete;
    AppUnderX &operator=(const AppUnderX &) = delete;

    // The notes folder, fresh for each instance. Settings and store live in it.
    QString dataDir() const { return m_dataDir.path(); }
    // Written to the folder's settings before the app starts (the app reads them
    // at start). Currency updates are always off: tests make no network calls.
    void setSetting(const QString &key, const QVariant &value);
    // More arguments for the app's command line, before `start`.
    void setArguments(const QStringList &arguments) { m_arguments = arguments; }

    // Starts Xvfb (first time only) and the app, and waits until its window is
    // visible and holds the keyboard focus. False with `lastError()` on any failure.
    bool start(int timeoutMs = 20000);
    // SIGTERM, as at the end of a session: the app saves and quits. False if it had
    // to be killed or ended with an error.
    bool quit(int timeoutMs = 15000);
    bool isRunning() const;
    QString lastError() const { return m_error; }
    // Everything the app printed so far, standard error and output together.
    QByteArray output();

    // The X display the app runs on, e.g. ":7".
    QString display() const { return m_display; }
    // The X id of the main window (decimal, as xdotool prints it).
    QString windowId() const { return m_windowId; }

    // Key presses through the X server, in xdotool's names ("ctrl+n", "alt+Left",
    // "ctrl+shift+BackSpace", "Return"). Waits a little after, so the app has handled them.
    bool key(const QString &keys);
    // Types text character by character; "\n" presses Return.
    bool type(const QString &text);
    // A left click at a point inside the main window.
    bool click(int x, int y);
    // Gives the keyboard focus back to the main window.
    bool focusMainWindow();
    // The id of a visible window whose title matches the regular expression, waiting up
    // to `timeoutMs`; empty when none showed.
    QString waitForWindow(const QString &titlePattern, int timeoutMs = 10000);
    // Gives the keyboard focus to the window with that id.
    bool focusWindow(const QString &windowId);
    // Whether a window is mapped (visible) right now.
    bool isWindowVisible(const QString &windowId);
    // An X property of a window as xprop prints it ("_NET_WM_STATE(ATOM) = ...").
    QString windowProperty(const QString &windowId, const QString &property);
    // Saves a screenshot of the whole display as PNG.
    bool screenshot(const QString &pngPath);

    // Polls `condition` (processing nothing else) until it holds or `timeoutMs` passes.
    static bool waitUntil(const std::function<bool()> &condition, int timeoutMs = 10000, int stepMs = 50);

    // A setting as the app left it in its folder (read fresh from the file).
    QVariant setting(const QString &key) const;
    // Opens the folder's store, as the app does, and hands it to `body`. Meant for
    // after `quit`; while the app runs it sees what the app has committed.
    bool withStore(const std::function<void(CoreDataManager &store)> &body);

private:
    bool startDisplay();
    bool xdotool(const QStringList &arguments, QByteArray *out = nullptr, int timeoutMs = 10000);
    void writeSettings();
    void stopApp();
    void stopDisplay();
    bool fail(const QString &message);

    QString m_appPath;
    QTemporaryDir m_dataDir;
    QVariantMap m_settings;
    QStringList m_arguments;
    std::unique_ptr<VirtualDisplay> m_xvfb;
    std::unique_ptr<QProcess> m_app;
    QString m_display;
    QString m_windowId;
    QString m_error;
    QByteArray m_output;
};

} // namespace testing
} // namespace scrivlet
