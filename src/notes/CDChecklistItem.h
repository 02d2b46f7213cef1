#pragma once

#include <QString>
#include <QUuid>

#include <optional>

namespace scrivlet {

// A stored checklist row of a note. Strings and the id may be nil in rows written by
// older versions; reading replaces them.
struct CDChecklistItem {
    bool checked = false;
    std::optional<QString> content;
    std::optional<QUuid> id;
    qint32 index = 0;
    bool isHidden = false;
    qint32 responsibilityRangeLength = 0;
    qint32 responsibilityRangeLocation = 0;
    double verticalPosition = 0;

    friend bool operator==(const CDChecklistItem &, const CDChecklistItem &) = default;
};

} // namespace scrivlet
