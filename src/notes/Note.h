#pragma once

#include "notes/Attachment.h"
#include "notes/ChecklistManager.h"
#include "notes/ScrivlinkManager.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <memory>
#include <optional>
#include <vector>

namespace scrivlet {

// A note in memory: a body of text with its place in the stack, an optional slot and
// its deletion marks. Copies share the note's checklist and link managers.
struct Note {
    QUuid id;
    QDateTime created;
    QDateTime lastModified;
    QString content;
    std::shared_ptr<ChecklistManager> checklistManager = std::make_shared<ChecklistManager>();
    std::shared_ptr<ScrivlinkManager> scrivlinkManager = std::make_shared<ScrivlinkManager>();
    std::vector<Attachment> attachments;
    qint64 dbIndex = 0; // must fit 32 bits when written back
    bool isSlotted = false;
    bool isTutorial = false;
    std::optional<int> slotIndex;
    bool softDeleted = false;
    std::optional<QDateTime> deletedAt;
};

} // namespace scrivlet
