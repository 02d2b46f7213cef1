#include "KeywordTestEnvironment.h"

#include "calculation/NumberLocale.h"
#include "keywords/AnalyzeText.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"
#include "shell/preferences/MathPreferences.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

namespace scrivlet {
namespace {

using testing::KeywordTestEnvironment;

NumberLocale locale(const char *name)
{
    return *NumberLocale::fromName(QString::fromLatin1(name));
}

// Totals are written in the process-wide number format; every test starts American.
class Totals : public ::testing::Test {
protected:
    void SetUp() override { NumberLocale::setCurrent(locale("en_US")); }
    void TearDown() override { NumberLocale::setCurrent(m_saved); }

    // Opens `content` in an editor, as the app does, and gives back what the note reads.
    QString open(const QString &content)
    {
        session.reset();
        Note note;
        note.content = content;
        viewModel = std::make_unique<NoteViewModel>(std::move(note));
        session = std::make_unique<NoteEditorSession>(storage, *viewModel, env.context, nullptr);
        session->open();
        return storage.string();
    }

    void typeAt(qsizetype position, const QString &text)
    {
        storage.setSelectedRange({position, 0});
        session->willChangeText(storage.selectedRange(), text, UserActionType::keydown);
        storage.type(text);
    }

    // The marks of the total block, as (start, length, subtag).
    std::vector<std::tuple<qsizetype, qsizetype, QString>> totalMarks() const
    {
        std::vector<std::tuple<qsizetype, qsizetype, QString>> marks;
        storage.enumerateRuns({0, storage.length()}, [&](const TextRange &run, const TextAttributes &attributes) {
            if (attributes.custom && attributes.custom->tag == u"keywordTotal")
                marks.emplace_back(run.location, run.length, attributes.custom->subtag);
        });
        return marks;
    }

