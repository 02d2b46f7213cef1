#include "NotesStoreFixture.h"

#include "notes/NotesReloadedNotification.h"
#include "platform/NotificationBus.h"

#include <sqlite3.h>

using namespace scrivlet;
using namespace scrivlet::test;

namespace {

std::vector<qint64> indexesOf(const std::vector<Note> &notes)
{
    std::vector<qint64> indexes;
    for (const Note &note : notes)
        indexes.push_back(note.dbIndex);
    return indexes;
}

using Indexes = std::vector<qint64>;

} // namespace

TEST_F(NotesStoreTest, QueriesKeepToLiveNotesInStackOrder)
{
    insertRaw({.dbIndex = 30000});
    insertRaw({.dbIndex = 10000, .softDeleted = QVariant()}); // a row from before the flag existed
    insertRaw({.dbIndex = 40000});
    insertRaw({.dbIndex = 20000});
    insertRaw({.dbIndex = 25000, .softDeleted = 1, .deletedAt = 1000});
    insertRaw({.dbIndex = 35000, .softDeleted = 1, .deletedAt = 5000});
    insertRaw({.dbIndex = 10000, .isSlotted = true});
    insertRaw({.dbIndex = 20000, .isSlotted = true});

    EXPECT_EQ(indexesOf(manager->fetchAll(false)), (Indexes{10000, 20000, 30000, 40000}));
    EXPECT_EQ(indexesOf(manager->fetchAll(true)), (Indexes{10000, 10000, 20000, 20000, 30000, 40000}));
    EXPECT_EQ(indexesOf(manager->fetchLatest(2, false)), (Indexes{30000, 40000}));

    Note pivot;
    pivot.dbIndex = 30000;
    EXPECT_EQ(indexesOf(manager->fetchBefore(pivot, 1)), (Indexes{20000}));
    EXPECT_EQ(indexesOf(manager->fetchBefore(pivot, 5)), (Indexes{10000, 20000}));
    EXPECT_EQ(indexesOf(manager->fetchAfter(pivot, 5)), (Indexes{40000}));
    pivot.dbIndex = 0;
    EXPECT_EQ(indexesOf(manager->fetchAfter(pivot, 2)), (Indexes{10000, 20000}));

    // The slotted pane takes its own limit, whatever the caller asks for.
    NotesPreferences(settings).setSlotedNotesLimit(1);
    EXPECT_EQ(indexesOf(manager->fetchLatest(100, true)), (Indexes{20000}));

    // The Void: most recently deleted first.
    EXPECT_EQ(indexesOf(manager->fetchTrash()), (Indexes{35000, 25000}));
    EXPECT_EQ(manager->countTrash(), 2);
    EXPECT_FALSE(manager->fetchAll(false).front().softDeleted);

    const NotePredicate hasBigIndex{QStringLiteral("dbIndex >= ? AND isSlotted = ?"), {30000, false}};
    EXPECT_EQ(indexesOf(manager->fetchMatching(hasBigIndex && NotePredicate::live())), (Indexes{30000, 40000}));
    EXPECT_EQ(indexesOf(manager->fetchMatching(hasBigIndex)), (Indexes{30000, 35000, 40000}));
    EXPECT_TRUE(manager->fetchMatching({QStringLiteral("no_such_column = 1"), {}}).empty());
}

TEST_F(NotesStoreTest, SavesHandTheWrittenNotesToSync)
{
    const Note note = manager->createNote();
    EXPECT_EQ(note.dbIndex, 10000);
    EXPECT_EQ(note.created, clock.now());
    EXPECT_EQ(sink.saves, QList<QUuid>{note.id});
    EXPECT_FALSE(manager->hasChanges());

    // A change to the checklist alone still rewrites the note's row, so it is sent.
    sink.clear();
    Note edited = *manager->fetchNote(note.id);
    auto item = std::make_shared<ChecklistItem>();
    item->content = QStringLiteral("tick");
    edited.checklistManager->checklist.push_back(item);
    manager->saveNote(edited);
    EXPECT_EQ(sink.saves, QList<QUuid>{note.id});
    ASSERT_EQ(recorder.edits.size(), 1u);
    EXPECT_EQ(recorder.edits[0].id, note.id);

    sink.clear();
    clock.advance(std::chrono::minutes(3));
    ASSERT_TRUE(manager->setContent(note.id, QStringLiteral("hello")));
    EXPECT_EQ(manager->fetchNote(note.id)->lastModified, clock.now());
    EXPECT_EQ(sink.saves, QList<QUuid>{note.id});

    const Note blank = manager->createNote();
    ASSERT_TRUE(manager->setContent(blank.id, QStringLiteral(" \n\t ")));
    sink.clear();
    EXPECT_FALSE(manager->deleteIfEmpty(note.id));
    EXPECT_TRUE(manager->deleteIfEmpty(blank.id));
    EXPECT_FALSE(manager->fetchRow(blank.id));
    EXPECT_TRUE(sink.saves.isEmpty());
    EXPECT_EQ(sink.deletions, QList<QUuid>{blank.id});

    // With sync off, the same writes queue nothing.
    NotesPreferences(settings).setSyncWithICloud(false);
    sink.clear();
    const Note quiet = manager->createNote();
    manager->setContent(quiet.id, QStringLiteral("local only"));
    EXPECT_TRUE(manager->deleteRow(quiet.id));
    EXPECT_TRUE(sink.saves.isEmpty());
    EXPECT_TRUE(sink.deletions.isEmpty());
    EXPECT_FALSE(manager->deleteRow(quiet.id));
}

