#include "NoteStackFixture.h"

#include "notes/NoteCommands.h"
#include "notes/NotesReloadedNotification.h"

#include <set>

using namespace scrivlet;
using namespace scrivlet::test;
using namespace std::chrono_literals;
using Direction = CoreDataNotesManager::SwipeDirection;

namespace {

const QString kSuccess = QStringLiteral("success");
const QString kInfo = QStringLiteral("info");
const QString kWarning = QStringLiteral("warning");

} // namespace

TEST_F(NoteStackTest, StartLoadsTheNewestLiveNotesAndClearsEmptyOnes)
{
    seedStack(3);
    insertRaw({.content = QStringLiteral(""), .dbIndex = 25000});
    insertRaw({.content = QStringLiteral(""), .dbIndex = 40000});
    insertRaw({.content = QStringLiteral("in the void"), .dbIndex = 50000, .softDeleted = 1});
    start();

    EXPECT_EQ(loadedTexts(), (QStringList{"note 1", "note 2", "note 3"}));
    EXPECT_EQ(notes->currentIndex(), 2);
    EXPECT_EQ(notes->currentNoteId(), notes->noteViewModels().back()->id());
    EXPECT_EQ(notes->previouslyViewedIndex(), 2);
    // Empty notes of the last hundred are gone for good, not sent to The Void.
    EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM notes WHERE content = ''")), 0);
    EXPECT_EQ(manager->countTrash(), 1);
}

TEST_F(NoteStackTest, AnEmptyStackGetsOneNoteWithNothingOlder)
{
    start();
    ASSERT_EQ(notes->noteViewModels().size(), 1u);
    EXPECT_EQ(openText(), QString());
    EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM notes WHERE isSlotted = 0")), 1);

    notes->showPreviousNote(true, false);
    EXPECT_EQ(lastPill(), (Pill{"No older notes", kWarning}));
    EXPECT_EQ(notes->currentIndex(), 0);
}

TEST_F(NoteStackTest, LaunchWithNewNoteAddsOneOnTopOfAWrittenNote)
{
    seedStack(2);
    NotesPreferences(settings).setLaunchWithNewNote(true);
    start();
    EXPECT_EQ(loadedTexts(), (QStringList{"note 1", "note 2", ""}));
    EXPECT_EQ(notes->currentIndex(), 2);
}

TEST_F(NoteStackTest, NextPastTheNewestMakesANoteUnlessTheNewestIsEmpty)
{
    seedStack(2);
    start();
    std::vector<CoreDataNotesManager::Change> changes;
    notes->addObserver([&](CoreDataNotesManager::Change change) { changes.push_back(change); });

    notes->showNextNote(true, false);
    EXPECT_EQ(lastPill(), (Pill{"New note created", kSuccess}));
    EXPECT_EQ(loadedTexts(), (QStringList{"note 1", "note 2", ""}));
    EXPECT_EQ(notes->currentIndex(), 2);
    EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM notes")), 3);
    EXPECT_NE(std::find(changes.begin(), changes.end(), CoreDataNotesManager::Change::currentIndex), changes.end());

    changes.clear();
    notes->showNextNote(true, false);
    EXPECT_EQ(lastPill(), (Pill{"Already at latest", kWarning}));
    EXPECT_EQ(notes->noteViewModels().size(), 3u);
    EXPECT_EQ(std::count(changes.begin(), changes.end(), CoreDataNotesManager::Change::currentIndex), 0);

    // While navigation is blocked nothing moves and nothing is said.
    notes->setNavigationBlocked([] { return true; });
    const auto said = pills.size();
    notes->showPreviousNote(true, false);
    notes->jumpToLatest();
    EXPECT_EQ(notes->currentIndex(), 2);
    EXPECT_EQ(pills.size(), said);
}

