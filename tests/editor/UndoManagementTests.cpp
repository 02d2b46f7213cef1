#include "editor/UndoManagement.h"
#include "platform/ManualClock.h"

#include <gtest/gtest.h>

using namespace scrivlet;
using namespace std::chrono_literals;

namespace {

using Snapshot = NoteSnippetForUndoManagement;

// One note as an editor holds it: what the history reads each time it looks.
struct EditedNote {
    QUuid id = QUuid::createUuid();
    Snapshot now;

    UndoManagement::SnapshotSource source()
    {
        return [this] { return now; };
    }
    // Types `text` one character at a time, telling the history after each.
    void type(UndoManagement &undo, const QString &text)
    {
        for (const QChar c : text) {
            now.content += c;
            now.selectedRange = {now.content.size(), 0};
            undo.textDidChange();
        }
    }
    void apply(const std::optional<Snapshot> &step)
    {
        ASSERT_TRUE(step);
        now = *step;
    }
};

ChecklistItem row(int index, bool checked)
{
    ChecklistItem item;
    item.index = index;
    item.checked = checked;
    item.verticalPosition = 20.0 * index;
    return item;
}

} // namespace

TEST(UndoManagement, TypingIsFoldedIntoWordsAndUndoTakesWhatWasNotYetRecorded)
{
    ManualClock clock;
    UndoManagement undo(clock);
    EditedNote note;
    undo.setCurrentNote(note.id, note.source());
    EXPECT_FALSE(undo.canUndo());

    // Within a word nothing is recorded; the blank ends the word and, half a second
    // later, the step.
    note.type(undo, QStringLiteral("hello"));
    EXPECT_TRUE(undo.canUndo()) << "the word being typed can be undone";
    note.type(undo, QStringLiteral(" "));
    clock.advance(499ms);
    note.type(undo, QStringLiteral("w")); // a blank more than the last step: the timer starts over
    clock.advance(499ms);
    note.type(undo, QStringLiteral("orld"));
    clock.advance(500ms);
    note.type(undo, QStringLiteral("!"));
    clock.advance(500ms);
    note.type(undo, QStringLiteral(" and more"));

    // Undo first records what was typed since the last step, then goes back over it.
    // The pause after "!" ended a step of its own.
    note.apply(undo.undo());
    EXPECT_EQ(note.now.content, QStringLiteral("hello world!"));
    note.apply(undo.undo());
    EXPECT_EQ(note.now.content, QStringLiteral("hello world"));
    note.apply(undo.undo());
    EXPECT_EQ(note.now.content, QString());
    EXPECT_FALSE(undo.undo());
    EXPECT_FALSE(undo.canUndo());

    // Redo walks forward again; a new step leaves nothing to redo.
    EXPECT_TRUE(undo.canRedo());
    note.apply(undo.redo());
    EXPECT_EQ(note.now.content, QStringLiteral("hello world"));
    EXPECT_EQ(note.now.selectedRange, (TextRange{11, 0})) << "the caret comes back with the step";
    note.type(undo, QStringLiteral("?"));
    undo.flushAndRegisterUndo();
    EXPECT_FALSE(undo.canRedo());
    EXPECT_FALSE(undo.redo());
    note.apply(undo.undo());
    EXPECT_EQ(note.now.content, QStringLiteral("hello world"));

    // Moving the caret alone is no step.
    note.now.selectedRange = {0, 5};
    undo.flushAndRegisterUndo();
    note.apply(undo.undo());
    EXPECT_EQ(note.now.content, QString());
}

