#include "NoteStackFixture.h"

#include "notes/NoteCommands.h"
#include "notes/SlottedNoteDefaults.h"

using namespace scrivlet;
using namespace scrivlet::test;

namespace {

const QString kWarning = QStringLiteral("warning");

} // namespace

class SlottedNotesTest : public NoteStackTest {
protected:
    void setSlot(const QUuid &id, int slot)
    {
        Statement update = stack->database().prepare(QStringLiteral("UPDATE notes SET slotIndex = ?1 WHERE id = ?2"));
        update.bind(1, slot).bind(2, id.toString(QUuid::WithoutBraces));
        ASSERT_TRUE(update.exec()) << update.lastError().toStdString();
    }

    QString slotText(int slot)
    {
        Statement query = stack->database().prepare(
            QStringLiteral("SELECT content FROM notes WHERE isSlotted = 1 AND slotIndex = ?1"));
        query.bind(1, slot);
        return query.step() == Statement::Step::Row ? query.columnText(0) : QStringLiteral("<no slot>");
    }
};

TEST_F(SlottedNotesTest, AFreshStoreHasNineSlotsWithTheirNames)
{
    start(9);
    const auto &slotModels = notes->slottedNoteViewModels();
    ASSERT_EQ(slotModels.size(), 9u);
    const QStringList names{"# Hermes", "# Aphrodite", "# Gaia", "# Ares", "# Zeus", "# Cronus", "# Ouranos",
                            "# Poseidon", "# Hades"};
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(slotModels[std::size_t(i)]->note().slotIndex, i + 1);
        EXPECT_TRUE(slotModels[std::size_t(i)]->note().content.startsWith(names[i]));
    }
    EXPECT_EQ(slotModels[0]->note().content,
              QStringLiteral("# Hermes\n\nThis is your **first of nine** slotted note. \n\nIt'll stay with you.     "));
    EXPECT_EQ(slotModels[8]->note().content, QStringLiteral("# Hades"));
    // Slots stand outside the stack and aren't sent to sync until someone writes in them.
    EXPECT_EQ(notes->noteViewModels().size(), 1u);
    EXPECT_EQ(sink.saves, QList<QUuid>{notes->noteViewModels().front()->id()});
    EXPECT_EQ(notes->ensureSlots(), 0);

    // A raised limit grows the set at the next start; past nine a slot starts empty.
    NotesPreferences(settings).setSlotedNotesLimit(10);
    EXPECT_EQ(notes->ensureSlots(), 1);
    EXPECT_EQ(slotText(10), QString());
    NotesPreferences(settings).setSlotedNotesLimit(0);
    EXPECT_EQ(notes->ensureSlots(), 0);
}

TEST_F(SlottedNotesTest, TheSlottedPaneHasEndsAndRemembersItsPlace)
{
    start(9);
    EXPECT_EQ(notes->slottedIndex(), 0);
    notes->showPreviousNote(true, true);
    EXPECT_EQ(lastPill(), (Pill{"Icarus, you'll burn.", kWarning}));

    notes->showNextNote(true, true);
    EXPECT_EQ(notes->slottedIndex(), 1);
    EXPECT_EQ(NotesPreferences(settings).lastActiveSlottedNote(), 1);

    notes->jumpToSlot(8);
    EXPECT_EQ(notes->currentSlottedNote()->note().content, QStringLiteral("# Hades"));
    notes->jumpToSlot(8);
    EXPECT_EQ(lastPill(), (Pill{"Already on (index: 8)", kWarning}));
    notes->showNextNote(true, true);
    EXPECT_EQ(lastPill(), (Pill{"Cannot escape Sol", kWarning}));
    EXPECT_EQ(notes->slottedIndex(), 8);

    // Edits in a slot are saved from the slotted list, and the next start opens it again.
    auto open = notes->currentSlottedNote();
    Note edited = open->note();
    edited.content = QStringLiteral("# Hades\nunderworld plans");
    open->setNote(edited);
    notes->saveCurrentNote(true);
    EXPECT_EQ(slotText(9), QStringLiteral("# Hades\nunderworld plans"));
    notes->initializeNotes(true);
    EXPECT_EQ(notes->slottedIndex(), 8);
    EXPECT_EQ(notes->currentSlottedNote()->note().content, QStringLiteral("# Hades\nunderworld plans"));

    // Search hits in a slot open the slot.
    notes->jumpToNote(notes->slottedNoteViewModels()[2]->id());
    EXPECT_EQ(lastPill(), (Pill{"Navigated to note", QStringLiteral("success")}));
    EXPECT_EQ(notes->slottedIndex(), 2);
}

