#pragma once

#include <QString>

#include <optional>

namespace scrivlet {

// How often the store is copied aside when the app loses focus or quits, stored
// under `autoBackupInterval` by its text.
enum class AutoBackupIntervalOption {
    tenMinutes,
    thirtyMinutes,
    oneHour,
    threeHours,
    twelveHours,
    oneDay,
    threeDays,
    oneWeek,
    oneMonth,
    never,
};

struct AutoBackupInterval {
    static QString rawValue(AutoBackupIntervalOption option);
    // A text no version of the app wrote counts as the default, "3 hrs".
    static AutoBackupIntervalOption fromRawValue(const QString &text);
    // The least time between two backups; none for "Never".
    static std::optional<qint64> seconds(AutoBackupIntervalOption option);
};

} // namespace scrivlet
