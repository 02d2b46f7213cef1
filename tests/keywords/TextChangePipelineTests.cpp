#include "KeywordTestEnvironment.h"

#include "keywords/EmojiRuns.h"
#include "keywords/TextChangePipeline.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"

#include <gtest/gtest.h>

namespace scrivlet {
namespace {

using testing::KeywordTestEnvironment;

// One editor on an in-memory text: edits are recorded as the editor records them and
// then handed to the pipeline.
class PipelineTest : public ::testing::Test {
protected:
    void load(const QString &text)
    {
        storage.setText(text, pipeline.defaultAttributes().plain());
        storage.setSelectedRange({text.size(), 0});
        edit = EditRecord{};
        run(true);
    }
    void run(bool forceFull = false)
    {
        pipeline.processTextChange(&storage, noteViewModel, activeKeyword, isList, forceFull);
    }
    void typeAt(qsizetype position, const QString &text,
                std::optional<UserActionType> action = UserActionType::keydown)
    {
        record({position, 0}, text, action);
        storage.setSelectedRange({position, 0});
        storage.type(text);
        run();
    }
    void backspaceAt(qsizetype position)
    {
        record({position - 1, 1}, QString(EditRecord::kBackwardDelete), UserActionType::delete_);
        storage.replaceCharacters({position - 1, 1}, {}, storage.typingAttributes());
        storage.setSelectedRange({position - 1, 0});
        run();
    }
    void record(TextRange range, const QString &text, std::optional<UserActionType> action)
    {
        edit.lastModifiedRange = range;
        edit.preModifiedContent = storage.string();
        edit.lastModifiedContent = text;
        edit.lastModificationAction = action;
    }
    TextAttributes at(qsizetype index) const { return storage.attributesAt(index); }
    ChecklistManager &checklist() { return *noteViewModel.mutableNote().checklistManager; }