TEST_F(NotesStoreTest, SoftDeleteSendsLiveNotesToTheVoidOnly)
{
    const Note note = manager->createNote();
    const QUuid slotted = insertRaw({.dbIndex = 10000, .isSlotted = true});
    sink.clear();
    clock.advance(std::chrono::hours(1));

    EXPECT_FALSE(manager->softDelete(slotted));
    EXPECT_FALSE(manager->softDelete(QUuid::createUuid()));
    EXPECT_TRUE(sink.saves.isEmpty());

    EXPECT_TRUE(manager->softDelete(note.id));
    const Note gone = *manager->fetchNote(note.id);
    EXPECT_TRUE(gone.softDeleted);
    EXPECT_EQ(gone.deletedAt, clock.now());
    EXPECT_EQ(gone.dbIndex, note.dbIndex);
    EXPECT_EQ(sink.saves, QList<QUuid>{note.id}) << "a deletion syncs as a change of the note";
    EXPECT_EQ(manager->countTrash(), 1);
    EXPECT_TRUE(manager->fetchAll(false).empty());
}

TEST_F(NotesStoreTest, FailedSaveKeepsChangesAndTheNextSaveSendsThem)
{
    const Note note = manager->createNote();
    sink.clear();
    // A check that fails at commit time: every change of a note row adds a dangling
    // reference, which the store refuses when the transaction commits.
    Database &db = stack->database();
    ASSERT_TRUE(db.exec(
        QStringLiteral("CREATE TABLE blocker (note INTEGER REFERENCES notes(objectId) DEFERRABLE INITIALLY DEFERRED);"
                       "CREATE TEMP TRIGGER block AFTER UPDATE ON notes BEGIN INSERT INTO blocker VALUES (-1); END;")))
        << db.lastError().toStdString();

    EXPECT_TRUE(manager->setContent(note.id, QStringLiteral("kept")));
    EXPECT_TRUE(manager->hasChanges());
    EXPECT_TRUE(sink.saves.isEmpty());
    EXPECT_FALSE(manager->save());
    EXPECT_TRUE(sink.saves.isEmpty());

    ASSERT_TRUE(db.exec(QStringLiteral("DROP TRIGGER block; DELETE FROM blocker;"))) << db.lastError().toStdString();
    EXPECT_TRUE(manager->save());
    EXPECT_FALSE(manager->hasChanges());
    EXPECT_EQ(sink.saves, QList<QUuid>{note.id});

    // Committed for everyone, not just visible to this connection.
    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(stack->filePath().toUtf8().constData(), &other), SQLITE_OK);
    sqlite3_stmt *read = nullptr;
    ASSERT_EQ(sqlite3_prepare_v2(other, "SELECT content FROM notes", -1, &read, nullptr), SQLITE_OK);
    ASSERT_EQ(sqlite3_step(read), SQLITE_ROW);
    EXPECT_EQ(QString::fromUtf16(static_cast<const char16_t *>(sqlite3_column_text16(read, 0))),
              QStringLiteral("kept"));
    sqlite3_finalize(read);
    sqlite3_close(other);
}

