#pragma once

#include "platform/Clock.h"

#include <chrono>
#include <functional>

namespace scrivlet {

// Runs the last work handed to it once things have been quiet for `delay`: each call
// cancels the pending work and schedules the new one.
class Debouncer {
public:
    Debouncer(Clock &clock, std::chrono::milliseconds delay) : m_clock(clock), m_delay(delay) {}
    ~Debouncer() { cancel(); }
    Debouncer(const Debouncer &) = delete;
    Debouncer &operator=(const Debouncer &) = delete;

    void call(std::function<void()> work);
    void cancel();
    // Runs pending work now, as when the window goes away before the delay is over.
    void flush();
    bool isPending() const { return m_pending != 0; }
    std::chrono::milliseconds delay() const { return m_delay; }

private:
    Clock &m_clock;
    std::chrono::milliseconds m_delay;
    Clock::TimerId m_pending = 0;
    std::function<void()> m_work;
};

} // namespace scrivlet