TEST(UndoManagement, ABoxOrALinkChangingUnderTheTextIsAStepAtOnce)
{
    ManualClock clock;
    UndoManagement undo(clock);
    EditedNote note;
    note.now.content = QStringLiteral("list\nmilk\neggs");
    note.now.checklistItems = {row(0, false), row(1, false)};
    undo.setCurrentNote(note.id, note.source());

    // A tick changes no text, yet is undone on its own.
    note.now.checklistItems[1].checked = true;
    undo.textDidChange();
    EXPECT_TRUE(undo.canUndo());
    note.apply(undo.undo());
    EXPECT_FALSE(note.now.checklistItems[1].checked);
    note.apply(undo.redo());
    EXPECT_TRUE(note.now.checklistItems[1].checked);

    // A row's wording is not compared, its place is.
    note.now.checklistItems[0].content = QStringLiteral("milk");
    undo.textDidChange();
    EXPECT_FALSE(undo.canRedo()) << "nothing was recorded, so redo is untouched";
    undo.clearRedo();

    // A link whose place moved with the text is the same link; one shortened is a step,
    // and undo brings back its text together with what it stood for.
    Scrivlink link;
    link.fullUrl = QStringLiteral("https://example.com/a/long/path");
    link.shortenedUrl = QStringLiteral("+example.com/long+");
    link.currentRange = {15, 18};
    note.now.content += QStringLiteral(" ") + link.fullUrl;
    note.type(undo, QStringLiteral(" "));
    clock.advance(500ms);
    const QString typed = note.now.content;
    note.now.content.replace(link.fullUrl, link.shortenedUrl);
    note.now.scrivlinks = {link};
    undo.textDidChange();
    note.now.scrivlinks[0].currentRange.location += 1;
    note.now.scrivlinks[0].id = QUuid::createUuid();
    undo.flushAndRegisterUndo();
    note.apply(undo.undo());
    EXPECT_EQ(note.now.content, typed);
    EXPECT_TRUE(note.now.scrivlinks.empty());
    note.apply(undo.redo());
    ASSERT_EQ(note.now.scrivlinks.size(), 1u);
    EXPECT_EQ(note.now.scrivlinks[0].shortenedUrl, link.shortenedUrl);
}

TEST(UndoManagement, EachNoteKeepsItsOwnHistoryWithinBounds)
{
    ManualClock clock;
    UndoManagement undo(clock);
    EditedNote first;
    EditedNote second;
    undo.setCurrentNote(first.id, first.source(), &first);
    first.type(undo, QStringLiteral("one "));

    // Walking to another note records what was pending in the one left.
    undo.setCurrentNote(second.id, second.source(), &second);
    second.type(undo, QStringLiteral("two"));
    undo.setCurrentNote(first.id, first.source(), &first);
    first.apply(undo.undo());
    EXPECT_EQ(first.now.content, QString());
    undo.setCurrentNote(second.id, second.source(), &second);
    second.apply(undo.undo());
    EXPECT_EQ(second.now.content, QString());

    // A closing editor records its pending typing; another editor's closing doesn't
    // take the current one's source away.
    second.type(undo, QStringLiteral("again "));
    undo.editorClosing(&first);
    EXPECT_TRUE(undo.isCurrentEditor(&second));
    undo.editorClosing(&second);
    EXPECT_FALSE(undo.isCurrentEditor(&second));
    undo.setCurrentNote(second.id, second.source(), &second);
    second.apply(undo.undo());
    EXPECT_EQ(second.now.content, QString()) << "the pending word was recorded when its editor closed";

    // At most a hundred steps: the hundred and first drops the oldest.
    EditedNote busy;
    undo.setCurrentNote(busy.id, busy.source(), &busy);
    for (int i = 1; i <= UndoManagement::kMaxSteps + 1; ++i) {
        busy.now.content = QString::number(i);
        undo.flushAndRegisterUndo();
    }
    int steps = 0;
    while (const auto step = undo.undo()) {
        busy.apply(step);
        ++steps;
    }
    EXPECT_EQ(steps, UndoManagement::kMaxSteps);
    EXPECT_EQ(busy.now.content, QStringLiteral("1")) << "the empty note was the step dropped";

    // Twenty notes keep their history; the one looked at longest ago goes first, the
    // current one never.
    std::vector<std::unique_ptr<EditedNote>> many;
    for (int i = 0; i < UndoManagement::kMaxNotes + 5; ++i) {
        clock.advance(1s);
        many.push_back(std::make_unique<EditedNote>());
        undo.setCurrentNote(many.back()->id, many.back()->source(), many.back().get());
    }
    EXPECT_EQ(undo.noteCount(), UndoManagement::kMaxNotes);
    EXPECT_EQ(undo.currentNoteId(), many.back()->id);
    undo.setCurrentNote(busy.id, busy.source(), &busy);
    EXPECT_FALSE(undo.canUndo()) << "an evicted note starts its history anew";
}
