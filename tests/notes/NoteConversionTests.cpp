#include "notes/NoteConversion.h"
#include "platform/ManualClock.h"

#include <gtest/gtest.h>

using namespace scrivlet;

namespace {

CDChecklistItem checklistRow(int index, const QString &content)
{
    CDChecklistItem row;
    row.index = index;
    row.content = content;
    row.id = QUuid::createUuid();
    return row;
}

CDAttachment attachmentRow(int sortOrder, const QString &name)
{
    CDAttachment row;
    row.sortOrder = sortOrder;
    row.fileName = name;
    return row;
}

} // namespace

TEST(NoteConversion, NilFieldsOfARowBecomeUsableValues)
{
    ManualClock clock;
    CDNote row; // every optional field nil, as in rows of older versions
    row.dbIndex = 30000;
    row.slotIndex = 0;
    row.isSlotted = true;

    const Note note = NoteConversion::toNote(row, clock);
    EXPECT_FALSE(note.id.isNull());
    EXPECT_EQ(note.created, clock.now());
    EXPECT_EQ(note.lastModified, clock.now());
    EXPECT_TRUE(note.content.isEmpty());
    EXPECT_FALSE(note.softDeleted) << "a nil deletion flag is a live note";
    EXPECT_FALSE(note.slotIndex) << "slot 0 is no slot";
    EXPECT_TRUE(note.isSlotted) << "a slotted row with slot 0 stays slotted until repaired";
    EXPECT_EQ(note.dbIndex, 30000);
    EXPECT_FALSE(note.deletedAt);

    // Each read of a nil id makes a new one; nothing may rely on it being stable.
    EXPECT_NE(NoteConversion::toNote(row, clock).id, note.id);

    row.slotIndex = 4;
    row.softDeleted = true;
    EXPECT_EQ(NoteConversion::toNote(row, clock).slotIndex, 4);
    EXPECT_TRUE(NoteConversion::toNote(row, clock).softDeleted);
}

TEST(NoteConversion, ChildRowsAreOrderedStablyAndFilledIn)
{
    ManualClock clock;
    CDNote row;
    row.id = QUuid::createUuid();
    row.checklistItems = {checklistRow(2, QStringLiteral("c")), checklistRow(1, QStringLiteral("a")),
                          checklistRow(2, QStringLiteral("d")), checklistRow(1, QStringLiteral("b"))};
    row.checklistItems.push_back(CDChecklistItem{}); // nil content and id, index 0
    row.attachments = {attachmentRow(5, QStringLiteral("late")), attachmentRow(1, QStringLiteral("early")),
                       attachmentRow(5, QStringLiteral("later"))};
    row.attachments[1].fileSize = 2048;
    row.attachments[1].mimeType = QStringLiteral("image/png");
    CDScrivlink second;
    second.fullUrl = QStringLiteral("https://example.org/b");
    second.currentRangeLocation = 40;
    CDScrivlink first;
    first.fullUrl = QStringLiteral("https://example.org/a");
    first.currentRangeLocation = 3;
    row.scrivlinks = {second, first};

    const Note note = NoteConversion::toNote(row, clock);

    QStringList checklist;
    for (const auto &item : note.checklistManager->checklist)
        checklist << item->content;
    EXPECT_EQ(checklist, (QStringList{QString(), QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"),
                                      QStringLiteral("d")}));
    EXPECT_FALSE(note.checklistManager->checklist.front()->id.isNull());

    ASSERT_EQ(note.attachments.size(), 3u);
    EXPECT_EQ(note.attachments[0].fileName, QStringLiteral("early"));
    EXPECT_EQ(note.attachments[1].fileName, QStringLiteral("late"));
    EXPECT_EQ(note.attachments[2].fileName, QStringLiteral("later"));
    EXPECT_EQ(note.attachments[0].fileSize, 2048);
    EXPECT_FALSE(note.attachments[1].fileSize) << "size 0 is an unknown size";
    EXPECT_EQ(note.attachments[0].mimeType, QStringLiteral("image/png"));
    EXPECT_FALSE(note.attachments[1].mimeType);
    EXPECT_EQ(note.attachments[1].created, clock.now());
    EXPECT_EQ(note.attachments[0].noteId, *row.id);

    // Links keep the order they were read in: consumers go by their range.
    ASSERT_EQ(note.scrivlinkManager->scrivlinks.size(), 2u);
    EXPECT_EQ(note.scrivlinkManager->scrivlinks[0].currentRange.location, 40);
}

