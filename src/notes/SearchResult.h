#pragma once

#include "platform/TextRange.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

namespace scrivlet {

// One row of the search view: what it shows of a hit (the text around the hit, the
// time of the last change) and what it needs to open it. The note's checklist, links
// and attachments aren't read for it; opening the note (`jumpToNote`) loads it whole.
struct SearchResult {
    QUuid id;
    QString content;
    QDateTime lastModified;
    qint64 dbIndex = 0;
    bool isSlotted = false;
    std::optional<int> slotIndex;
    // Where in `content` the query was first found; none for the empty query.
    std::optional<TextRange> hit;
};

} // namespace scrivlet
