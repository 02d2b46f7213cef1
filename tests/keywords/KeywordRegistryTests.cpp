#include "KeywordTestEnvironment.h"

#include "keywords/KeywordLine.h"
#include "keywords/KeywordTriggerEditor.h"
#include "keywords/TriggerLinePatterns.h"

#include <gtest/gtest.h>

namespace scrivlet {
namespace {

using testing::KeywordTestEnvironment;

TEST(KeywordRegistry, EmptyStoredTriggerListFallsBackToDefaultMainTrigger)
{
    MemorySettingsStore store;
    KeywordPreferences preferences(store);
    preferences.setValue(QStringLiteral("sumTriggers"), QStringLiteral(",,,"));
    preferences.setValue(QStringLiteral("checkTriggers"), QStringLiteral(" , ,"));
    preferences.setValue(QStringLiteral("sumMainTrigger"), QStringLiteral("add"));
    preferences.setValue(QStringLiteral("mathTriggers"), QStringLiteral(" calc ,\tmath"));
    EXPECT_TRUE(preferences.triggers(KeywordID::SUM).isEmpty());

    const KeywordDefinitionsContainer keywords(preferences);
    EXPECT_EQ(keywords.definition(KeywordID::SUM)->triggers, QStringList{QStringLiteral("sum")});
    EXPECT_EQ(keywords.definition(KeywordID::SUM)->mainTrigger, QStringLiteral("add"));
    EXPECT_EQ(keywords.definition(KeywordID::MATH)->triggers, (QStringList{QStringLiteral("calc"), QStringLiteral("math")}));
    // Blank pieces that survive the split select nothing.
    EXPECT_EQ(detectKeyword(QStringLiteral("anything"), keywords), QString());
    EXPECT_EQ(detectKeyword(QStringLiteral("calc"), keywords), QStringLiteral("MATH"));
}

TEST(KeywordRegistry, WordOfTwoKeywordsGoesToTheFirstInPriorityOrder)
{
    MemorySettingsStore store;
    KeywordPreferences preferences(store);
    preferences.setValue(QStringLiteral("sumTriggers"), QStringLiteral("sum,both"));
    preferences.setValue(QStringLiteral("mathTriggers"), QStringLiteral("math,both,twice"));
    preferences.setValue(QStringLiteral("listTriggers"), QStringLiteral("list,twice"));
    const KeywordDefinitionsContainer keywords(preferences);
    EXPECT_EQ(detectKeyword(QStringLiteral("both"), keywords), QStringLiteral("MATH"));
    EXPECT_EQ(detectKeyword(QStringLiteral("twice"), keywords), QStringLiteral("LIST"));
}

TEST(KeywordRegistry, SetTriggersKeepsOwnNameAndRejectsClashes)
{
    KeywordTestEnvironment env;
    KeywordDefinitionsContainer &keywords = env.keywords;

    EXPECT_EQ(keywords.setTriggers(KeywordID::SUM, {}), QStringList{QStringLiteral("sum")});

    const QStringList added =
        keywords.setTriggers(KeywordID::SUM, {QStringLiteral("plus"), QStringLiteral("plus"), QStringLiteral("tally")});
    EXPECT_EQ(added.size(), 3);
    EXPECT_TRUE(added.contains(QStringLiteral("plus")) && added.contains(QStringLiteral("tally"))
                && added.contains(QStringLiteral("sum")));
    EXPECT_EQ(detectKeyword(QStringLiteral("Tally"), keywords), QStringLiteral("SUM"));

    // "avg" is AVG's and "done" is CHECK's: nothing changes.
    EXPECT_EQ(keywords.setTriggers(KeywordID::SUM, {QStringLiteral("avg"), QStringLiteral("new")}), added);
    EXPECT_EQ(keywords.setTriggers(KeywordID::SUM, {QStringLiteral("done")}), added);
    EXPECT_EQ(keywords.definition(KeywordID::SUM)->triggers, added);
    EXPECT_EQ(detectKeyword(QStringLiteral("new"), keywords), QString());

    // The clash test is exact: another case is another word.
    EXPECT_TRUE(keywords.setTriggers(KeywordID::SUM, {QStringLiteral("AVG")}).contains(QStringLiteral("AVG")));
}

TEST(KeywordRegistry, MainTriggerMustBeOneOfTheTriggers)
{
    KeywordTestEnvironment env;
    EXPECT_EQ(env.keywords.setMainTrigger(KeywordID::SUM, QStringLiteral("plus")), QStringLiteral("sum"));
    EXPECT_EQ(env.keywords.setMainTrigger(KeywordID::SUM, QStringLiteral("total")), QStringLiteral("total"));
    EXPECT_EQ(env.keywords.definition(KeywordID::SUM)->mainTrigger, QStringLiteral("total"));
}

TEST(KeywordTriggerEditor, CommitStoresTriggersOrNamesTheClashes)
{
    KeywordTestEnvironment env;
    int changes = 0;
    const auto subscription =
        env.bus.subscribe(QStringLiteral("keywordPreferencesChanged"), [&](const QVariantMap &) { ++changes; });
    KeywordTriggerEditor editor(KeywordID::SUM, env.keywords, env.keywordPreferences, env.bus);
    EXPECT_EQ(editor.additionalKeywordsText(), QStringLiteral("add, total"));

    EXPECT_FALSE(editor.commit(QStringLiteral("plus, avg ,todo")));
    EXPECT_EQ(editor.errorMessage(), QStringLiteral("The following keywords are not unique: avg, todo"));
    EXPECT_EQ(env.keywordPreferences.triggers(KeywordID::SUM),
              (QStringList{QStringLiteral("sum"), QStringLiteral("add"), QStringLiteral("total")}));
    EXPECT_EQ(changes, 0);

    EXPECT_TRUE(editor.commit(QStringLiteral("  plus ,, , tally ")));
    EXPECT_TRUE(editor.errorMessage().isEmpty());
    QStringList stored = env.keywordPreferences.triggers(KeywordID::SUM);
    stored.sort();
    EXPECT_EQ(stored, (QStringList{QStringLiteral("plus"), QStringLiteral("sum"), QStringLiteral("tally")}));
    EXPECT_EQ(env.keywords.definition(KeywordID::SUM)->triggers, env.keywordPreferences.triggers(KeywordID::SUM));
    EXPECT_EQ(changes, 1);
}

struct FirstLineCase {
    const char *name;
    QString text;
    QString normalized;
    QString keyword;
    bool valid;
};
void PrintTo(const FirstLineCase &c, std::ostream *os) { *os << c.name; }

class KeywordLineTable : public ::testing::TestWithParam<FirstLineCase> {};

TEST_P(KeywordLineTable, ReadsTheFirstLine)
{
    KeywordTestEnvironment env;
    const FirstLineCase &c = GetParam();
    EXPECT_EQ(normalizedKeywordLine(firstLineOf(c.text), env.keywords), c.normalized);
    EXPECT_EQ(detectKeyword(c.text, env.keywords), c.keyword);
    EXPECT_EQ(hasValidKeyword(c.text, env.keywords), c.valid);
}

INSTANTIATE_TEST_SUITE_P(
    KeywordRegistry, KeywordLineTable,
    ::testing::Values(
        FirstLineCase{"Empty", {}, {}, {}, false},
        FirstLineCase{"OnlyWhiteSpace", QStringLiteral(" \t \nsum"), {}, {}, false},
        FirstLineCase{"LoneSlash", QStringLiteral("/"), {}, {}, false},
        FirstLineCase{"PaddedUpperCase", QStringLiteral("  MATH  "), QStringLiteral("math"), QStringLiteral("MATH"), true},
        FirstLineCase{"TrailingColon", QStringLiteral("math:"), QStringLiteral("math"), QStringLiteral("MATH"), true},
        FirstLineCase{"LeadingColon", QStringLiteral(":math"), {}, {}, false},
        FirstLineCase{"ColonAndTitle", QStringLiteral("math: budget\n1+1="), QStringLiteral("math"), QStringLiteral("MATH"), true},
        FirstLineCase{"SlashCommand", QStringLiteral("/Sum"), QStringLiteral("sum"), QStringLiteral("SUM"), true},
        FirstLineCase{"OtherTrigger", QStringLiteral("todo\nmilk"), QStringLiteral("todo"), QStringLiteral("LIST"), true},
        FirstLineCase{"LongerWordIsNoKeyword", QStringLiteral("summary"), QStringLiteral("summary"), {}, false},
        FirstLineCase{"CheckIsNoNoteKind", QStringLiteral("done"), QStringLiteral("done"), {}, false},
        FirstLineCase{"KeywordOnSecondLine", QStringLiteral("notes\nsum"), QStringLiteral("notes"), {}, false},
        FirstLineCase{"TimerPrefix", QStringLiteral("timers"), QStringLiteral("timers"), QStringLiteral("TIMER"), true},
        FirstLineCase{"TimerTitleCut", QStringLiteral("timer 5:30 : laundry"), QStringLiteral("timer 5"), QStringLiteral("TIMER"), true},
        FirstLineCase{"PasteEmptyDelimiter", QStringLiteral("paste(,)"), QStringLiteral("paste(,)"), QStringLiteral("PASTE"), true},
        FirstLineCase{"PasteNestedParenthesis", QStringLiteral("paste(a(b)"), QStringLiteral("paste(a(b)"), QStringLiteral("PASTE"), false},
        FirstLineCase{"PasteBlankBeforeParenthesis", QStringLiteral("paste (x)"), QStringLiteral("paste (x)"), QStringLiteral("PASTE"), true},
        FirstLineCase{"PasteUnclosed", QStringLiteral("paste(x"), QStringLiteral("paste(x"), QStringLiteral("PASTE"), false},
        FirstLineCase{"PasteWord", QStringLiteral("paste foo"), QStringLiteral("paste foo"), QStringLiteral("PASTE"), false},
        FirstLineCase{"PastePrefix", QStringLiteral("pasted"), QStringLiteral("pasted"), QStringLiteral("PASTE"), false}),
    [](const ::testing::TestParamInfo<FirstLineCase> &info) { return std::string(info.param.name); });

TEST(KeywordRegistry, DisabledKeywordsReadNothing)
{
    KeywordTestEnvironment env;
    env.keywordPreferences.setDisableAllKeywords(true);
    for (const QString &text : {QStringLiteral("sum"), QStringLiteral("timer 5"), QStringLiteral("paste")}) {
        EXPECT_EQ(normalizedKeywordLine(firstLineOf(text), env.keywords), QString()) << text.toStdString();
        EXPECT_EQ(detectKeyword(text, env.keywords), QString()) << text.toStdString();
        EXPECT_FALSE(hasValidKeyword(text, env.keywords)) << text.toStdString();
    }
}

struct LinePatternCase {
    const char *name;
    bool timer;
    QString text;
    std::optional<TextRange> expected;
};
void PrintTo(const LinePatternCase &c, std::ostream *os) { *os << c.name; }

class TriggerLineTable : public ::testing::TestWithParam<LinePatternCase> {};

TEST_P(TriggerLineTable, FindsTheFirstLine)
{
    KeywordTestEnvironment env;
    const LinePatternCase &c = GetParam();
    const auto found = c.timer ? detectTimerLine(c.text, env.keywords) : detectPasteLine(c.text, env.keywords);
    EXPECT_EQ(found, c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    KeywordRegistry, TriggerLineTable,
    ::testing::Values(
        LinePatternCase{"Stopwatch", true, QStringLiteral("timer"), TextRange{0, 5}},
        LinePatternCase{"Countdown", true, QStringLiteral("Timer 5"), TextRange{0, 7}},
        LinePatternCase{"NamedCountdown", true, QStringLiteral("timer 5:30 : laundry"), TextRange{0, 20}},
        LinePatternCase{"CustomPomodoro", true, QStringLiteral("timer 52 17"), TextRange{0, 11}},
        LinePatternCase{"Command", true, QStringLiteral("timer pomo"), TextRange{0, 10}},
        LinePatternCase{"LaterLine", true, QStringLiteral("buy milk\ntimer .5"), TextRange{9, 8}},
        LinePatternCase{"PrefixIsNoTimerLine", true, QStringLiteral("timers"), std::nullopt},
        LinePatternCase{"UnknownWord", true, QStringLiteral("timer foo"), std::nullopt},
        LinePatternCase{"NotAtLineStart", true, QStringLiteral("my timer 5"), std::nullopt},
        LinePatternCase{"Paste", false, QStringLiteral("paste"), TextRange{0, 5}},
        LinePatternCase{"PasteDelimiter", false, QStringLiteral("PASTE (, )"), TextRange{0, 10}},
        LinePatternCase{"PasteLaterLine", false, QStringLiteral("notes\npaste(;)"), TextRange{6, 8}},
        LinePatternCase{"PasteWord", false, QStringLiteral("paste foo"), std::nullopt}),
    [](const ::testing::TestParamInfo<LinePatternCase> &info) { return std::string(info.param.name); });

TEST(KeywordRegistry, TriggerLinePatternsFollowChangedTriggers)
{
    KeywordTestEnvironment env;
    ASSERT_TRUE(detectTimerLine(QStringLiteral("timer 5"), env.keywords));
    env.keywords.setTriggers(KeywordID::TIMER, {QStringLiteral("count.down")});
    EXPECT_EQ(detectTimerLine(QStringLiteral("x\nCount.down 5"), env.keywords), (TextRange{2, 12}));
    // The dot is a literal, not "any character".
    EXPECT_FALSE(detectTimerLine(QStringLiteral("countXdown 5"), env.keywords));
    env.keywords.setTriggers(KeywordID::PASTE, {QStringLiteral("clip+")});
    EXPECT_EQ(detectPasteLine(QStringLiteral("clip+(, )"), env.keywords), (TextRange{0, 9}));
}

} // namespace
} // namespace scrivlet