TEST_F(SlottedNotesTest, RepairFoldsTwinSlotsAndFillsTheGaps)
{
    NotesPreferences(settings).setSlotedNotesLimit(4);
    const qint64 earlier = clock.now().addSecs(-60).toMSecsSinceEpoch();
    const qint64 later = clock.now().addSecs(-30).toMSecsSinceEpoch();
    // Two machines each made slot 2; the server knows only the older one.
    const QUuid known = insertRaw({.content = QStringLiteral("# Aphrodite\nmine"), .dbIndex = 2, .isSlotted = true,
                                   .lastModified = earlier, .ckChangeTag = QStringLiteral("tag")});
    const QUuid local = insertRaw({.content = QStringLiteral("theirs"), .dbIndex = 5, .isSlotted = true,
                                   .lastModified = later});
    setSlot(known, 2);
    setSlot(local, 2);
    Statement item = stack->database().prepare(
        QStringLiteral("INSERT INTO checklistItems (note, content) SELECT objectId, 'tick' FROM notes WHERE id = ?1"));
    ASSERT_TRUE(item.bind(1, local.toString(QUuid::WithoutBraces)).exec());
    // A slotted row that lost its slot, and a slot the user emptied.
    const QUuid lost = insertRaw({.content = QStringLiteral(""), .dbIndex = 3, .isSlotted = true});
    const QUuid emptied = insertRaw({.content = QStringLiteral(""), .dbIndex = 4, .isSlotted = true});
    setSlot(emptied, 3);

    start(4);
    // Slot 1 went to the row without a slot, slot 4 is new.
    EXPECT_EQ(manager->fetchNote(lost)->slotIndex, 1);
    EXPECT_EQ(slotText(1), SlottedNoteDefaults::defaultText(1));
    EXPECT_EQ(slotText(3), QString()); // emptied text isn't refilled
    EXPECT_EQ(slotText(4), QStringLiteral("# Ares"));
    // Placed one above the highest slotted row that stayed in the slots (the emptied one, 4).
    EXPECT_EQ(count(QStringLiteral("SELECT dbIndex FROM notes WHERE isSlotted = 1 AND slotIndex = 4")), 5);

    const Note keeper = *manager->fetchNote(known);
    EXPECT_TRUE(keeper.content.startsWith(QStringLiteral("# Aphrodite\nmine\n\n---\n(Merged from ") %
                                          local.toString(QUuid::WithoutBraces) % QStringLiteral(" on ")));
    EXPECT_TRUE(keeper.content.endsWith(QStringLiteral(")\ntheirs")));
    EXPECT_EQ(keeper.lastModified, clock.now());
    // The twin's checklist rows now hang off the keeper.
    EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM checklistItems JOIN notes ON notes.objectId = "
                                   "checklistItems.note WHERE notes.id = '") %
                    known.toString(QUuid::WithoutBraces) % QStringLiteral("'")),
              1);
    // The twin falls into the stack instead of being lost.
    const Note twin = *manager->fetchNote(local);
    EXPECT_FALSE(twin.isSlotted);
    EXPECT_EQ(notes->slottedNoteViewModels().size(), 4u);
}

TEST_F(SlottedNotesTest, StackCommandsRefuseInTheSlottedPane)
{
    seedStack(3);
    start(9);
    NoteCommands commands(*notes, settings, bus);
    NotesPreferences preferences(settings);

    EXPECT_FALSE(commands.isInSlottedPane(true)); // no split: the slotted pane isn't shown
    commands.toggleSplit();
    EXPECT_TRUE(preferences.isSplitView());
    EXPECT_TRUE(commands.isInSlottedPane(true));
    EXPECT_FALSE(commands.isInSlottedPane(false));

    commands.deleteOpenNote(true);
    EXPECT_EQ(lastPill(), (Pill{"Slotted notes cannot be deleted", kWarning}));
    commands.promoteOpenNote(true);
    EXPECT_EQ(lastPill(), (Pill{"Slotted notes cannot be moved to front", kWarning}));
    commands.jumpToFront(true);
    EXPECT_EQ(lastPill(), (Pill{"Slotted notes don't have a front position", kWarning}));
    commands.newNote(true, false);
    EXPECT_EQ(lastPill(), (Pill{"New notes can only be created in the ephemeral pane", kWarning}));
    EXPECT_EQ(notes->noteViewModels().size(), 3u);
    EXPECT_EQ(manager->countTrash(), 0);

    // With the slots as the main pane, next and previous walk the slots.
    commands.toggleSplit();
    commands.swapPanes();
    EXPECT_TRUE(preferences.isSlottedMain());
    commands.next(false);
    EXPECT_EQ(notes->slottedIndex(), 1);
    EXPECT_EQ(notes->currentIndex(), 2);
    commands.swapPanes();
    commands.previous(false);
    EXPECT_EQ(openText(), QStringLiteral("note 2"));
}
