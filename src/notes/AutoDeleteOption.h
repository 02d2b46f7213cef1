#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

namespace scrivlet {

// The age limit of the preferences button "Delete all notes that haven't been
// modified since:", stored under `autoDeleteBefore` by its text.
enum class AutoDeleteOption { today, oneWeek, oneMonth, oneYear, never };

struct AutoDelete {
    static QString rawValue(AutoDeleteOption option);
    static std::optional<AutoDeleteOption> fromRawValue(const QString &text);
    // The cut-off for `now`, in local time; none for "never", where the button does
    // nothing.
    static std::optional<QDateTime> cutOff(AutoDeleteOption option, const QDateTime &now);
};

} // namespace scrivlet
