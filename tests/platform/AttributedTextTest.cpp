#include "platform/AttributedText.h"

#include <QStringList>
#include <gtest/gtest.h>

using namespace scrivlet;

namespace {

TextAttributes colored(const QString &role)
{
    TextAttributes a;
    a.foreground = role;
    return a;
}

std::vector<std::pair<TextRange, QString>> foregroundRuns(const AttributedText &t)
{
    std::vector<std::pair<TextRange, QString>> runs;
    t.enumerateRuns({0, t.length()}, [&](const TextRange &r, const TextAttributes &a) {
        runs.emplace_back(r, a.foreground.value_or(QString()));
    });
    return runs;
}

} // namespace

TEST(AttributedText, AddingAttributesSplitsAndMergesRuns)
{
    AttributedText text(QStringLiteral("hello world"), colored(QStringLiteral("typeMain")));
    text.addAttributes({6, 5}, colored(QStringLiteral("accent1Main")));
    auto runs = foregroundRuns(text);
    ASSERT_EQ(runs.size(), 2u);
    EXPECT_EQ(runs[0].first, (TextRange{0, 6}));
    EXPECT_EQ(runs[1].first, (TextRange{6, 5}));
    EXPECT_EQ(runs[1].second, QStringLiteral("accent1Main"));

    // Setting the first part to the same attributes joins the runs again.
    text.addAttributes({0, 6}, colored(QStringLiteral("accent1Main")));
    EXPECT_EQ(text.runCount(), 1);

    // Adding keeps fields it doesn't name; removing clears only the named ones.
    TextAttributes custom;
    custom.custom = CustomAttribute{QStringLiteral("keyword"), QStringLiteral("SUM")};
    text.addAttributes({0, 3}, custom);
    TextRange effective;
    const TextAttributes first = text.attributesAt(1, &effective);
    EXPECT_EQ(effective, (TextRange{0, 3}));
    EXPECT_EQ(first.foreground, QStringLiteral("accent1Main"));
    ASSERT_TRUE(first.custom);
    EXPECT_EQ(first.custom->subtag, QStringLiteral("SUM"));
    text.removeAttributes({0, 11}, TextAttributes::Custom);
    EXPECT_FALSE(text.attributesAt(1).custom);
    EXPECT_EQ(text.attributesAt(1).foreground, QStringLiteral("accent1Main"));
    EXPECT_EQ(text.runCount(), 1);
}

TEST(AttributedText, ReplacingCharactersShiftsRunsAndSelection)
{
    AttributedText text(QStringLiteral("abc def ghi"), colored(QStringLiteral("typeMain")));
    text.addAttributes({8, 3}, colored(QStringLiteral("accent2Main")));
    text.setSelectedRange({9, 0});

    text.replaceCharacters({4, 3}, QStringLiteral("longer"), colored(QStringLiteral("accent3Main")));
    EXPECT_EQ(text.string(), QStringLiteral("abc longer ghi"));
    auto runs = foregroundRuns(text);
    ASSERT_EQ(runs.size(), 4u);
    EXPECT_EQ(runs[1], std::make_pair(TextRange{4, 6}, QStringLiteral("accent3Main")));
    EXPECT_EQ(runs[3], std::make_pair(TextRange{11, 3}, QStringLiteral("accent2Main")));
    EXPECT_EQ(text.selectedRange(), (TextRange{12, 0}));

    // Deleting a whole run leaves no empty run behind; a caret inside the deleted text
    // lands where the deletion was.
    text.setSelectedRange({6, 0});
    text.replaceCharacters({4, 6}, QString(), {});
    EXPECT_EQ(text.string(), QStringLiteral("abc  ghi"));
    EXPECT_EQ(text.selectedRange(), (TextRange{4, 0}));
    for (const auto &[range, role] : foregroundRuns(text))
        EXPECT_GT(range.length, 0);

    // Out-of-range requests are clamped, never a crash.
    text.replaceCharacters({100, 5}, QStringLiteral("!"), {});
    EXPECT_EQ(text.string(), QStringLiteral("abc  ghi!"));
    text.setText(QString(), {});
    EXPECT_EQ(text.length(), 0);
    text.addAttributes({0, 10}, colored(QStringLiteral("x")));
    EXPECT_EQ(text.runCount(), 1);
}

