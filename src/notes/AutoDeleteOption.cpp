#include "notes/AutoDeleteOption.h"

namespace scrivlet {

QString AutoDelete::rawValue(AutoDeleteOption option)
{
    switch (option) {
    case AutoDeleteOption::today:
        return QStringLiteral("today");
    case AutoDeleteOption::oneWeek:
        return QStringLiteral("oneWeek");
    case AutoDeleteOption::oneMonth:
        return QStringLiteral("oneMonth");
    case AutoDeleteOption::oneYear:
        return QStringLiteral("oneYear");
    case AutoDeleteOption::never:
        return QStringLiteral("never");
    }
    return QStringLiteral("never");
}

std::optional<AutoDeleteOption> AutoDelete::fromRawValue(const QString &text)
{
    for (const auto option : {AutoDeleteOption::today, AutoDeleteOption::oneWeek, AutoDeleteOption::oneMonth,
                              AutoDeleteOption::oneYear, AutoDeleteOption::never}) {
        if (rawValue(option) == text)
            return option;
    }
    return std::nullopt;
}

std::optional<QDateTime> AutoDelete::cutOff(AutoDeleteOption option, const QDateTime &now)
{
    const QDateTime local = now.toLocalTime();
    switch (option) {
    case AutoDeleteOption::today:
        // Everything touched today is spared.
        return local.date().startOfDay();
    case AutoDeleteOption::oneWeek:
        return local.addDays(-7);
    case AutoDeleteOption::oneMonth:
        return local.addMonths(-1);
    case AutoDeleteOption::oneYear:
        return local.addYears(-1);
    case AutoDeleteOption::never:
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace scrivlet
