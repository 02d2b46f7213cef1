#pragma once

#include "platform/Clock.h"

#include <QHash>

class QTimer;

namespace scrivlet {

// Wall-clock time and QTimer-driven timers on the thread's event loop.
class SystemClock final : public Clock {
public:
    SystemClock() = default;
    ~SystemClock() override;
    SystemClock(const SystemClock &) = delete;
    SystemClock &operator=(const SystemClock &) = delete;

    QDateTime now() const override;
    TimerId schedule(std::chrono::milliseconds delay, std::function<void()> work) override;
    void cancel(TimerId id) override;

private:
    QHash<TimerId, QTimer *> m_timers;
    TimerId m_nextId = 1;
};

} // namespace scrivlet