    KeywordTestEnvironment env;
    AttributedText storage;
    NoteViewModel noteViewModel{Note{}};
    EditRecord edit;
    TextChangePipeline pipeline{env.context, edit, QStringLiteral("left")};
    std::optional<KeywordID> activeKeyword;
    bool isList = false;
};

struct BranchCase {
    const char *name;
    QString text;
    std::optional<KeywordID> active;
};
void PrintTo(const BranchCase &c, std::ostream *os) { *os << c.name; }

class PipelineBranch : public PipelineTest, public ::testing::WithParamInterface<BranchCase> {};

TEST_P(PipelineBranch, SetsTheActiveKeywordOfTheFirstLine)
{
    load(GetParam().text);
    EXPECT_EQ(activeKeyword, GetParam().active);
    EXPECT_EQ(isList, GetParam().active == KeywordID::LIST);
}

INSTANTIATE_TEST_SUITE_P(
    Pipeline, PipelineBranch,
    ::testing::Values(BranchCase{"Sum", QStringLiteral("sum\n1\n2"), KeywordID::SUM},
                      BranchCase{"Count", QStringLiteral("count\na b"), KeywordID::COUNT},
                      BranchCase{"Math", QStringLiteral("math\n1+1="), KeywordID::MATH},
                      BranchCase{"List", QStringLiteral("todo\nmilk"), KeywordID::LIST},
                      BranchCase{"Code", QStringLiteral("code: js\nlet a"), KeywordID::CODE},
                      BranchCase{"Paste", QStringLiteral("paste(, )"), KeywordID::PASTE},
                      BranchCase{"Timer", QStringLiteral("timer 5"), KeywordID::TIMER},
                      BranchCase{"InvalidPasteIsPlain", QStringLiteral("paste foo"), std::nullopt},
                      BranchCase{"Plain", QStringLiteral("hello\nsum"), std::nullopt}),
    [](const ::testing::TestParamInfo<BranchCase> &info) { return std::string(info.param.name); });

TEST_F(PipelineTest, LeavingAListEmptiesTheChecklist)
{
    for (const QString &firstLine : {QStringLiteral("sum"), QStringLiteral("lis")}) {
        load(QStringLiteral("list\nmilk"));
        ASSERT_TRUE(isList);
        checklist().checklist.push_back(std::make_shared<ChecklistItem>());
        EXPECT_EQ(checklist().keywordLineText, QStringLiteral("list"));

        storage.setText(firstLine % QStringLiteral("\nmilk"), storage.typingAttributes());
        typeAt(firstLine.size(), QStringLiteral(" "));
        EXPECT_FALSE(isList) << firstLine.toStdString();
        EXPECT_TRUE(checklist().checklist.empty()) << firstLine.toStdString();
    }
    EXPECT_EQ(activeKeyword, std::nullopt);
}

TEST_F(PipelineTest, DeletingTheKeywordResetsAttributesAndHidesHelp)
{
    load(QStringLiteral("code\nx"));
    EXPECT_EQ(at(0).foreground, QStringLiteral("accent4Main"));
    env.hints.clear();

    backspaceAt(4);
    EXPECT_EQ(activeKeyword, std::nullopt);
    EXPECT_EQ(at(0).foreground, QStringLiteral("typeMain"));
    EXPECT_EQ(storage.typingAttributes(), pipeline.defaultAttributes().plain());
    ASSERT_EQ(env.hints.size(), 2u);
    for (const QVariantMap &hint : env.hints) {
        EXPECT_FALSE(hint.value(QStringLiteral("shouldShowHelpText")).toBool());
        EXPECT_TRUE(hint.value(QStringLiteral("helpText")).toString().isEmpty());
    }
}

struct LineOnlyCase {
    const char *name;
    TextRange range;
    QString changed;
    std::optional<UserActionType> action;
    QString currentLine;
    std::optional<KeywordID> keyword;
    bool expected;
};
void PrintTo(const LineOnlyCase &c, std::ostream *os) { *os << c.name; }

class LineOnlyTable : public ::testing::TestWithParam<LineOnlyCase> {};

TEST_P(LineOnlyTable, RestylesOneLineOnlyForKeystrokesBelowTheFirstLine)
{
    const LineOnlyCase &c = GetParam();
    EditRecord edit;
    edit.preModifiedContent = QStringLiteral("sum\nabc\ndef");
    edit.lastModifiedRange = c.range;
    edit.lastModifiedContent = c.changed;
    edit.lastModificationAction = c.action;
    EXPECT_EQ(TextChangePipeline::isLineOnlyEdit(edit, c.currentLine, c.keyword), c.expected);
}

const auto kKeydown = UserActionType::keydown;
INSTANTIATE_TEST_SUITE_P(
    Pipeline, LineOnlyTable,
    ::testing::Values(
        LineOnlyCase{"Keystroke", {6, 0}, QStringLiteral("x"), kKeydown, QStringLiteral("abc"), KeywordID::SUM, true},
        LineOnlyCase{"PlainNote", {9, 0}, QStringLiteral("x"), kKeydown, QStringLiteral("def"), std::nullopt, true},
        LineOnlyCase{"Backspace", {6, 1}, QString(EditRecord::kBackwardDelete), UserActionType::delete_, QStringLiteral("abc"), std::nullopt, false},
        LineOnlyCase{"Backtick", {6, 0}, QStringLiteral("`"), kKeydown, QStringLiteral("abc"), std::nullopt, false},
        LineOnlyCase{"LineFeed", {6, 0}, QStringLiteral("\n"), kKeydown, QStringLiteral("abc"), std::nullopt, false},
        LineOnlyCase{"Return", {6, 0}, QStringLiteral("\r"), kKeydown, QStringLiteral("abc"), std::nullopt, false},
        LineOnlyCase{"EndOfFirstLine", {3, 0}, QStringLiteral("x"), kKeydown, QStringLiteral("sum"), std::nullopt, false},
        LineOnlyCase{"InsideCodeFence", {6, 0}, QStringLiteral("x"), kKeydown, QStringLiteral("```js"), std::nullopt, false},
        LineOnlyCase{"List", {6, 0}, QStringLiteral("x"), kKeydown, QStringLiteral("abc"), KeywordID::LIST, false},
        LineOnlyCase{"Count", {6, 0}, QStringLiteral("x"), kKeydown, QStringLiteral("abc"), KeywordID::COUNT, false},
        LineOnlyCase{"Replacement", {5, 1}, QStringLiteral("x"), kKeydown, QStringLiteral("abc"), std::nullopt, false},
        LineOnlyCase{"Paste", {6, 0}, QStringLiteral("x"), UserActionType::paste, QStringLiteral("abc"), std::nullopt, false},
        LineOnlyCase{"Unrecorded", {6, 0}, QStringLiteral("x"), std::nullopt, QStringLiteral("abc"), std::nullopt, false}),
    [](const ::testing::TestParamInfo<LineOnlyCase> &info) { return std::string(info.param.name); });

TEST_F(PipelineTest, HelpShowsOnlyWhileNothingIsWrittenBelowTheFirstLine)
{
    const auto lastHint = [&] { return env.hints.back(); };
    load(QStringLiteral("sum"));
    EXPECT_TRUE(lastHint().value(QStringLiteral("shouldShowHelpText")).toBool());
    EXPECT_EQ(lastHint().value(QStringLiteral("helpText")).toString(),
              QStringLiteral("All the numbers in the text you write will be added together."));
    EXPECT_EQ(lastHint().value(QStringLiteral("editorId")).toString(), QStringLiteral("left"));
    typeAt(3, QStringLiteral("\n"));
    EXPECT_TRUE(lastHint().value(QStringLiteral("shouldShowHelpText")).toBool());
    typeAt(4, QStringLiteral("x"));
    EXPECT_FALSE(lastHint().value(QStringLiteral("shouldShowHelpText")).toBool());

    // An average hides what was shown before it says anything.
    env.hints.clear();
    load(QStringLiteral("avg"));
    ASSERT_EQ(env.hints.size(), 2u);
    EXPECT_FALSE(env.hints[0].value(QStringLiteral("shouldShowHelpText")).toBool());
    EXPECT_TRUE(env.hints[1].value(QStringLiteral("shouldShowHelpText")).toBool());
    env.hints.clear();
    load(QStringLiteral("sum"));
    EXPECT_EQ(env.hints.size(), 1u);
}

TEST_F(PipelineTest, ColoursAndMarksTheKeywordWord)
{
    load(QStringLiteral("  Math: budget\n1"));
    const TextAttributes word = at(2);
    ASSERT_TRUE(word.custom);
    EXPECT_EQ(word.custom->tag, QStringLiteral("keyword"));
    EXPECT_EQ(word.custom->subtag, QStringLiteral("MATH"));
    EXPECT_EQ(word.foreground, QStringLiteral("accent1Main"));
    TextRange run;
    storage.attributesAt(2, &run);
    EXPECT_EQ(run, (TextRange{2, 4}));
    EXPECT_EQ(at(6).foreground, QStringLiteral("typeMain"));
    EXPECT_EQ(storage.invalidatedRanges().back(), (TextRange{2, 4}));
}

TEST_F(PipelineTest, TimerAndPasteLinesTakeTheirColourEvenWithKeywordsOff)
{
    load(QStringLiteral("timer 5:30 : laundry\nx"));
    EXPECT_EQ(at(15).foreground, QStringLiteral("accent4Main"));
    EXPECT_FALSE(at(15).custom);
    EXPECT_EQ(at(21).foreground, QStringLiteral("typeMain"));

    env.keywordPreferences.setDisableAllKeywords(true);
    load(QStringLiteral("paste(, )\nx"));
    EXPECT_EQ(at(8).foreground, QStringLiteral("accent3Main"));
    EXPECT_FALSE(at(0).custom);
}

TEST_F(PipelineTest, DisabledKeywordsLeaveAMathNoteAsItIs)
{
    int mathRuns = 0;
    pipeline.passes().processAllMath = [&](const TextPassInput &) { ++mathRuns; };
    load(QStringLiteral("math\n1+1="));
    EXPECT_EQ(mathRuns, 1);

    env.keywordPreferences.setDisableAllKeywords(true);
    load(QStringLiteral("math\n1+1="));
    EXPECT_EQ(mathRuns, 1);
    EXPECT_EQ(storage.string(), QStringLiteral("math\n1+1="));
    EXPECT_EQ(activeKeyword, std::nullopt);
    EXPECT_EQ(at(0).foreground, QStringLiteral("typeMain"));
}

TEST_F(PipelineTest, ChecklistRebuildsOnlyWhenTheEditCanMoveRows)
{
    std::vector<std::optional<qsizetype>> created;
    pipeline.passes().createCheckboxes = [&](const TextPassInput &, std::optional<qsizetype> from) {
        created.push_back(from);
    };
    load(QStringLiteral("list\nmilk\neggs"));
    ASSERT_EQ(created, (std::vector<std::optional<qsizetype>>{std::nullopt}));
    EXPECT_EQ(at(6).paragraph, pipeline.defaultAttributes().list().paragraph);

    created.clear();
    typeAt(9, QStringLiteral("s")); // a letter inside a row: nothing to redraw
    EXPECT_TRUE(created.empty());
    typeAt(10, QStringLiteral("\n")); // a new row from here on
    typeAt(11, QStringLiteral("/")); // a check mark being typed
    backspaceAt(12);
    typeAt(4, QStringLiteral(" ")); // the keyword line
    EXPECT_EQ(created, (std::vector<std::optional<qsizetype>>{10, std::nullopt, std::nullopt, std::nullopt}));
}

TEST_F(PipelineTest, RemovesMarkdownMarksOfTheRestyledRange)
{
    load(QStringLiteral("notes\n**a**\n**b**"));
    TextAttributes bold;
    bold.custom = CustomAttribute{QStringLiteral("markdown"), QStringLiteral("bold"), true};
    bold.font = FontSpec{QStringLiteral("Menlo"), 16, true};
    storage.addAttributes({8, 1}, bold);
    storage.addAttributes({14, 1}, bold);

    typeAt(17, QStringLiteral("x")); // restyles the last line only
    EXPECT_FALSE(at(14).custom);
    EXPECT_FALSE(at(14).font->bold);
    EXPECT_TRUE(at(8).custom);

    typeAt(18, QStringLiteral("`"));
    EXPECT_FALSE(at(8).custom);
}

TEST_F(PipelineTest, PassesCannotMoveTheCaret)
{
    pipeline.passes().sum = [](const TextPassInput &input) {
        input.storage.replaceCharacters({input.storage.length(), 0}, QStringLiteral("\n\nTotal: 3"), {});
        input.storage.setSelectedRange({input.storage.length(), 0});
    };
    load(QStringLiteral("sum\n1\n2"));
    EXPECT_EQ(storage.selectedRange(), (TextRange{7, 0}));
    EXPECT_TRUE(storage.string().endsWith(QStringLiteral("Total: 3")));
}

TEST_F(PipelineTest, LinkPassesFollowHighlightingAndCodeNotes)
{
    std::vector<QString> calls;
    TextPasses &passes = pipeline.passes();
    passes.updateScrivlinks = [&](const TextPassInput &, qsizetype, std::optional<UserActionType>) {
        calls.push_back(QStringLiteral("update"));
    };
    passes.unshrinkLinks = [&](const TextPassInput &) { calls.push_back(QStringLiteral("unshrink")); };
    passes.colorLinks = [&](const TextPassInput &) { calls.push_back(QStringLiteral("color")); };
    passes.codeHighlighting = [&](const TextPassInput &input) {
        EXPECT_EQ(input.storage.delegate(), nullptr);
        EXPECT_GT(storage.editingDepth(), 0);
        calls.push_back(QStringLiteral("code"));
    };

    load(QStringLiteral("notes"));
    load(QStringLiteral("code: js"));
    env.keywordPreferences.setDisableLinkHighlighting(true);
    load(QStringLiteral("notes"));
    EXPECT_EQ(calls, (std::vector<QString>{QStringLiteral("update"), QStringLiteral("code"), QStringLiteral("unshrink"),
                                           QStringLiteral("unshrink"), QStringLiteral("color")}));
}

struct EmojiCase {
    const char *name;
    QString text;
    std::vector<TextRange> runs;
};
void PrintTo(const EmojiCase &c, std::ostream *os) { *os << c.name; }

class EmojiRunTable : public ::testing::TestWithParam<EmojiCase> {};

TEST_P(EmojiRunTable, FindsWholeEmojiSequences)
{
    const EmojiCase &c = GetParam();
    EXPECT_EQ(findEmojiRuns(c.text, {0, c.text.size()}), c.runs);
}

INSTANTIATE_TEST_SUITE_P(
    Pipeline, EmojiRunTable,
    ::testing::Values(EmojiCase{"Plain", QStringLiteral("abc 1\uFE0F"), {}},
                      EmojiCase{"Single", QStringLiteral("a\U0001F600b"), {{1, 2}}},
                      EmojiCase{"SkinTone", QStringLiteral("\U0001F44D\U0001F3FD"), {{0, 4}}},
                      EmojiCase{"Family", QStringLiteral("\U0001F468\u200D\U0001F469\u200D\U0001F467 x"), {{0, 8}}},
                      EmojiCase{"Presentation", QStringLiteral("x\u2600\uFE0F y \u2764"), {{1, 2}, {6, 1}}},
                      EmojiCase{"Flag", QStringLiteral("\U0001F1E9\U0001F1EA"), {{0, 4}}}),
    [](const ::testing::TestParamInfo<EmojiCase> &info) { return std::string(info.param.name); });

TEST_F(PipelineTest, DefaultsFollowPaperAndFontPreferences)
{
    env.miscPreferences.setFontFamily(QStringLiteral("Fira Code"));
    env.visualPreferences.setFontSize(QStringLiteral("large"));
    load(QStringLiteral("notes \U0001F600 done"));
    EXPECT_EQ(at(6).font->pointSize, 11.2);
    EXPECT_NE(at(6).font->family, at(0).font->family);
    EXPECT_EQ(at(9).font, at(0).font);
    EXPECT_EQ(at(0).paragraph->lineHeightMultiple, 1.2);
    EXPECT_EQ(at(0).font->family, QStringLiteral("Fira Code"));
    const double large = at(0).font->pointSize;

    env.visualPreferences.setPaperType(QStringLiteral("lines"));
    env.visualPreferences.setDoubleFontSize(true);
    pipeline.resetTextAttributes(storage, false, {});
    EXPECT_EQ(at(0).paragraph->lineHeightMultiple, 1.4);
    EXPECT_EQ(at(0).font->pointSize, 2 * large);
    const ParagraphSpec list = *pipeline.defaultAttributes().list().paragraph;
    EXPECT_EQ(list.headIndent, 2 * large * 1.4 + 6);
    EXPECT_EQ(list.tabStop, list.headIndent);
}

} // namespace
} // namespace scrivlet
