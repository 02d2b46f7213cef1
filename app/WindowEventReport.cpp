#include "WindowEventReport.h"

#include <QEvent>
#include <QWidget>

#include <cstdio>
#include <ctime>

namespace scrivlet {

WindowEventReport::WindowEventReport(WindowSource window, QObject *parent)
    : QObject(parent), m_window(std::move(window))
{
}

double WindowEventReport::monotonicMs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) * 1000.0 + double(now.tv_nsec) / 1.0e6;
}

void WindowEventReport::reportHotKeyPressed()
{
    std::printf("hotkey-pressed %.3f\n", monotonicMs());
    std::fflush(stdout);
}

bool WindowEventReport::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::Paint && type != QEvent::Hide)
        return false;
    QWidget *window = m_window ? m_window() : nullptr;
    auto *widget = qobject_cast<QWidget *>(watched);
    if (!window || !widget || widget->window() != window)
        return false;
    if (type == QEvent::Hide) {
        if (widget == window && !m_hidden) {
            m_hidden = true;
            std::printf("window-hidden %.3f\n", monotonicMs());
            std::fflush(stdout);
        }
        return false;
    }
    if (!m_painted || m_hidden) {
        std::printf("%s %.3f\n", m_painted ? "window-shown" : "first-paint", monotonicMs());
        std::fflush(stdout);
        m_painted = true;
        m_hidden = false;
    }
    return false;
}

} // namespace scrivlet
