#include "shell/lifecycle/AutoNewNoteRule.h"

#include <QDateTime>

namespace scrivlet {

using namespace std::chrono_literals;

std::optional<std::chrono::seconds> AutoNewNoteRule::threshold(const QString &timing)
{
    if (timing == u"3 mins")
        return 3min;
    if (timing == u"30 mins")
        return 30min;
    if (timing == u"1 hr")
        return 1h;
    if (timing == u"1 day")
        return 24h;
    return std::nullopt;
}

bool AutoNewNoteRule::fires(const QString &timing, double lastWindowCloseTime, const QDateTime &now)
{
    if (timing == u"always")
        return true;
    const auto away = threshold(timing);
    if (!away)
        return false;
    const double secondsAway = double(now.toMSecsSinceEpoch()) / 1000.0 - lastWindowCloseTime;
    return secondsAway >= double(away->count());
}

} // namespace scrivlet
