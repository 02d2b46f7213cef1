#pragma once

#include "platform/WindowPresenter.h"

#include <QStringList>

#include <functional>

namespace scrivlet {

// A window that exists only as state, for tests and headless runs: each call is
// written down, in order, as a word ("create", "show", "orderOut hideApp", "center",
// "saveFrame", "pin", "unpin", "destroy"). Calls on a window that doesn't exist change
// nothing and are not written down; the pin is the app's state and is always kept.
class RecordingWindowPresenter final : public WindowPresenter {
public:
    using Journal = std::function<void(const QString &event)>;

    // Events also go to `journal`, so a test can interleave them with its own.
    explicit RecordingWindowPresenter(Journal journal = {}) : m_journal(std::move(journal)) {}

    void createMainWindow() override;
    void destroyMainWindow() override;
    bool hasMainWindow() const override { return m_exists; }
    bool isMainWindowVisible() const override { return m_exists && m_visible; }
    void showMainWindow() override;
    void orderOutMainWindow(bool hideApp) override;
    void centerMainWindow() override;
    void saveMainWindowFrame() override;
    bool isPinned() const override { return m_pinned; }
    void setPinned(bool pinned) override;

    const QStringList &events() const { return m_events; }
    bool isAppHidden() const { return m_appHidden; }
    void clearEvents() { m_events.clear(); }

private:
    void record(const QString &event);

    Journal m_journal;
    QStringList m_events;
    bool m_exists = false;
    bool m_visible = false;
    bool m_appHidden = false;
    bool m_pinned = false;
};

} // namespace scrivlet
