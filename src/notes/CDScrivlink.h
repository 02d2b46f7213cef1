#pragma once

#include <QString>
#include <QUuid>

#include <optional>

namespace scrivlet {

// A stored short link of a note.
struct CDScrivlink {
    qint32 currentRangeLength = 0;
    qint32 currentRangeLocation = 0;
    std::optional<QString> fullUrl;
    std::optional<QUuid> id;
    std::optional<QString> shortenedUrl;

    friend bool operator==(const CDScrivlink &, const CDScrivlink &) = default;
};

} // namespace scrivlet
