#pragma once

#include <QObject>

#include <functional>

class QWidget;

namespace scrivlet {

// For the start-up and hot key benchmarks: prints "first-paint <ms>" when the main
// window paints for the first time, "window-hidden <ms>" when it goes off the screen,
// "hotkey-pressed <ms>" when the global hot key reaches the app, and "window-shown
// <ms>" when the window paints again after being hidden. The times are the system's
// monotonic clock in milliseconds, the clock the benchmark reads before it starts the
// process.
class WindowEventReport final : public QObject {
public:
    using WindowSource = std::function<QWidget *()>;

    explicit WindowEventReport(WindowSource window, QObject *parent = nullptr);

    // Milliseconds of the monotonic clock, as both sides of a measurement read it.
    static double monotonicMs();

    static void reportHotKeyPressed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    WindowSource m_window;
    bool m_painted = false;
    bool m_hidden = false;
};

} // namespace scrivlet
