#pragma once

#include <QString>

#include <chrono>
#include <optional>

class QDateTime;

namespace scrivlet {

// Whether coming back to the app starts a fresh note: someone who left the scratchpad
// long enough ago usually comes back for something new. Read from `autoNewNoteTiming`
// against `lastWindowCloseTime`.
class AutoNewNoteRule final {
public:
    // The time away after which the rule fires, for the timed settings ("3 mins",
    // "30 mins", "1 hr", "1 day"); nothing for "always", "never" and unknown values.
    static std::optional<std::chrono::seconds> threshold(const QString &timing);

    // `lastWindowCloseTime` in seconds since 1970. "always" fires at once; "never" and
    // anything unknown never do.
    static bool fires(const QString &timing, double lastWindowCloseTime, const QDateTime &now);
};

} // namespace scrivlet
