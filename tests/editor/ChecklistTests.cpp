#include "keywords/KeywordTestEnvironment.h"

#include "editor/CheckTriggers.h"
#include "editor/ChecklistBuilder.h"
#include "editor/ChecklistLayout.h"
#include "editor/ChecklistPass.h"
#include "editor/ChecklistToggle.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace scrivlet {
namespace {

using testing::KeywordTestEnvironment;

// What a row says about its line, without the identity that each rebuild renews.
struct Row {
    QString content;
    bool checked;
    bool hidden;
    TextRange range;
    int index;
    friend bool operator==(const Row &, const Row &) = default;
};

std::ostream &operator<<(std::ostream &os, const Row &row)
{
    return os << '{' << row.content.toStdString() << ", checked " << row.checked << ", hidden " << row.hidden << ", "
              << row.range.location << '+' << row.range.length << ", #" << row.index << '}';
}

std::vector<Row> rows(const ChecklistManager &manager)
{
    std::vector<Row> out;
    for (const auto &item : manager.checklist)
        out.push_back({item->content, item->checked, item->isHidden, item->responsibilityRange, item->index});
    return out;
}

const CheckTriggers kDefaultTriggers({QStringLiteral("/x"), QStringLiteral("done")}, QStringLiteral("/x"));

std::vector<Row> fullRebuild(const QString &text)
{
    ChecklistManager manager;
    ChecklistBuilder::createAllCheckboxesFromText(text, std::nullopt, manager, kDefaultTriggers);
    return rows(manager);
}

// A list note open in an editor with its checklist pass, as the app and the command line
// have it.
class ListNote : public ::testing::Test {
protected:
    void open(const QString &text)
    {
        Note note;
        note.content = text;
        noteViewModel = std::make_unique<NoteViewModel>(std::move(note));
        session = std::make_unique<NoteEditorSession>(storage, *noteViewModel, env.context, nullptr,
                                                      QStringLiteral("left"));
        pass = std::make_unique<ChecklistPass>(*session, env.context);
        session->open();
    }

    void type(const QString &text)
    {
        session->willChangeText(storage.selectedRange(), text, UserActionType::keydown);
        storage.type(text);
    }

    void click(int index, const QString &editorId = QStringLiteral("left"))
    {
        const auto item = checklist().at(std::size_t(index));
        item->checked = !item->checked;
        env.bus.post(QString::fromUtf16(ChecklistToggle::kNotification),
                     {{QStringLiteral("checked"), item->checked},
                      {QStringLiteral("item"), QVariant::fromValue(item)},
                      {QStringLiteral("editorId"), editorId}});
    }

    const std::vector<std::shared_ptr<ChecklistItem>> &checklist() const
    {
        return noteViewModel->note().checklistManager->checklist;
    }