TEST_F(NoteStackTest, WalkingOlderSkipsDeletedNotesAndLoadsMoreNearTheEnd)
{
    const auto ids = seedStack(250);
    start();
    ASSERT_EQ(notes->noteViewModels().size(), 100u);
    EXPECT_EQ(loadedTexts().front(), QStringLiteral("note 151"));

    // Walk down until ten live notes are left below: still no load.
    for (int step = 0; step < 89; ++step)
        notes->showPreviousNote(true, false);
    EXPECT_EQ(notes->noteViewModels().size(), 100u);
    EXPECT_EQ(openText(), QStringLiteral("note 161"));
    // One more and the next hundred come in below, without a jump for the user.
    notes->showPreviousNote(true, false);
    EXPECT_EQ(notes->noteViewModels().size(), 200u);
    EXPECT_EQ(openText(), QStringLiteral("note 160"));
    EXPECT_EQ(loadedTexts().front(), QStringLiteral("note 51"));
    EXPECT_TRUE(pills.empty());

    // A note removed in this run is stepped over both ways, silently.
    const auto older = notes->noteViewModels()[std::size_t(notes->currentIndex() - 1)];
    ASSERT_EQ(older->note().content, QStringLiteral("note 159"));
    notes->removeNote(older, std::nullopt);
    notes->showPreviousNote(true, false);
    EXPECT_EQ(openText(), QStringLiteral("note 158"));
    notes->showNextNote(true, false);
    EXPECT_EQ(openText(), QStringLiteral("note 160"));
    EXPECT_TRUE(pills.empty());
    EXPECT_EQ(manager->fetchNote(ids[158])->softDeleted, true);
}

TEST_F(NoteStackTest, NewNoteIsRefusedWhileAnEmptyNoteIsOnTop)
{
    seedStack(2);
    start();

    const auto created = notes->newNote(std::nullopt, false);
    EXPECT_EQ(lastPill(), (Pill{"New note created", kSuccess}));
    EXPECT_EQ(created, notes->currentNote());
    EXPECT_EQ(notes->currentIndex(), 2);

    notes->newNote(std::nullopt, false);
    EXPECT_EQ(lastPill(), (Pill{"Don't waste trees. Use this note.", kWarning}));
    EXPECT_EQ(notes->noteViewModels().size(), 3u);

    notes->showPreviousNote(true, false);
    ASSERT_EQ(openText(), QStringLiteral("note 2"));
    notes->newNote(std::nullopt, false);
    EXPECT_EQ(lastPill(), (Pill{"Use latest empty note", kInfo}));
    EXPECT_EQ(notes->currentIndex(), 2);

    // The quiet form (a request the user didn't make) says nothing when it reuses a note.
    notes->showPreviousNote(true, false);
    pills.clear();
    notes->newNote(std::nullopt, true);
    notes->newNote(std::nullopt, true);
    EXPECT_TRUE(pills.empty());
    EXPECT_EQ(notes->currentIndex(), 2);

    // Text handed in lands in the reused note and is saved.
    const auto reused = notes->newNote(QStringLiteral("from the clipboard"), true);
    EXPECT_EQ(reused->note().content, QStringLiteral("from the clipboard"));
    EXPECT_EQ(manager->fetchNote(reused->id())->content, QStringLiteral("from the clipboard"));
    // ...and a note made with text still says so, even quietly.
    notes->newNote(QStringLiteral("second"), true);
    EXPECT_EQ(lastPill(), (Pill{"New note created", kSuccess}));
    EXPECT_EQ(loadedTexts(), (QStringList{"note 1", "note 2", "from the clipboard", "second"}));
}

