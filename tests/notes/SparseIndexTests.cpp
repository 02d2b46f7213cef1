#include "NotesStoreFixture.h"

#include <sqlite3.h>

using namespace scrivlet;
using namespace scrivlet::test;

namespace {

int countCommit(void *counter)
{
    ++*static_cast<int *>(counter);
    return 0;
}

QDateTime at(int minute)
{
    return QDateTime(QDate(2025, 6, 1), QTime(8, 0), Qt::UTC).addSecs(minute * 60);
}

qint64 ms(int minute)
{
    return at(minute).toMSecsSinceEpoch();
}

} // namespace

TEST_F(NotesStoreTest, NewNotesTakeSparseIndexesPerSequence)
{
    EXPECT_EQ(manager->nextTutorialDbIndex(), 1);
    EXPECT_EQ(manager->createNote().dbIndex, 10000);
    const Note second = manager->createNote();
    EXPECT_EQ(second.dbIndex, 20000);

    // Notes in The Void don't hold up the stack; the slotted notes count apart.
    insertRaw({.dbIndex = 90000, .softDeleted = 1});
    const QUuid slotted = insertRaw({.dbIndex = 40000, .isSlotted = true});
    insertRaw({.dbIndex = 70000, .isSlotted = true, .softDeleted = QVariant()});
    EXPECT_EQ(manager->createNote().dbIndex, 30000);
    EXPECT_EQ(manager->nextDbIndex(true), 80000);
    EXPECT_EQ(manager->nextTutorialDbIndex(), 90001) << "tutorial notes go above every row there is";

    clock.advance(std::chrono::hours(2));
    EXPECT_EQ(manager->moveToFront(slotted, false), 80000);
    EXPECT_EQ(manager->fetchNote(slotted)->dbIndex, 80000);
    EXPECT_FALSE(manager->fetchRow(slotted)->lastModified) << "untouched";
    EXPECT_EQ(manager->moveToFront(second.id, true), 40000);
    EXPECT_EQ(manager->fetchNote(second.id)->lastModified, clock.now());
    EXPECT_FALSE(manager->moveToFront(QUuid::createUuid(), true));

    EXPECT_EQ(CoreDataManager::dbIndexBetween(10000, 20000), 15000);
    EXPECT_EQ(CoreDataManager::dbIndexBetween(10000, 10003), 10001);
    EXPECT_EQ(CoreDataManager::dbIndexBetween(10000, 10001), 10001);
    EXPECT_EQ(CoreDataManager::dbIndexBetween(10000, 10000), 10001);

    // When the highest index can't be read, new notes start over at the first values.
    Database &db = stack->database();
    ASSERT_TRUE(db.exec(QStringLiteral("ALTER TABLE notes RENAME TO notes_elsewhere")));
    EXPECT_EQ(manager->nextDbIndex(false), 10000);
    EXPECT_EQ(manager->nextTutorialDbIndex(), 1);
    ASSERT_TRUE(db.exec(QStringLiteral("ALTER TABLE notes_elsewhere RENAME TO notes")));
    EXPECT_EQ(manager->nextDbIndex(false), 50000);
}

TEST_F(NotesStoreTest, SparseMigrationReindexesInBatchesOnce)
{
    Database &db = stack->database();
    ASSERT_TRUE(db.exec(QStringLiteral("BEGIN")));
    std::vector<QUuid> order;
    for (int i = 1; i <= 1203; ++i)
        order.push_back(insertRaw({.dbIndex = i * 3}));
    const QUuid slotted = insertRaw({.dbIndex = 4, .isSlotted = true});
    const QUuid voided = insertRaw({.dbIndex = 5, .softDeleted = 1});
    ASSERT_TRUE(db.exec(QStringLiteral("COMMIT")));

    int commits = 0;
    sqlite3_commit_hook(db.handle(), countCommit, &commits);
    manager->migrateToSparseIndex();
    EXPECT_EQ(commits, 3) << "500 + 500 + 203 rows";
    EXPECT_TRUE(settings.value(QStringLiteral("didSparseDbIndex_v1")).toBool());
    EXPECT_TRUE(sink.saves.isEmpty()) << "a reindex isn't a batch of edits to sync";

    const std::vector<Note> notes = manager->fetchAll(false);
    ASSERT_EQ(notes.size(), 1203u);
    for (std::size_t i = 0; i < notes.size(); ++i) {
        ASSERT_EQ(notes[i].id, order[i]);
        ASSERT_EQ(notes[i].dbIndex, qint64(i + 1) * 10000);
    }
    EXPECT_EQ(manager->fetchNote(slotted)->dbIndex, 4);
    EXPECT_EQ(manager->fetchNote(voided)->dbIndex, 5);

    commits = 0;
    manager->migrateToSparseIndex();
    EXPECT_EQ(commits, 0);

    // Run again without the marker: rows already in place are left alone.
    settings.remove(QStringLiteral("didSparseDbIndex_v1"));
    manager->migrateToSparseIndex();
    EXPECT_EQ(commits, 0);
    EXPECT_FALSE(manager->hasChanges());
    sqlite3_commit_hook(db.handle(), nullptr, nullptr);
}

