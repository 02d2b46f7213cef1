#pragma once

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

namespace scrivlet {

// A stored attachment row. A `fileSize` of 0 means the size is unknown.
struct CDAttachment {
    std::optional<QDateTime> created;
    std::optional<QString> fileName;
    qint64 fileSize = 0;
    std::optional<QString> fileType;
    std::optional<QString> fileUrl;
    std::optional<QUuid> id;
    std::optional<QString> locationType;
    std::optional<QString> mimeType;
    qint32 sortOrder = 0;

    friend bool operator==(const CDAttachment &, const CDAttachment &) = default;
};

} // namespace scrivlet
