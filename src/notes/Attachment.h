#pragma once

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <optional>

namespace scrivlet {

// A file attached to a note. Carried, stored and synced faithfully; nothing in the
// editor creates one.
struct Attachment {
    QUuid id;
    QUuid noteId;
    QString fileUrl;
    QString locationType;
    QString fileType;
    int sortOrder = 0;
    QString fileName;
    std::optional<qint64> fileSize;
    QDateTime created;
    std::optional<QString> mimeType;

    friend bool operator==(const Attachment &, const Attachment &) = default;
};

} // namespace scrivlet