TEST_F(NotesStoreTest, NotesFromOldDevicesArePlacedByTheirDates)
{
    const QUuid early = insertRaw({.dbIndex = 10000, .lastModified = ms(100), .ckChangeTag = QStringLiteral("tag")});
    const QUuid late = insertRaw({.dbIndex = 20000, .lastModified = ms(300), .ckChangeTag = QStringLiteral("tag")});
    const QUuid before = insertRaw({.dbIndex = 5, .lastModified = ms(50)});
    const QUuid between = insertRaw({.dbIndex = 6, .lastModified = ms(200)});
    const QUuid after = insertRaw({.dbIndex = 7, .lastModified = ms(400)});
    const QUuid undated = insertRaw({.dbIndex = 8, .lastModified = QVariant()});
    insertRaw({.dbIndex = 9, .isSlotted = true, .lastModified = ms(250)});

    NotesPreferences(settings).setSyncWithICloud(false);
    EXPECT_EQ(manager->positionUnplacedNotes(), 0);
    EXPECT_EQ(manager->fetchNote(between)->dbIndex, 6);

    NotesPreferences(settings).setSyncWithICloud(true);
    sink.clear();
    EXPECT_EQ(manager->positionUnplacedNotes(), 4);
    // The undated note counts as the oldest, and the note at 50 then falls between it
    // and the first placed note.
    EXPECT_EQ(manager->fetchNote(undated)->dbIndex, 0);
    EXPECT_EQ(manager->fetchNote(before)->dbIndex, 5000);
    EXPECT_EQ(manager->fetchNote(between)->dbIndex, 15000);
    EXPECT_EQ(manager->fetchNote(after)->dbIndex, 30000);
    EXPECT_EQ(manager->fetchNote(early)->dbIndex, 10000);
    EXPECT_EQ(manager->fetchNote(late)->dbIndex, 20000);
    EXPECT_EQ(manager->fetchRow(between)->ckChangeTag, QStringLiteral("positioned"));
    EXPECT_EQ(manager->fetchRow(early)->ckChangeTag, QStringLiteral("tag"));
    EXPECT_EQ(QSet<QUuid>(sink.saves.begin(), sink.saves.end()), (QSet<QUuid>{undated, before, between, after}));

    // Placed notes are never placed again.
    EXPECT_EQ(manager->positionUnplacedNotes(), 0);
}

TEST_F(NotesStoreTest, PlacingIntoAnExhaustedGapOrAnEmptyStack)
{
    insertRaw({.dbIndex = 10000, .lastModified = ms(100), .ckChangeTag = QStringLiteral("tag")});
    insertRaw({.dbIndex = 10001, .lastModified = ms(300), .ckChangeTag = QStringLiteral("tag")});
    const QUuid first = insertRaw({.dbIndex = 1, .lastModified = ms(200)});
    const QUuid second = insertRaw({.dbIndex = 2, .lastModified = ms(250)});
    EXPECT_EQ(manager->positionUnplacedNotes(), 2);
    EXPECT_EQ(manager->fetchNote(first)->dbIndex, 10001);
    EXPECT_EQ(manager->fetchNote(second)->dbIndex, 10002) << "crossing its neighbour is accepted";
}

TEST_F(NotesStoreTest, PlacingWithNothingPlacedStartsAtTheBase)
{
    // Equal dates fall back to the creation date.
    const QUuid older = insertRaw({.dbIndex = 60000, .lastModified = ms(10), .created = ms(1)});
    const QUuid newer = insertRaw({.dbIndex = 3, .lastModified = ms(10), .created = ms(2)});
    EXPECT_EQ(manager->positionUnplacedNotes(10000, 60000), 1) << "a note already at its place isn't a change";
    EXPECT_EQ(manager->fetchNote(older)->dbIndex, 60000);
    EXPECT_EQ(manager->fetchNote(newer)->dbIndex, 70000);
    EXPECT_EQ(manager->fetchRow(older)->ckChangeTag, QStringLiteral("positioned"));
}