TEST_F(NoteStackTest, EmptyNotesLeftBehindAreRemovedByDirection)
{
    seedStack(3);
    start();
    NoteCommands commands(*notes, settings, bus);

    // An empty top note survives a walk down and back, and down again.
    commands.newNote(false, false);
    commands.previous(false);
    EXPECT_EQ(notes->noteViewModels().size(), 4u);
    commands.next(false);
    commands.previous(false);
    EXPECT_TRUE(notes->deletedNotes().isEmpty());
    EXPECT_EQ(openText(), QStringLiteral("note 3"));

    // A note emptied by the user and left towards newer goes.
    pills.clear();
    type(QString());
    const QUuid emptied = *notes->currentNoteId();
    commands.next(false);
    EXPECT_EQ(pills.front(), (Pill{"Empty note deleted", kInfo}));
    EXPECT_TRUE(notes->deletedNotes().contains(emptied));
    EXPECT_FALSE(manager->fetchRow(emptied)); // empty notes never reach The Void

    // Left towards older, a note goes unless it is the newest.
    notes->showPreviousNote(true, false); // skips the deleted one, lands on note 2
    notes->cleanUpAfterMove(Direction::right);
    ASSERT_EQ(openText(), QStringLiteral("note 2"));
    type(QString());
    commands.previous(false);
    EXPECT_EQ(lastPill(), (Pill{"Empty note deleted", kInfo}));
    EXPECT_EQ(notes->deletedNotes().size(), 2);

    // A jump leaves an emptied note behind too; `none` never removes anything.
    type(QString());
    notes->saveCurrentNote(false);
    const QUuid first = *notes->currentNoteId();
    notes->jumpToLatest();
    notes->cleanUpAfterMove(Direction::none);
    EXPECT_FALSE(notes->deletedNotes().contains(first));
    EXPECT_EQ(notes->previouslyViewedIndex(), notes->currentIndex());
    notes->jumpToNote(first);
    notes->cleanUpAfterMove(Direction::jump);
    notes->jumpToLatest();
    notes->cleanUpAfterMove(Direction::jump);
    EXPECT_TRUE(notes->deletedNotes().contains(first));

    // Cleaning drops the deleted notes from memory and keeps the open note open.
    const QUuid open = *notes->currentNoteId();
    notes->cleanUpDeletedArray();
    EXPECT_TRUE(notes->deletedNotes().isEmpty());
    EXPECT_EQ(loadedTexts(), (QStringList{""}));
    EXPECT_EQ(notes->currentNoteId(), open);
    EXPECT_EQ(notes->currentIndex(), 0);
}

TEST_F(NoteStackTest, DeleteAsksUnlessToldNotToAndKeepsTheLastKeystrokes)
{
    seedStack(3);
    start();

    // Cancel with the box ticked: nothing goes, but the question won't come again.
    alerts.queueAnswer(1, true);
    notes->deleteNote(notes->currentNote());
    ASSERT_EQ(alerts.asked().size(), 1u);
    const Alerts::Request &asked = alerts.asked().front();
    EXPECT_EQ(asked.title, QStringLiteral("Delete Note"));
    EXPECT_EQ(asked.text, QStringLiteral("Impermanence will set you free."));
    EXPECT_EQ(asked.buttons, (QStringList{"Send to The Void", "Cancel"}));
    EXPECT_EQ(asked.suppressionTitle, QStringLiteral("Don't ask again."));
    EXPECT_EQ(manager->countTrash(), 0);
    EXPECT_TRUE(TutorialPreferences(settings).suppressDeleteWarning());

    type(QStringLiteral("note 3, last words"));
    notes->deleteNote(notes->currentNote());
    EXPECT_EQ(alerts.asked().size(), 1u);
    EXPECT_EQ(lastPill(), (Pill{"Note deleted", kSuccess}));
    EXPECT_EQ(openText(), QStringLiteral("note 2"));
    const auto trash = manager->fetchTrash();
    ASSERT_EQ(trash.size(), 1u);
    EXPECT_EQ(trash.front().content, QStringLiteral("note 3, last words"));
    EXPECT_EQ(trash.front().deletedAt, clock.now());

    // A slotted note is never deleted here.
    Note slotted = notes->currentNote()->note();
    slotted.isSlotted = true;
    notes->deleteNote(std::make_shared<NoteViewModel>(slotted));
    EXPECT_EQ(lastPill(), (Pill{"Slotted notes cannot be deleted", kWarning}));
}