TEST(AttributedText, LineRangeCoversWholeLinesWithTheirLineFeed)
{
    AttributedText text(QStringLiteral("one\ntwo\n\nfour"));
    EXPECT_EQ(text.lineRange({0, 0}), (TextRange{0, 4}));
    EXPECT_EQ(text.lineRange({5, 0}), (TextRange{4, 4}));
    EXPECT_EQ(text.lineRange({4, 0}), (TextRange{4, 4}));  // caret at a line start
    EXPECT_EQ(text.lineRange({8, 0}), (TextRange{8, 1}));  // the empty line
    EXPECT_EQ(text.lineRange({11, 0}), (TextRange{9, 4})); // last line has no line feed
    EXPECT_EQ(text.lineRange({13, 0}), (TextRange{9, 4})); // caret at the very end
    EXPECT_EQ(text.lineRange({2, 4}), (TextRange{0, 8}));  // a range over two lines
    EXPECT_EQ(text.lineRange({0, 4}), (TextRange{0, 4}));  // ends right after a line feed
}

TEST(AttributedText, TypingTellsTheDelegateAndMovesTheCaret)
{
    struct Recorder : TextStorageDelegate {
        QStringList seen;
        void textStorageDidChange(TextStorage &storage) override { seen << storage.string(); }
    } recorder;

    AttributedText text(QStringLiteral("ab"));
    text.setDelegate(&recorder);
    text.setSelectedRange({1, 0});
    text.type(QStringLiteral("X"));
    text.setSelectedRange({0, 3});
    text.type(QStringLiteral("yz"));
    EXPECT_EQ(recorder.seen, (QStringList{QStringLiteral("aXb"), QStringLiteral("yz")}));
    EXPECT_EQ(text.selectedRange(), (TextRange{2, 0}));

    // Changes made through the storage itself are the passes' and stay quiet.
    text.replaceCharacters({0, 0}, QStringLiteral("-"), {});
    EXPECT_EQ(recorder.seen.size(), 2);
}

// Runs are kept merged around each change only; after any mix of changes the text must
// still read as a character-by-character model of it does, in as few runs as can be.
TEST(AttributedText, RandomEditsKeepRunsMergedAndRight)
{
    const QStringList roles{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")};
    AttributedText text(QStringLiteral("0123456789"), colored(roles[0]));
    QString modelText = text.text();
    std::vector<QString> model(std::size_t(modelText.size()), roles[0]);
    unsigned seed = 12345;
    const auto next = [&](unsigned bound) {
        seed = seed * 1103515245u + 12345u;
        return (seed >> 8) % bound;
    };
    for (int step = 0; step < 3000; ++step) {
        const qsizetype size = modelText.size();
        const qsizetype from = size ? qsizetype(next(unsigned(size) + 1)) : 0;
        const qsizetype length = qsizetype(next(unsigned(size - from) + 1));
        const QString role = roles[qsizetype(next(3))];
        switch (next(3)) {
        case 0:
            text.addAttributes({from, length}, colored(role));
            std::fill_n(model.begin() + from, length, role);
            break;
        case 1:
            text.setAttributes({from, length}, colored(role));
            std::fill_n(model.begin() + from, length, role);
            break;
        default: {
            const QString inserted = QString(qsizetype(next(4)), QChar(u'x'));
            text.replaceCharacters({from, std::min<qsizetype>(length, 3)}, inserted, colored(role));
            modelText.replace(from, std::min<qsizetype>(length, 3), inserted);
            model.erase(model.begin() + from, model.begin() + from + std::min<qsizetype>(length, 3));
            model.insert(model.begin() + from, std::size_t(inserted.size()), role);
            break;
        }
        }
        ASSERT_EQ(text.text(), modelText);
        int expectedRuns = 1;
        for (std::size_t i = 1; i < model.size(); ++i)
            expectedRuns += model[i] != model[i - 1];
        ASSERT_EQ(text.runCount(), expectedRuns) << "step " << step;
        for (qsizetype i = 0; i < modelText.size(); ++i)
            ASSERT_EQ(text.attributesAt(i).foreground, model[std::size_t(i)]) << "step " << step << " at " << i;
    }
}
