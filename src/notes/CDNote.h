#pragma once

#include "notes/CDAttachment.h"
#include "notes/CDChecklistItem.h"
#include "notes/CDScrivlink.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <optional>
#include <vector>

namespace scrivlet {

// A stored note with its child rows. Every field the store may hold as nil is
// optional here, so a row from an older version reads back exactly as it lies on disk;
// the conversion to `Note` decides what a nil means.
struct CDNote {
    // The store's own identity of the row, like an object ID: 0 for a row not yet
    // inserted. Child rows hang off it, so a note without an `id` still owns them.
    qint64 objectId = 0;

    std::optional<QString> ckChangeTag;
    std::optional<QByteArray> ckSystemFields;
    std::optional<QString> content;
    std::optional<QDateTime> created;
    qint32 dbIndex = 0;
    std::optional<QDateTime> deletedAt;
    std::optional<QUuid> id;
    bool isSlotted = false;
    bool isTutorial = false;
    std::optional<QDateTime> lastModified;
    std::optional<QStringList> skippedURLs;
    qint32 slotIndex = 0;
    std::optional<bool> softDeleted;

    std::vector<CDScrivlink> scrivlinks;
    std::vector<CDAttachment> attachments;
    std::vector<CDChecklistItem> checklistItems;

    friend bool operator==(const CDNote &, const CDNote &) = default;
};

} // namespace scrivlet