TEST_F(NoteStackTest, DeletingTheOnlyNoteNeedsTextAndLeavesAFreshNote)
{
    TutorialPreferences(settings).setSuppressDeleteWarning(true);
    start();
    notes->deleteNote(notes->currentNote());
    EXPECT_EQ(lastPill(), (Pill{"Nothing to delete", kWarning}));
    EXPECT_TRUE(notes->deletedNotes().isEmpty());

    type(QStringLiteral("the only note"));
    const QUuid only = *notes->currentNoteId();
    notes->deleteNote(notes->currentNote());
    ASSERT_GE(pills.size(), 2u);
    EXPECT_EQ(pills[pills.size() - 2], (Pill{"Note deleted", kSuccess}));
    EXPECT_EQ(lastPill(), (Pill{"New note created", kSuccess}));
    EXPECT_EQ(openText(), QString());
    EXPECT_NE(notes->currentNoteId(), only);
    EXPECT_TRUE(manager->fetchNote(only)->softDeleted);
}

TEST_F(NoteStackTest, PromoteMakesAnOlderNoteTheNewest)
{
    const auto ids = seedStack(150);
    start();
    const Note before = *manager->fetchNote(ids[120]);

    notes->setCurrentIndex(notes->currentIndex() - 29); // note 121
    ASSERT_EQ(openText(), QStringLiteral("note 121"));
    notes->newNote(std::nullopt, true); // an empty note on top, which the promotion replaces
    notes->setCurrentIndex(notes->currentIndex() - 30);
    notes->promoteNote(ids[120]);
    EXPECT_EQ(lastPill(), (Pill{"Promoted note to front", kSuccess}));
    EXPECT_EQ(openText(), QStringLiteral("note 121"));
    EXPECT_EQ(notes->currentIndex(), int(notes->noteViewModels().size()) - 1);
    EXPECT_EQ(notes->deletedNotes().size(), 1);

    // Saving the open note afterwards keeps the new place.
    notes->saveCurrentNote(false);
    const Note after = *manager->fetchNote(ids[120]);
    EXPECT_EQ(after.content, before.content);
    EXPECT_EQ(after.created, before.created);
    for (const Note &other : manager->fetchAll(false)) {
        if (other.id != after.id) {
            EXPECT_LT(other.dbIndex, after.dbIndex);
        }
    }

    notes->promoteNote(ids[120]);
    EXPECT_EQ(lastPill(), (Pill{"Note is already first", kWarning}));
    notes->promoteNote(QUuid::createUuid());
    EXPECT_EQ(lastPill(), (Pill{"Note not found.", kWarning}));

    // A note outside the loaded window comes in on top.
    notes->promoteNote(ids[9]);
    EXPECT_EQ(lastPill(), (Pill{"Promoted note to front", kSuccess}));
    EXPECT_EQ(openText(), QStringLiteral("note 10"));
    EXPECT_GT(manager->fetchNote(ids[9])->dbIndex, after.dbIndex);
}

TEST_F(NoteStackTest, JumpToNoteLoadsTheGapSoTheWindowStaysWhole)
{
    const auto ids = seedStack(300);
    start();
    ASSERT_EQ(loadedTexts().front(), QStringLiteral("note 201"));

    notes->jumpToNote(ids[19]);
    EXPECT_EQ(lastPill(), (Pill{"Navigated to note", kSuccess}));
    EXPECT_EQ(openText(), QStringLiteral("note 20"));
    const QStringList loaded = loadedTexts();
    ASSERT_EQ(loaded.size(), 281);
    for (int i = 0; i < loaded.size(); ++i)
        ASSERT_EQ(loaded[i], QStringLiteral("note %1").arg(20 + i));

    notes->jumpToNote(ids[19]);
    EXPECT_EQ(lastPill(), (Pill{"Already on this note", kWarning}));
    notes->jumpToNote(ids[299]);
    EXPECT_EQ(openText(), QStringLiteral("note 300"));
    notes->jumpToNote(QUuid::createUuid());
    EXPECT_EQ(lastPill(), (Pill{"Note not found", kWarning}));

    // A note that arrived on top after loading is reached the same way.
    const QUuid arrived = insertRaw({.content = QStringLiteral("from afar"), .dbIndex = 3020000});
    notes->jumpToNote(arrived);
    EXPECT_EQ(openText(), QStringLiteral("from afar"));
    EXPECT_EQ(notes->currentIndex(), 281);
}

