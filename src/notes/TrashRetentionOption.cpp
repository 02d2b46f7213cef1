#include "notes/TrashRetentionOption.h"

namespace scrivlet {

QString TrashRetention::rawValue(TrashRetentionOption option)
{
    switch (option) {
    case TrashRetentionOption::sevenDays:
        return QStringLiteral("7 days");
    case TrashRetentionOption::thirtyDays:
        return QStringLiteral("30 days");
    case TrashRetentionOption::ninetyDays:
        return QStringLiteral("90 days");
    case TrashRetentionOption::never:
        return QStringLiteral("Never");
    }
    return QStringLiteral("30 days");
}

std::optional<TrashRetentionOption> TrashRetention::fromRawValue(const QString &text)
{
    for (const auto option : {TrashRetentionOption::sevenDays, TrashRetentionOption::thirtyDays,
                              TrashRetentionOption::ninetyDays, TrashRetentionOption::never}) {
        if (rawValue(option) == text)
            return option;
    }
    return std::nullopt;
}

std::optional<int> TrashRetention::days(TrashRetentionOption option)
{
    switch (option) {
    case TrashRetentionOption::sevenDays:
        return 7;
    case TrashRetentionOption::thirtyDays:
        return 30;
    case TrashRetentionOption::ninetyDays:
        return 90;
    case TrashRetentionOption::never:
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace scrivlet