    KeywordTestEnvironment env;
    MathPreferences math{env.store};
    AttributedText storage;
    std::unique_ptr<NoteViewModel> viewModel;
    std::unique_ptr<NoteEditorSession> session;

private:
    NumberLocale m_saved = NumberLocale::current();
};

TEST_F(Totals, NumbersCountOnlyWhereTheyStandAlone)
{
    const auto values = [](const QString &text, const NumberLocale &in) {
        std::vector<std::pair<double, int>> found;
        for (const FoundNumber &number : findNumbers(text, in))
            found.emplace_back(number.value, number.decimals);
        return found;
    };
    using Found = std::vector<std::pair<double, int>>;
    const NumberLocale us = locale("en_US");
    EXPECT_EQ(values(QStringLiteral("$2 for apples, €4.50 (bus) -3 and .25;7"), us),
              (Found{{2, 0}, {4.5, 2}, {-3, 0}, {0.25, 2}, {7, 0}}));
    EXPECT_EQ(values(QStringLiteral("abc123 12kg 3.5.1 x-1 #4 5."), us), (Found{{1, 0}}));
    // The locale alone decides what a comma is.
    EXPECT_EQ(values(QStringLiteral("$4,25 and 1.200,50"), locale("de_DE")), (Found{{4.25, 2}, {1200.5, 2}}));
    EXPECT_EQ(values(QStringLiteral("$4,25 and 1,200.50"), us), (Found{{425, 0}, {1200.5, 2}}));
    // A no-break space separates like a blank; digits of other scripts are no number.
    EXPECT_EQ(values(QStringLiteral("5\u00a0apples ٣"), us), (Found{{5, 0}}));
}

TEST_F(Totals, AnalysisShowsTheMostPreciseNumbersDecimalsAndOneCurrency)
{
    TextAnalysis one = analyzeText(QStringLiteral("$2 for apples, $25 bus, $6 coffee, $4.25 bagel"));
    EXPECT_EQ(one.sum, QStringLiteral("$37.25"));
    EXPECT_EQ(one.average, QStringLiteral("$9.31"));
    EXPECT_EQ(one.minimum, QStringLiteral("$2.00"));
    EXPECT_EQ(one.maximum, QStringLiteral("$25.00"));
    EXPECT_FALSE(one.difference);

    // Two kinds of currency: no symbol. Two numbers: their distance.
    TextAnalysis two = analyzeText(QStringLiteral("€1500 and £2.5"));
    EXPECT_EQ(two.sum, QStringLiteral("1,502.5"));
    EXPECT_EQ(two.difference, QStringLiteral("1,497.5"));

    TextAnalysis none = analyzeText(QStringLiteral("no numbers here"));
    EXPECT_FALSE(none.sum || none.difference || none.minimum || none.maximum);
    EXPECT_EQ(none.average, QStringLiteral("0.0"));
}

TEST_F(Totals, SyllablesFollowVowelRunsAndTheSilentE)
{
    const std::pair<const char *, int> cases[] = {
        {"the", 1},   {"table", 1},  {"Apples", 2},     {"CREATE", 1}, {"rhythm", 1},
        {"queue", 1}, {"banana", 3}, {"wonderful.", 3}, {"", 1},       {"[←]", 1},
    };
    for (const auto &[word, syllables] : cases)
        EXPECT_EQ(countSyllables(QString::fromUtf8(word)), syllables) << word;
}

TEST_F(Totals, SumAndAverageNotesWriteTheirBlockBelowABlankLine)
{
    EXPECT_EQ(open(QStringLiteral("sum\n\n$2 for apples, $25 for bus tickets, $6 for coffee and $4.25 for a bagel.")),
              QStringLiteral("sum\n\n$2 for apples, $25 for bus tickets, $6 for coffee and $4.25 for a bagel.\n\n"
                             "Total: $37.25"));
    EXPECT_EQ(totalMarks(), (std::vector<std::tuple<qsizetype, qsizetype, QString>>{
                                {storage.length() - 13, 13, QStringLiteral("sum")}}));
    EXPECT_EQ(storage.attributesAt(storage.length() - 1).foreground, QStringLiteral("typeMain"));

    EXPECT_EQ(open(QStringLiteral("sum\n1\n2.5")), QStringLiteral("sum\n1\n2.5\n\nTotal: 3.5"));
    EXPECT_EQ(open(QStringLiteral("sum\nhello")), QStringLiteral("sum\nhello\n\nTotal: -"));
    EXPECT_EQ(open(QStringLiteral("avg\nhello")), QStringLiteral("avg\nhello\n\nAvg: 0.0"));
    EXPECT_EQ(open(QStringLiteral("avg\n1\n2")), QStringLiteral("avg\n1\n2\n\nAvg: 1.50"));
    env.context.mathPreferences = &math;
    math.setNumberOfDecimalPoints(0);
    EXPECT_EQ(open(QStringLiteral("avg\n1\n2")), QStringLiteral("avg\n1\n2\n\nAvg: 2"));

    // "//" starts a comment, indented or not; the old block is no number either.
    const QString commented = QStringLiteral("sum\n1\n  // 5\n//x 7\n\nTotal: 1");
    EXPECT_EQ(open(commented), commented);
    // A line read once is not read again on the next keystroke, unless the locale that
    // decides its separators changed in between.
    EXPECT_EQ(open(QStringLiteral("sum\n$4,25\n2")), QStringLiteral("sum\n$4,25\n2\n\nTotal: $427"));
    NumberLocale::setCurrent(locale("de_DE"));
    typeAt(11, QStringLiteral("0"));
    EXPECT_EQ(storage.string(), QStringLiteral("sum\n$4,25\n20\n\nTotal: $24,25"));
    EXPECT_EQ(open(QStringLiteral("sum\n$4,25\n$1.000")), QStringLiteral("sum\n$4,25\n$1.000\n\nTotal: $1.004,25"));

    // The keyword alone, with or without its line break, leaves room for the help text.
    for (const char *alone : {"sum", "sum\n", "avg\n", "count", "count\n"}) {
        EXPECT_EQ(open(QString::fromLatin1(alone)), QString::fromLatin1(alone));
        EXPECT_TRUE(env.hints.back().value(QStringLiteral("shouldShowHelpText")).toBool()) << alone;
    }
    EXPECT_EQ(open(QStringLiteral("sum\n\n")), QStringLiteral("sum\n\n\n\nTotal: -"));
}

TEST_F(Totals, TheOldBlockIsRenewedInPlaceAndAnEditedOneIsNot)
{
    open(QStringLiteral("sum\n5\n\nTotal: 99"));
    EXPECT_EQ(storage.string(), QStringLiteral("sum\n5\n\nTotal: 5"));

    // Typing above the block renews it; the caret stays where the user typed.
    typeAt(5, QStringLiteral("0"));
    EXPECT_EQ(storage.string(), QStringLiteral("sum\n50\n\nTotal: 50"));
    EXPECT_EQ(storage.selectedRange(), (TextRange{6, 0}));
    typeAt(6, QStringLiteral("\n1.25"));
    EXPECT_EQ(storage.string(), QStringLiteral("sum\n50\n1.25\n\nTotal: 51.25"));
    EXPECT_EQ(viewModel->note().content, storage.string());

    // A block that already reads right is not written again.
    const auto blockRedraws = [&] {
        const qsizetype block = storage.string().indexOf(QStringLiteral("Total:"));
        return std::count_if(storage.invalidatedRanges().begin(), storage.invalidatedRanges().end(),
                             [&](const TextRange &range) { return range.location == block; });
    };
    const auto redrawn = blockRedraws();
    session->setForceProcessing(true);
    session->textDidChange();
    EXPECT_EQ(storage.string(), QStringLiteral("sum\n50\n1.25\n\nTotal: 51.25"));
    EXPECT_EQ(blockRedraws(), redrawn);

    // A total line edited into something else is text of the note: a new block comes,
    // and the old line loses its mark.
    const qsizetype block = storage.string().indexOf(QStringLiteral("Total:"));
    storage.setSelectedRange({block, 6});
    session->willChangeText(storage.selectedRange(), QStringLiteral("Sum was"), UserActionType::keydown);
    storage.type(QStringLiteral("Sum was"));
    EXPECT_EQ(storage.string(), QStringLiteral("sum\n50\n1.25\n\nSum was 51.25\n\nTotal: 102.50"));
    EXPECT_EQ(totalMarks().size(), 1u);
    EXPECT_EQ(std::get<0>(totalMarks().front()), storage.length() - 13);
}

TEST_F(Totals, CountNotesCountItemsWordsSentencesAndReadability)
{
    EXPECT_EQ(open(QStringLiteral("count\nOne two.\nThree")),
              QStringLiteral("count\nOne two.\nThree\n\nItems: 2\nWords: 3\nCharacters: 14\nSentences: 2\n"
                             "Flesch Reading Ease Score: 120.71\nFlesch-Kincaid Grade Level: -3.20"));
    EXPECT_EQ(std::get<2>(totalMarks().front()), QStringLiteral("count"));
    // Only "// " with its blank is a comment here.
    EXPECT_TRUE(open(QStringLiteral("count\nOne\n// Two\n//Three")).contains(QStringLiteral("Items: 2\nWords: 2\n")));

    // 6 words, 2 sentences, 11 syllables: 206.835 - 1.015 * 3 - 84.6 * 11 / 6 and
    // 0.39 * 3 + 11.8 * 11 / 6 - 15.59.
    EXPECT_TRUE(open(QStringLiteral("count\nReading is wonderful. Apples taste better."))
                    .endsWith(QStringLiteral("Items: 1\nWords: 6\nCharacters: 42\nSentences: 2\n"
                                             "Flesch Reading Ease Score: 48.69\nFlesch-Kincaid Grade Level: 7.21")));

    // "don't" is one word; an emoji is one character; the old six lines are replaced.
    open(QStringLiteral("count\nI don't know 👍🏽\n\nItems: 9\nWords: 9\nCharacters: 9\nSentences: 9\n"
                        "Flesch Reading Ease Score: 9\nFlesch-Kincaid Grade Level: 9"));
    EXPECT_TRUE(storage.string().startsWith(QStringLiteral("count\nI don't know 👍🏽\n\nItems: 1\nWords: 4\n"
                                                           "Characters: 14\nSentences: 1\n")))
        << storage.string().toStdString();
}

TEST_F(Totals, HugeNotesStayWholeAndGetTheirTotal)
{
    QString note = QStringLiteral("sum\n");
    for (int i = 0; i < 20000; ++i)
        note += QStringLiteral("item 1.5 costs\n");
    note.chop(1);
    EXPECT_EQ(open(note), note + QStringLiteral("\n\nTotal: 30,000.0"));
    // A keystroke in the long note changes the block, nothing above it.
    typeAt(4, QStringLiteral("2 "));
    EXPECT_TRUE(storage.string().endsWith(QStringLiteral("item 1.5 costs\n\nTotal: 30,002.0")));
    EXPECT_EQ(storage.length(), note.size() + 2 + 17);

    // One number of 50,000 digits and commas reads as one too large for a double.
    QString digits;
    for (int i = 0; i < 25000; ++i)
        digits += QStringLiteral("9,");
    digits.chop(1);
    EXPECT_EQ(open(QStringLiteral("sum\n") + digits),
              QStringLiteral("sum\n") + digits + QStringLiteral("\n\nTotal: ∞"));
    // With a decimal comma the same line is a chain of points and no number.
    NumberLocale::setCurrent(locale("de_DE"));
    EXPECT_EQ(open(QStringLiteral("sum\n") + digits),
              QStringLiteral("sum\n") + digits + QStringLiteral("\n\nTotal: -"));
}

} // namespace
} // namespace scrivlet
