#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace scrivlet {

// When a search result was last changed, as the result list shows it: minutes or
// hours for today, the day for anything older.
struct RelativeTimeText {
    static QString text(const QDateTime &date, const QDateTime &now, const QLocale &locale = QLocale());
};

} // namespace scrivlet
