#include "notes/RelativeTimeText.h"

#include <algorithm>

namespace scrivlet {

QString RelativeTimeText::text(const QDateTime &date, const QDateTime &now, const QLocale &locale)
{
    const QDateTime local = date.toLocalTime();
    const QDateTime localNow = now.toLocalTime();
    if (local.date() == localNow.date()) {
        // A date a little ahead (another machine's clock) counts as just now.
        const qint64 seconds = std::max<qint64>(0, local.secsTo(localNow));
        const qint64 hours = seconds / 3600;
        const qint64 minutes = (seconds % 3600) / 60;
        if (hours == 0 && minutes == 0)
            return QStringLiteral("less than a minute ago");
        if (hours >= 1)
            return QString::number(hours) % QStringLiteral(" hour") % (hours == 1 ? QString() : QStringLiteral("s"));
        return QString::number(minutes) % QStringLiteral(" minute") % (minutes == 1 ? QString() : QStringLiteral("s"));
    }
    if (local.date().year() == localNow.date().year())
        return locale.toString(local.date(), QStringLiteral("MMMM d"));
    return locale.toString(local.date(), QStringLiteral("MMMM d, yyyy"));
}

} // namespace scrivlet