TEST(NoteConversion, WriteBackReplacesChildrenAndKeepsSyncFields)
{
    ManualClock clock;
    CDNote row;
    row.objectId = 7;
    row.ckChangeTag = QStringLiteral("etag-1");
    row.ckSystemFields = QByteArray("fields");
    row.skippedURLs = QStringList{QStringLiteral("https://keep.me")};
    row.checklistItems = {checklistRow(0, QStringLiteral("old"))};
    row.attachments = {attachmentRow(0, QStringLiteral("old"))};

    Note note;
    note.id = QUuid::createUuid();
    note.created = clock.now().addDays(-1);
    note.lastModified = clock.now();
    note.content = QStringLiteral("list\n- milk");
    note.dbIndex = 20000;
    note.slotIndex = std::nullopt;
    note.softDeleted = true;
    note.deletedAt = clock.now();
    auto item = std::make_shared<ChecklistItem>();
    item->content = QStringLiteral("milk");
    item->index = 1;
    item->isHidden = true;
    item->responsibilityRange = {5, 6};
    note.checklistManager->checklist.push_back(item);
    Attachment attachment;
    attachment.id = QUuid::createUuid();
    attachment.noteId = note.id;
    attachment.created = clock.now();
    attachment.fileName = QStringLiteral("scan.pdf");
    attachment.sortOrder = 3;
    note.attachments.push_back(attachment);
    note.scrivlinkManager->skippedURLs = QStringList{QStringLiteral("https://keep.me")};

    NoteConversion::writeBack(note, row);
    EXPECT_EQ(row.objectId, 7);
    EXPECT_EQ(row.ckChangeTag, QStringLiteral("etag-1"));
    EXPECT_EQ(row.ckSystemFields, QByteArray("fields"));
    EXPECT_EQ(row.skippedURLs, QStringList{QStringLiteral("https://keep.me")});
    EXPECT_EQ(row.id, note.id);
    EXPECT_EQ(row.content, note.content);
    EXPECT_EQ(row.dbIndex, 20000);
    EXPECT_EQ(row.slotIndex, 0) << "no slot is stored as 0";
    EXPECT_EQ(row.softDeleted, true);
    ASSERT_EQ(row.checklistItems.size(), 1u);
    EXPECT_EQ(row.checklistItems[0].content, QStringLiteral("milk"));
    EXPECT_EQ(row.checklistItems[0].id, item->id);
    EXPECT_TRUE(row.checklistItems[0].isHidden);
    EXPECT_EQ(row.checklistItems[0].responsibilityRangeLocation, 5);
    ASSERT_EQ(row.attachments.size(), 1u);
    EXPECT_EQ(row.attachments[0].fileSize, 0) << "an unknown size is stored as 0";
    EXPECT_FALSE(row.attachments[0].mimeType);
    EXPECT_EQ(row.attachments[0].sortOrder, 3);

    // And back: what was written reads as the same note.
    const Note again = NoteConversion::toNote(row, clock);
    EXPECT_EQ(again.id, note.id);
    EXPECT_EQ(again.created, note.created);
    EXPECT_EQ(again.content, note.content);
    EXPECT_EQ(again.deletedAt, note.deletedAt);
    EXPECT_EQ(again.attachments, note.attachments);
    EXPECT_EQ(*again.checklistManager->checklist[0], *item);
}

TEST(NoteConversionDeathTest, IndexBeyond32BitsStopsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    Note note;
    note.id = QUuid::createUuid();
    note.dbIndex = qint64(std::numeric_limits<qint32>::max()) + 1;
    CDNote row;
    EXPECT_DEATH(NoteConversion::writeBack(note, row), "dbIndex 2147483648");

    note.dbIndex = std::numeric_limits<qint32>::max();
    NoteConversion::writeBack(note, row);
    EXPECT_EQ(row.dbIndex, std::numeric_limits<qint32>::max());
}
