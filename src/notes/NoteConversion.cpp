#include "notes/NoteConversion.h"

#include "platform/Clock.h"

#include <algorithm>
#include <limits>

namespace scrivlet {

qint32 NoteConversion::narrow(qint64 value, const char *field)
{
    if (value < std::numeric_limits<qint32>::min() || value > std::numeric_limits<qint32>::max())
        qFatal("%s %lld doesn't fit 32 bits: the note's index is corrupted", field, static_cast<long long>(value));
    return static_cast<qint32>(value);
}

Note NoteConversion::toNote(const CDNote &record, const Clock &clock)
{
    Note note;
    note.id = record.id.value_or(QUuid::createUuid());
    note.created = record.created ? *record.created : clock.now();
    note.lastModified = record.lastModified ? *record.lastModified : clock.now();
    note.content = record.content.value_or(QString());
    note.dbIndex = record.dbIndex;
    note.isSlotted = record.isSlotted;
    note.isTutorial = record.isTutorial;
    note.softDeleted = record.softDeleted.value_or(false);
    note.deletedAt = record.deletedAt;
    if (record.slotIndex != 0)
        note.slotIndex = record.slotIndex;

    std::vector<const CDChecklistItem *> items;
    items.reserve(record.checklistItems.size());
    for (const auto &item : record.checklistItems)
        items.push_back(&item);
    std::stable_sort(items.begin(), items.end(),
                     [](const CDChecklistItem *a, const CDChecklistItem *b) { return a->index < b->index; });
    for (const CDChecklistItem *row : items) {
        auto item = std::make_shared<ChecklistItem>();
        item->id = row->id.value_or(QUuid::createUuid());
        item->content = row->content.value_or(QString());
        item->checked = row->checked;
        item->verticalPosition = row->verticalPosition;
        item->responsibilityRange = TextRange{row->responsibilityRangeLocation, row->responsibilityRangeLength};
        item->index = row->index;
        item->isHidden = row->isHidden;
        note.checklistManager->checklist.push_back(std::move(item));
    }

    for (const auto &row : record.scrivlinks) {
        Scrivlink link;
        link.id = row.id.value_or(QUuid::createUuid());
        link.fullUrl = row.fullUrl.value_or(QString());
        link.shortenedUrl = row.shortenedUrl.value_or(QString());
        link.currentRange = TextRange{row.currentRangeLocation, row.currentRangeLength};
        note.scrivlinkManager->scrivlinks.push_back(std::move(link));
    }
    note.scrivlinkManager->skippedURLs = record.skippedURLs.value_or(QStringList());

    std::vector<const CDAttachment *> attachments;
    attachments.reserve(record.attachments.size());
    for (const auto &attachment : record.attachments)
        attachments.push_back(&attachment);
    std::stable_sort(attachments.begin(), attachments.end(),
                     [](const CDAttachment *a, const CDAttachment *b) { return a->sortOrder < b->sortOrder; });
    for (const CDAttachment *row : attachments) {
        Attachment attachment;
        attachment.id = row->id.value_or(QUuid::createUuid());
        // The owner's own id, not the note's replacement: a row without one has no
        // identity to share.
        attachment.noteId = record.id.value_or(QUuid::createUuid());
        attachment.fileUrl = row->fileUrl.value_or(QString());
        attachment.locationType = row->locationType.value_or(QString());
        attachment.fileType = row->fileType.value_or(QString());
        attachment.sortOrder = row->sortOrder;
        attachment.fileName = row->fileName.value_or(QString());
        if (row->fileSize != 0)
            attachment.fileSize = row->fileSize;
        attachment.created = row->created ? *row->created : clock.now();
        attachment.mimeType = row->mimeType;
        note.attachments.push_back(std::move(attachment));
    }
    return note;
}

void NoteConversion::writeBack(const Note &note, CDNote &record)
{
    record.id = note.id;
    record.created = note.created;
    record.lastModified = note.lastModified;
    record.content = note.content;
    record.dbIndex = narrow(note.dbIndex, "dbIndex");
    record.isSlotted = note.isSlotted;
    record.isTutorial = note.isTutorial;
    record.slotIndex = note.slotIndex ? narrow(*note.slotIndex, "slotIndex") : 0;
    record.softDeleted = note.softDeleted;
    record.deletedAt = note.deletedAt;

    record.checklistItems.clear();
    for (const auto &item : note.checklistManager->checklist) {
        CDChecklistItem row;
        row.checked = item->checked;
        row.content = item->content;
        row.id = item->id;
        row.index = narrow(item->index, "checklist index");
        row.isHidden = item->isHidden;
        row.responsibilityRangeLength = narrow(item->responsibilityRange.length, "checklist range length");
        row.responsibilityRangeLocation = narrow(item->responsibilityRange.location, "checklist range location");
        row.verticalPosition = item->verticalPosition;
        record.checklistItems.push_back(std::move(row));
    }

    record.scrivlinks.clear();
    for (const auto &link : note.scrivlinkManager->scrivlinks) {
        CDScrivlink row;
        row.currentRangeLength = narrow(link.currentRange.length, "link range length");
        row.currentRangeLocation = narrow(link.currentRange.location, "link range location");
        row.fullUrl = link.fullUrl;
        row.id = link.id;
        row.shortenedUrl = link.shortenedUrl;
        record.scrivlinks.push_back(std::move(row));
    }
    // An empty list is stored as none, as a note that never skipped a link has it.
    if (note.scrivlinkManager->skippedURLs.isEmpty())
        record.skippedURLs.reset();
    else
        record.skippedURLs = note.scrivlinkManager->skippedURLs;

    record.attachments.clear();
    for (const auto &attachment : note.attachments) {
        CDAttachment row;
        row.created = attachment.created;
        row.fileName = attachment.fileName;
        row.fileSize = attachment.fileSize.value_or(0);
        row.fileType = attachment.fileType;
        row.fileUrl = attachment.fileUrl;
        row.id = attachment.id;
        row.locationType = attachment.locationType;
        row.mimeType = attachment.mimeType;
        row.sortOrder = narrow(attachment.sortOrder, "attachment sortOrder");
        record.attachments.push_back(std::move(row));
    }
}

} // namespace scrivlet