    KeywordTestEnvironment env;
    AttributedText storage;
    std::unique_ptr<NoteViewModel> noteViewModel;
    std::unique_ptr<NoteEditorSession> session;
    std::unique_ptr<ChecklistPass> pass;
};

TEST(ChecklistRows, EveryNonEmptyLineBelowTheFirstIsARow)
{
    const QString text = QStringLiteral("list\n# Groceries\nBuy milk /X\n\n  \n// later\nDone\r\n\r\nundone");
    const std::vector<Row> expected = {
        {QStringLiteral("# Groceries\n"), false, true, {5, 12}, 0},
        {QStringLiteral("Buy milk /X\n"), true, false, {17, 12}, 1},
        // The empty line takes no row but its place counts in the ranges below it.
        {QStringLiteral("  \n"), false, false, {30, 3}, 2},
        {QStringLiteral("// later\n"), false, true, {33, 9}, 3},
        {QStringLiteral("Done\r\n"), true, false, {42, 6}, 4},
        // The last line has no line feed to answer for.
        {QStringLiteral("undone"), true, false, {50, 6}, 5},
    };
    EXPECT_EQ(fullRebuild(text), expected);

    EXPECT_TRUE(fullRebuild(QStringLiteral("list")).empty());
    EXPECT_TRUE(fullRebuild(QStringLiteral("list\n\n\n")).empty());
}

TEST(ChecklistRows, StartingIndexCountsRowsBeforeThePosition)
{
    const QString text = QStringLiteral("list\na\n\nbb\ncc");
    EXPECT_EQ(ChecklistBuilder::startingChecklistIndex(text, 0), 0);
    EXPECT_EQ(ChecklistBuilder::startingChecklistIndex(text, 6), 0); // just after "a"
    EXPECT_EQ(ChecklistBuilder::startingChecklistIndex(text, 7), 1); // the empty line
    EXPECT_EQ(ChecklistBuilder::startingChecklistIndex(text, 10), 1);
    EXPECT_EQ(ChecklistBuilder::startingChecklistIndex(text, 13), 2);
    EXPECT_EQ(ChecklistBuilder::startingChecklistIndex(text, 14), std::nullopt);
    EXPECT_EQ(ChecklistBuilder::startingChecklistIndex(QStringLiteral("list"), 2), std::nullopt);
}

TEST(ChecklistRows, RebuildFromAnEditEqualsAFullRebuild)
{
    struct Edit {
        const char16_t *before;
        qsizetype at;
        qsizetype removed;
        const char16_t *inserted;
    };
    const Edit edits[] = {
        {u"list\nmilk\neggs\nbread", 9, 0, u"\nflour"},      // a new row in the middle
        {u"list\nmilk\neggs\nbread", 10, 5, u""},             // a row deleted
        {u"list\nmilk\neggs\nbread", 14, 0, u" /x"},          // a row ticked by typing
        {u"list\nmilk\n\neggs", 10, 0, u"# Dairy"},           // a blank line becomes a header
        {u"list\nmilk\neggs", 14, 0, u"\n\n\nham"},            // rows added at the end
        {u"list\nmilk\neggs\nham", 9, 5, u""},                // two lines joined
        {u"list\nmilk\neggs", 4, 0, u"\n🍎 apples"},           // before the first row
    };
    for (const Edit &edit : edits) {
        const QString before = QString::fromUtf16(edit.before);
        QString after = before;
        after.replace(edit.at, edit.removed, QString::fromUtf16(edit.inserted));
        ChecklistManager manager;
        ChecklistBuilder::createAllCheckboxesFromText(before, std::nullopt, manager, kDefaultTriggers);
        ChecklistBuilder::createAllCheckboxesFromText(after, edit.at, manager, kDefaultTriggers);
        EXPECT_EQ(rows(manager), fullRebuild(after)) << after.toStdString();
    }

    // A position past every row is refused, and the rows stay as they were.
    ChecklistManager manager;
    ChecklistBuilder::createAllCheckboxesFromText(QStringLiteral("list\nmilk"), std::nullopt, manager,
                                                  kDefaultTriggers);
    ChecklistBuilder::createAllCheckboxesFromText(QStringLiteral("list\nmilk\n"), 10, manager, kDefaultTriggers);
    EXPECT_EQ(rows(manager), fullRebuild(QStringLiteral("list\nmilk")));
}

TEST(ChecklistRows, RangesAreCountedInUtf16Units)
{
    // The apple is two units, the accent of "café" one more.
    const QString text = QStringLiteral("list\n🍎 apples\ncafe\u0301 /x\nok");
    const auto rebuilt = fullRebuild(text);
    ASSERT_EQ(rebuilt.size(), 3u);
    EXPECT_EQ(rebuilt[0].range, (TextRange{5, 10}));
    EXPECT_EQ(rebuilt[1].range, (TextRange{15, 9}));
    EXPECT_TRUE(rebuilt[1].checked);
    EXPECT_EQ(rebuilt[2].range, (TextRange{24, 2}));
    EXPECT_EQ(text.mid(rebuilt[2].range.location, rebuilt[2].range.length), QStringLiteral("ok"));
}

TEST(ChecklistRows, CheckStateAndBlankLineTests)
{
    EXPECT_TRUE(ChecklistBuilder::checkStateDiffers(u"milk", u"milk /x", kDefaultTriggers));
    EXPECT_TRUE(ChecklistBuilder::checkStateDiffers(u"milk DONE ", u"milk DON", kDefaultTriggers));
    EXPECT_FALSE(ChecklistBuilder::checkStateDiffers(u"milk /x", u"milks /x", kDefaultTriggers));
    EXPECT_FALSE(ChecklistBuilder::checkStateDiffers(u"mil", u"milk", kDefaultTriggers));
    EXPECT_TRUE(ChecklistBuilder::checkStateDiffers(u"milk", u"", kDefaultTriggers));

    EXPECT_TRUE(ChecklistBuilder::blankLineBecameText(u"list\n  \nx", {6, 0}, u"a"));
    EXPECT_FALSE(ChecklistBuilder::blankLineBecameText(u"list\nab\nx", {6, 0}, u"c"));
    EXPECT_FALSE(ChecklistBuilder::blankLineBecameText(u"list\n\nx", {5, 0}, u" "));
    EXPECT_FALSE(ChecklistBuilder::blankLineBecameText(u"list", {3, 5}, u"a"));
}

TEST_F(ListNote, TickingAndClearingABoxEditsTheRow)
{
    open(QStringLiteral("list\nmilk\nbread done\neggs"));
    ASSERT_EQ(checklist().size(), 3u);

    click(0);
    EXPECT_EQ(storage.string(), QStringLiteral("list\nmilk /x\nbread done\neggs"));
    EXPECT_EQ(noteViewModel->note().content, storage.string());
    ASSERT_EQ(checklist().size(), 3u);
    EXPECT_TRUE(checklist()[0]->checked);
    // The row's words are struck through, the check word is lighter still.
    const TextAttributes words = storage.attributesAt(5);
    EXPECT_EQ(words.strikethroughStyle, 1);
    EXPECT_EQ(words.foreground, QStringLiteral("typeLight"));
    ASSERT_TRUE(words.custom);
    EXPECT_EQ(words.custom->tag, QStringLiteral("checkbox"));
    EXPECT_EQ(storage.attributesAt(10).foreground, QStringLiteral("typeSuperlight"));

    click(0);
    EXPECT_EQ(storage.string(), QStringLiteral("list\nmilk\nbread done\neggs"));
    EXPECT_FALSE(checklist()[0]->checked);
    EXPECT_EQ(storage.attributesAt(5).strikethroughStyle, 0);
    EXPECT_FALSE(storage.attributesAt(5).custom);

    // "done" is a check word too, and goes by its own length.
    click(1);
    EXPECT_EQ(storage.string(), QStringLiteral("list\nmilk\nbread\neggs"));

    // A click in the other half of a split view is not this editor's.
    click(2, QStringLiteral("right"));
    EXPECT_EQ(storage.string(), QStringLiteral("list\nmilk\nbread\neggs"));
}

TEST_F(ListNote, AClearThatFindsNoTriggerAtTheVeryEndSpringsBack)
{
    open(QStringLiteral("list\nmilk /X \nham"));
    ASSERT_TRUE(checklist()[0]->checked);
    click(0);
    EXPECT_EQ(storage.string(), QStringLiteral("list\nmilk /X \nham"));
    EXPECT_TRUE(checklist()[0]->checked);

    const auto edit = ChecklistToggle::edit(QStringLiteral("list\nmilk DONE"), 5, false, kDefaultTriggers);
    ASSERT_TRUE(edit);
    EXPECT_EQ(edit->replacement, QStringLiteral("milk"));
    EXPECT_EQ(edit->range, (TextRange{5, 9}));
    EXPECT_FALSE(ChecklistToggle::edit(QStringLiteral("list\nmilk"), 6, true, kDefaultTriggers));
}

TEST_F(ListNote, CheckWordsFollowTheSettings)
{
    env.keywords.setTriggers(KeywordID::CHECK, {QStringLiteral("ok")});
    env.keywords.setMainTrigger(KeywordID::CHECK, QStringLiteral("ok"));
    open(QStringLiteral("list\nmilk OK\nbread /x\neggs"));
    ASSERT_EQ(checklist().size(), 3u);
    EXPECT_TRUE(checklist()[0]->checked);
    EXPECT_FALSE(checklist()[1]->checked);
    // A keyword keeps its own name among its triggers.
    EXPECT_FALSE(checklist()[2]->checked);

    click(2);
    EXPECT_EQ(storage.string(), QStringLiteral("list\nmilk OK\nbread /x\neggs ok"));
    click(0);
    EXPECT_EQ(storage.string(), QStringLiteral("list\nmilk\nbread /x\neggs ok"));
}

TEST_F(ListNote, TypingTicksRowsAndKeepsTheirPlaces)
{
    open(QStringLiteral("list\nmilk\neggs"));
    const QUuid eggs = checklist()[1]->id;
    storage.setSelectedRange({9, 0});
    type(QStringLiteral("s"));
    // Typing inside a row leaves the rows alone.
    EXPECT_EQ(checklist()[1]->id, eggs);
    type(QStringLiteral(" /x"));
    EXPECT_EQ(storage.string(), QStringLiteral("list\nmilks /x\neggs"));
    EXPECT_TRUE(checklist()[0]->checked);
    EXPECT_EQ(checklist()[1]->responsibilityRange, (TextRange{14, 4}));

    storage.setSelectedRange({storage.length(), 0});
    type(QStringLiteral("\nham"));
    ASSERT_EQ(checklist().size(), 3u);
    EXPECT_EQ(checklist()[2]->content, QStringLiteral("ham"));
    EXPECT_EQ(checklist()[2]->index, 2);
    // Each row sits one line (16 points times 1.2) below the one before.
    EXPECT_DOUBLE_EQ(checklist()[2]->verticalPosition, 3 * 16 * 1.2);
}

TEST(ChecklistPositions, RowsSitBelowWrappedAndEmptyLines)
{
    AttributedText storage;
    TextAttributes typing;
    typing.font = FontSpec{QStringLiteral("Menlo"), 10};
    typing.paragraph = ParagraphSpec{1.5, 0, 0, 0};
    storage.setTypingAttributes(typing);
    storage.setLayoutColumns(20);

    // A 45-unit row wraps onto three lines of 15 points.
    const QString text = QStringLiteral("list\n") + QString(45, u'w') + QStringLiteral("\n\nnext\nlast");
    ChecklistManager manager;
    ChecklistBuilder::createAllCheckboxesFromText(text, std::nullopt, manager, kDefaultTriggers);
    NotificationBus bus;
    ChecklistLayout::insertVerticalPositions(storage, text, 0, manager, 0, bus);
    ASSERT_EQ(manager.checklist.size(), 3u);
    EXPECT_DOUBLE_EQ(manager.checklist[0]->verticalPosition, 15);
    EXPECT_DOUBLE_EQ(manager.checklist[1]->verticalPosition, 15 + 45 + 15);
    EXPECT_DOUBLE_EQ(manager.checklist[2]->verticalPosition, 15 + 45 + 15 + 15);

    // From a position on, only the rows from there are placed, at the same places.
    for (const auto &item : manager.checklist)
        item->verticalPosition = 0;
    ChecklistLayout::insertVerticalPositions(storage, text, text.indexOf(u"next"), manager, 0, bus);
    EXPECT_EQ(manager.checklist[0]->verticalPosition, 0);
    EXPECT_DOUBLE_EQ(manager.checklist[1]->verticalPosition, 75);
    EXPECT_DOUBLE_EQ(manager.checklist[2]->verticalPosition, 90);

    EXPECT_TRUE(ChecklistLayout::textHeightGrew(QString(20, u'w'), QString(21, u'w'), storage));
    EXPECT_FALSE(ChecklistLayout::textHeightGrew(QString(19, u'w'), QString(20, u'w'), storage));

    // Spacing stands before every paragraph below the first.
    EXPECT_EQ(ChecklistLayout::positionsFromHeights(u"list\na\n\nb", {10, 10, 10, 10}, 0, 2),
              (std::vector<double>{12, 36}));
}

TEST(ChecklistPositions, RowsOutOfStepWithTheTextAreReported)
{
    AttributedText storage;
    NotificationBus bus;
    std::vector<QVariantMap> pills;
    const auto subscription = bus.subscribe(QStringLiteral("MessagePillNotification"),
                                            [&](const QVariantMap &payload) { pills.push_back(payload); });
    ChecklistManager manager;
    ChecklistBuilder::createAllCheckboxesFromText(QStringLiteral("list\na\nb\nc"), std::nullopt, manager,
                                                  kDefaultTriggers);
    ChecklistLayout::insertVerticalPositions(storage, QStringLiteral("list\na\nb"), 0, manager, 0, bus);
    ASSERT_EQ(pills.size(), 1u);
    EXPECT_EQ(pills[0].value(QStringLiteral("message")).toString(),
              QStringLiteral("A critical error occurred with list. My fault. Please DM u/marlowquill"));
    EXPECT_EQ(pills[0].value(QStringLiteral("type")).toString(), QStringLiteral("error"));
    // The positions there are still given out.
    EXPECT_GT(manager.checklist[1]->verticalPosition, 0);
    EXPECT_EQ(manager.checklist[2]->verticalPosition, 0);
}

TEST(ChecklistRows, ALongListIsRebuiltWholeAndFromTheEnd)
{
    QString text = QStringLiteral("todo");
    for (int i = 0; i < 20000; ++i)
        text += QStringLiteral("\nitem %1%2").arg(i).arg(i % 3 == 0 ? QStringLiteral(" /x") : QString());
    QElapsedTimer timer;
    timer.start();
    ChecklistManager manager;
    ChecklistBuilder::createAllCheckboxesFromText(text, std::nullopt, manager, kDefaultTriggers);
    const qsizetype editAt = text.size() - 3;
    text.insert(editAt, QStringLiteral("\nextra"));
    ChecklistBuilder::createAllCheckboxesFromText(text, editAt, manager, kDefaultTriggers);
    AttributedText storage;
    NotificationBus bus;
    ChecklistLayout::insertVerticalPositions(storage, text, editAt, manager, 0, bus);
    // A rebuild that walks the text once per row would take minutes here.
    EXPECT_LT(timer.elapsed(), 20000);

    ASSERT_EQ(manager.checklist.size(), 20001u);
    EXPECT_EQ(rows(manager), fullRebuild(text));
    EXPECT_EQ(manager.checklist.back()->content, QStringLiteral("extra999"));
    EXPECT_EQ(manager.checklist.back()->index, 20000);
    EXPECT_NEAR(manager.checklist.back()->verticalPosition, 20001 * 16 * 1.2, 1e-6);
}

} // namespace
} // namespace scrivlet
