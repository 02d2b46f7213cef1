#include "platform/ManualClock.h"


namespace scrivlet {

ManualClock::ManualClock(QDateTime start) : m_now(std::move(start)) {}

Clock::TimerId ManualClock::schedule(std::chrono::milliseconds delay, std::function<void()> work)
{
    const TimerId id = m_nextId++;
    m_pending.emplace(id, Pending{m_now.addMSecs(delay.count()), id, std::move(work)});
    return id;
}

void ManualClock::cancel(TimerId id)
{
    m_pending.erase(id);
}

void ManualClock::advance(std::chrono::milliseconds by)
{
    const QDateTime target = m_now.addMSecs(by.count());
    for (;;) {
        // The earliest due timer first; among equals, the one scheduled first.
        auto next = m_pending.end();
        for (auto it = m_pending.begin(); it != m_pending.end(); ++it) {
            if (it->second.due <= target && (next == m_pending.end() || it->second.due < next->second.due))
                next = it;
        }
        if (next == m_pending.end())
            break;
        Pending due = std::move(next->second);
        m_pending.erase(next);
        m_now = due.due;
        due.work();
    }
    m_now = target;
}

} // namespace scrivlet