TEST_F(NoteStackTest, TrimmingKeepsTenOlderNotesBelowTheOpenOne)
{
    seedStack(250);
    start();
    for (int step = 0; step < 95; ++step)
        notes->showPreviousNote(true, false);
    ASSERT_EQ(notes->noteViewModels().size(), 200u);
    ASSERT_EQ(openText(), QStringLiteral("note 155"));
    const int before = notes->currentIndex();

    bus.post(QStringLiteral("cleanUpDeletedArray"));
    EXPECT_EQ(notes->currentIndex(), 10);
    EXPECT_EQ(openText(), QStringLiteral("note 155"));
    EXPECT_EQ(loadedTexts().front(), QStringLiteral("note 145"));
    EXPECT_EQ(loadedTexts().back(), QStringLiteral("note 250"));
    // The note seen before keeps its identity through the trim.
    EXPECT_EQ(notes->noteViewModels()[std::size_t(notes->previouslyViewedIndex())]->note().content,
              QStringLiteral("note 250"));

    // A short window, or one opened near its bottom, is left alone.
    bus.post(QStringLiteral("cleanUpDeletedArray"));
    EXPECT_EQ(notes->noteViewModels().size(), std::size_t(200 - (before - 10)));
}

TEST_F(NoteStackTest, OutsideChangesReloadOnceTheyHaveSettled)
{
    const auto ids = seedStack(5);
    start();
    notes->setCurrentIndex(2);
    std::vector<QSet<QUuid>> reloads;
    auto watch = bus.subscribe(NotesReloadedNotification::name(), [&](const QVariantMap &payload) {
        reloads.push_back(NotesReloadedNotification::changedUUIDs(payload));
    });

    const QUuid arrived = insertRaw({.content = QStringLiteral("from another machine"), .dbIndex = 60000});
    notes->reloadAfterRemoteChanges({arrived});
    clock.advance(300ms);
    manager->setContent(ids[0], QStringLiteral("note 1, edited elsewhere"));
    notes->reloadAfterRemoteChanges({ids[0]});
    clock.advance(300ms);
    EXPECT_TRUE(reloads.empty());
    clock.advance(200ms);
    ASSERT_EQ(reloads.size(), 1u);
    EXPECT_EQ(reloads.front(), (QSet<QUuid>{arrived, ids[0]}));
    EXPECT_EQ(loadedTexts().back(), QStringLiteral("from another machine"));
    EXPECT_EQ(loadedTexts().front(), QStringLiteral("note 1, edited elsewhere"));
    EXPECT_EQ(openText(), QStringLiteral("note 3")); // the user's place is kept by id

    // "refetchNotes" answers on the main loop, then drops notes deleted meanwhile.
    TutorialPreferences(settings).setSuppressDeleteWarning(true);
    notes->deleteNote(notes->currentNote());
    bus.post(QStringLiteral("refetchNotes"));
    EXPECT_EQ(notes->deletedNotes().size(), 1);
    clock.advance(0ms);
    EXPECT_TRUE(notes->deletedNotes().isEmpty());
    EXPECT_EQ(loadedTexts(), (QStringList{"note 1, edited elsewhere", "note 2", "note 4", "note 5",
                                          "from another machine"}));
    EXPECT_EQ(openText(), QStringLiteral("note 2"));

    // "saveCurrentNote" writes the open note.
    type(QStringLiteral("note 2, saved on resign"));
    bus.post(QStringLiteral("saveCurrentNote"));
    EXPECT_EQ(manager->fetchNote(ids[1])->content, QStringLiteral("note 2, saved on resign"));
}
