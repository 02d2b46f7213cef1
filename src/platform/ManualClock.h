#pragma once

#include "platform/Clock.h"

#include <map>

namespace scrivlet {

// A clock that moves only when told to: tests and benchmarks run debounces and
// timers to the millisecond without waiting.
class ManualClock final : public Clock {
public:
    explicit ManualClock(QDateTime start = QDateTime(QDate(2026, 1, 1), QTime(9, 0), Qt::UTC));

    QDateTime now() const override { return m_now; }
    TimerId schedule(std::chrono::milliseconds delay, std::function<void()> work) override;
    void cancel(TimerId id) override;

    // Moves time forward, running every timer that falls due on the way, in order.
    void advance(std::chrono::milliseconds by);
    void setNow(const QDateTime &now) { m_now = now; }
    std::size_t pendingCount() const { return m_pending.size(); }

private:
    struct Pending {
        QDateTime due;
        TimerId id;
        std::function<void()> work;
    };

    QDateTime m_now;
    std::map<TimerId, Pending> m_pending;
    TimerId m_nextId = 1;
};

} // namespace scrivlet
