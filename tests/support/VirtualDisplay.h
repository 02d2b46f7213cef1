#pragma once

#include <QProcess>
#include <QString>

namespace scrivlet {

// An Xvfb server of its own for a test or a benchmark, on whatever display number is
// free, so that runs side by side (ctest -j, a developer's own Xvfb) never meet.
class VirtualDisplay {
public:
    VirtualDisplay() = default;
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay &) = delete;
    VirtualDisplay &operator=(const VirtualDisplay &) = delete;

    // Starts the server with one screen of the given size ("1280x900x24"); false with
    // `errorString()` set when there is no Xvfb or it gives no display.
    bool start(const QString &screen);
    void stop();
    bool running() const { return m_server.state() == QProcess::Running; }

    // ":N", for DISPLAY.
    QString display() const { return m_display; }
    QString errorString() const { return m_error; }

private:
    QProcess m_server;
    QString m_display;
    QString m_error;
};

} // namespace scrivlet
