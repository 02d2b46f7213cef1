#pragma once

#include <QString>

#include <optional>

namespace scrivlet {

// How long a note stays in The Void before it is removed at start, stored under
// `trashRetentionPeriod` by its text.
enum class TrashRetentionOption { sevenDays, thirtyDays, ninetyDays, never };

struct TrashRetention {
    static QString rawValue(TrashRetentionOption option);
    // Unknown texts have no option; callers fall back to the default, "30 days".
    static std::optional<TrashRetentionOption> fromRawValue(const QString &text);
    // Days kept; none for "Never".
    static std::optional<int> days(TrashRetentionOption option);
};

} // namespace scrivlet
