#include "notes/AutoBackupIntervalOption.h"

#include <array>

namespace scrivlet {

namespace {

constexpr std::array kAllOptions = {
    AutoBackupIntervalOption::tenMinutes, AutoBackupIntervalOption::thirtyMinutes, AutoBackupIntervalOption::oneHour,
    AutoBackupIntervalOption::threeHours, AutoBackupIntervalOption::twelveHours,   AutoBackupIntervalOption::oneDay,
    AutoBackupIntervalOption::threeDays,  AutoBackupIntervalOption::oneWeek,       AutoBackupIntervalOption::oneMonth,
    AutoBackupIntervalOption::never,
};

} // namespace

QString AutoBackupInterval::rawValue(AutoBackupIntervalOption option)
{
    switch (option) {
    case AutoBackupIntervalOption::tenMinutes:
        return QStringLiteral("10 mins");
    case AutoBackupIntervalOption::thirtyMinutes:
        return QStringLiteral("30 mins");
    case AutoBackupIntervalOption::oneHour:
        return QStringLiteral("1 hr");
    case AutoBackupIntervalOption::threeHours:
        return QStringLiteral("3 hrs");
    case AutoBackupIntervalOption::twelveHours:
        return QStringLiteral("12 hrs");
    case AutoBackupIntervalOption::oneDay:
        return QStringLiteral("1 day");
    case AutoBackupIntervalOption::threeDays:
        return QStringLiteral("3 days");
    case AutoBackupIntervalOption::oneWeek:
        return QStringLiteral("1 week");
    case AutoBackupIntervalOption::oneMonth:
        return QStringLiteral("1 month");
    case AutoBackupIntervalOption::never:
        return QStringLiteral("Never");
    }
    return QStringLiteral("3 hrs");
}

AutoBackupIntervalOption AutoBackupInterval::fromRawValue(const QString &text)
{
    for (const auto option : kAllOptions) {
        if (rawValue(option) == text)
            return option;
    }
    return AutoBackupIntervalOption::threeHours;
}

std::optional<qint64> AutoBackupInterval::seconds(AutoBackupIntervalOption option)
{
    switch (option) {
    case AutoBackupIntervalOption::tenMinutes:
        return 600;
    case AutoBackupIntervalOption::thirtyMinutes:
        return 1800;
    case AutoBackupIntervalOption::oneHour:
        return 3600;
    case AutoBackupIntervalOption::threeHours:
        return 10800;
    case AutoBackupIntervalOption::twelveHours:
        return 43200;
    case AutoBackupIntervalOption::oneDay:
        return 86400;
    case AutoBackupIntervalOption::threeDays:
        return 259200;
    case AutoBackupIntervalOption::oneWeek:
        return 604800;
    case AutoBackupIntervalOption::oneMonth:
        return 2592000;
    case AutoBackupIntervalOption::never:
        return std::nullopt;
    }
    return 10800;
}

} // namespace scrivlet
