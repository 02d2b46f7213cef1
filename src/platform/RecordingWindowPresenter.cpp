#include "platform/RecordingWindowPresenter.h"

namespace scrivlet {

void RecordingWindowPresenter::record(const QString &event)
{
    m_events.append(event);
    if (m_journal)
        m_journal(event);
}

void RecordingWindowPresenter::createMainWindow()
{
    if (m_exists)
        return;
    m_exists = true;
    // A new window is made but not yet on screen, like a real one.
    m_visible = false;
    record(QStringLiteral("create"));
}

void RecordingWindowPresenter::destroyMainWindow()
{
    if (!m_exists)
        return;
    m_exists = false;
    m_visible = false;
    record(QStringLiteral("destroy"));
}

void RecordingWindowPresenter::showMainWindow()
{
    if (!m_exists)
        return;
    m_visible = true;
    m_appHidden = false;
    record(QStringLiteral("show"));
}

void RecordingWindowPresenter::orderOutMainWindow(bool hideApp)
{
    if (!m_exists)
        return;
    m_visible = false;
    m_appHidden = m_appHidden || hideApp;
    record(hideApp ? QStringLiteral("orderOut hideApp") : QStringLiteral("orderOut"));
}

void RecordingWindowPresenter::centerMainWindow()
{
    if (m_exists)
        record(QStringLiteral("center"));
}

void RecordingWindowPresenter::saveMainWindowFrame()
{
    if (m_exists)
        record(QStringLiteral("saveFrame"));
}

void RecordingWindowPresenter::setPinned(bool pinned)
{
    // The pin is a state of the app as much as of the window: it holds before the
    // window exists and applies once it does.
    m_pinned = pinned;
    record(pinned ? QStringLiteral("pin") : QStringLiteral("unpin"));
}

} // namespace scrivlet