TEST_F(NotesStoreTest, EditorSavesOnlyRealChangesAndDatesThemOnce)
{
    const Note created = manager->createNote();
    manager->setContent(created.id, QStringLiteral("first"));
    const Note stored = *manager->fetchNote(created.id);
    auto model = std::make_shared<NoteViewModel>(stored);
    NoteViewModelList stackList{model};
    NoteViewModelList slottedList;
    int notified = 0;
    model->observe([&notified](const Note &) { ++notified; });
    sink.clear();
    recorder.edits.clear();
    clock.advance(std::chrono::minutes(10));

    // Ticking a checklist row with the text as it was isn't worth a save.
    Note ticked = stored;
    ticked.checklistManager = std::make_shared<ChecklistManager>();
    ticked.checklistManager->checklist.push_back(std::make_shared<ChecklistItem>());
    ticked.slotIndex = 3;
    EXPECT_FALSE(manager->noteDiffers(ticked));
    manager->saveFromEditor(ticked, &stackList, &slottedList);
    EXPECT_TRUE(sink.saves.isEmpty());
    EXPECT_TRUE(recorder.edits.empty());
    EXPECT_EQ(manager->fetchNote(created.id)->lastModified, stored.lastModified);
    EXPECT_EQ(model->note().lastModified, stored.lastModified);

    Note moved = stored;
    moved.dbIndex += 1;
    EXPECT_TRUE(manager->noteDiffers(moved));
    Note reslotted = stored;
    reslotted.isSlotted = true;
    EXPECT_TRUE(manager->noteDiffers(reslotted));

    Note typed = stored;
    typed.content = QStringLiteral("first, then more");
    manager->saveFromEditor(typed, &stackList, &slottedList);
    EXPECT_EQ(manager->fetchNote(created.id)->content, typed.content);
    EXPECT_EQ(manager->fetchNote(created.id)->lastModified, clock.now());
    EXPECT_EQ(model->note().lastModified, clock.now());
    EXPECT_EQ(notified, 1);
    EXPECT_EQ(sink.saves, QList<QUuid>{created.id});
    ASSERT_EQ(recorder.edits.size(), 1u);
    EXPECT_EQ(recorder.edits[0].lastModified, clock.now());

    // With no lists at hand the row is still written.
    clock.advance(std::chrono::minutes(1));
    typed.content = QStringLiteral("no lists");
    manager->saveFromEditor(typed, nullptr, nullptr);
    EXPECT_EQ(manager->fetchNote(created.id)->content, typed.content);
    EXPECT_EQ(manager->fetchNote(created.id)->lastModified, clock.now());

    // Sync removed the note meanwhile: the editor's save mustn't bring it back.
    manager->deleteRow(created.id);
    sink.clear();
    typed.content = QStringLiteral("too late");
    EXPECT_TRUE(manager->noteDiffers(typed));
    manager->saveFromEditor(typed, &stackList, &slottedList);
    EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM notes")), 0);
    EXPECT_TRUE(sink.saves.isEmpty());
}

TEST_F(NotesStoreTest, ChildRowsAreRewrittenOnEverySaveKeepingTheirIds)
{
    Note note = manager->createNote();
    auto item = std::make_shared<ChecklistItem>();
    item->content = QStringLiteral("a");
    note.checklistManager->checklist.push_back(item);
    manager->saveNote(note);
    const qint64 firstRow = count(QStringLiteral("SELECT objectId FROM checklistItems"));
    manager->saveNote(note);
    EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM checklistItems")), 1);
    EXPECT_NE(count(QStringLiteral("SELECT objectId FROM checklistItems")), firstRow);
    EXPECT_EQ(manager->fetchNote(note.id)->checklistManager->checklist.at(0)->id, item->id);
}

TEST(NotesReloadedNotification, CarriesTheChangedIdsToSubscribers)
{
    NotificationBus bus;
    const QSet<QUuid> changed{QUuid::createUuid(), QUuid::createUuid()};
    QSet<QUuid> received;
    int deliveries = 0;
    auto subscription = bus.subscribe(QStringLiteral("notesManagerReloadedNotes"), [&](const QVariantMap &payload) {
        ++deliveries;
        received = NotesReloadedNotification::changedUUIDs(payload);
    });
    NotesReloadedNotification::post(bus, changed);
    EXPECT_EQ(deliveries, 1);
    EXPECT_EQ(received, changed);

    QVariantMap odd = NotesReloadedNotification::payload({*changed.begin()});
    QVariantList ids = odd.value(QStringLiteral("changedUUIDs")).toList();
    ids.append(QStringLiteral("not an id"));
    odd.insert(QStringLiteral("changedUUIDs"), ids);
    EXPECT_EQ(NotesReloadedNotification::changedUUIDs(odd), QSet<QUuid>{*changed.begin()});
    EXPECT_TRUE(NotesReloadedNotification::changedUUIDs({}).isEmpty());
}
