#pragma once

#include <QDateTime>

#include <chrono>
#include <functional>

namespace scrivlet {

// Time and one-shot timers on the main loop. Everything that waits (save debounce,
// timers, backups, retention) goes through a clock, so tests move time instead of
// sleeping.
class Clock {
public:
    using TimerId = quint64;

    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
    // Runs `work` once on the main loop after `delay`. Returns an id for `cancel`.
    virtual TimerId schedule(std::chrono::milliseconds delay, std::function<void()> work) = 0;
    // Cancelling a timer that has fired or was never scheduled does nothing.
    virtual void cancel(TimerId id) = 0;
};

} // namespace scrivlet
