#include "KeywordTestEnvironment.h"

#include "keywords/MarkdownStyler.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <vector>

namespace scrivlet {
namespace {

using testing::KeywordTestEnvironment;

// A stretch of note text with one markdown style: what it says and how it is marked.
struct Styled {
    QString text;
    QString subtag;

    friend bool operator==(const Styled &, const Styled &) = default;
    friend std::ostream &operator<<(std::ostream &out, const Styled &s)
    {
        return out << '"' << s.text.toStdString() << "\":" << s.subtag.toStdString();
    }
};

// Text between two markers: the markers marked as such, the text with the style.
std::vector<Styled> around(const char16_t *marker, const char16_t *text, const char16_t *subtag)
{
    const QString style = QString::fromUtf16(subtag);
    const Styled markerRun{QString::fromUtf16(marker), style + u"Marker"};
    return {markerRun, {QString::fromUtf16(text), style}, markerRun};
}

std::vector<Styled> operator+(std::vector<Styled> first, const std::vector<Styled> &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class MarkdownTest : public ::testing::Test {
protected:
    void open(const QString &content)
    {
        session.reset();
        Note note;
        note.content = content;
        noteViewModel = std::make_unique<NoteViewModel>(std::move(note));
        session = std::make_unique<NoteEditorSession>(storage, *noteViewModel, env.context, [](const Note &) {});
        session->open();
    }

    // The markdown runs of the note, in order; neighbours with the same mark are one.
    std::vector<Styled> styled() const
    {
        std::vector<Styled> found;
        storage.enumerateRuns({0, storage.length()}, [&](const TextRange &range, const TextAttributes &a) {
            if (a.custom && a.custom->tag == u"markdown")
                found.push_back({storage.substring(range), a.custom->subtag});
        });
        return found;
    }

    CustomAttribute markAt(qsizetype index) const
    {
        const TextAttributes a = storage.attributesAt(index);
        return a.custom ? *a.custom : CustomAttribute{};
    }

    std::vector<std::pair<TextRange, TextAttributes>> allRuns() const
    {
        std::vector<std::pair<TextRange, TextAttributes>> runs;
        storage.enumerateRuns({0, storage.length()},
                              [&](const TextRange &r, const TextAttributes &a) { runs.emplace_back(r, a); });
        return runs;
    }

    // A keystroke as the editor reports it: the record first, then the change.
    void type(qsizetype at, const QString &text)
    {
        storage.setSelectedRange({at, 0});
        session->willChangeText({at, 0}, text, UserActionType::keydown);
        storage.type(text);
    }

    void backspace(qsizetype at)
    {
        storage.setSelectedRange({at, 0});
        session->willChangeText({at - 1, 1}, {}, UserActionType::delete_);
        storage.setDelegate(nullptr);
        storage.replaceCharacters({at - 1, 1}, {}, storage.typingAttributes());
        storage.setDelegate(session.get());
        session->textDidChange();
    }

    KeywordTestEnvironment env;
    AttributedText storage;
    std::unique_ptr<NoteViewModel> noteViewModel;
    std::unique_ptr<NoteEditorSession> session;
};

TEST_F(MarkdownTest, EmphasisMarkersAreColouredAndTheirTextTakesTheStyle)
{
    open(QStringLiteral("***both*** **bold** *it* ~~gone~~ __under__"));
    EXPECT_EQ(styled(), around(u"***", u"both", u"boldItalic") + around(u"**", u"bold", u"bold") +
                            around(u"*", u"it", u"italic") + around(u"~~", u"gone", u"strikethrough") +
                            around(u"__", u"under", u"underline"));
    const CustomAttribute both = markAt(4);
    EXPECT_EQ(both.bold, true);
    EXPECT_EQ(both.italic, true);
    EXPECT_EQ(markAt(0).color, QStringLiteral("markerColor"));
    EXPECT_FALSE(markAt(0).bold);
    EXPECT_EQ(markAt(13).bold, true);
    EXPECT_FALSE(markAt(13).italic);
    EXPECT_EQ(markAt(21).italic, true);
    EXPECT_EQ(markAt(27).strikethroughStyle, 1);
    // Underscores underline; they are not the bold of other markdown dialects.
    const CustomAttribute under = markAt(37);
    EXPECT_EQ(under.underlineStyle, 1);
    EXPECT_FALSE(under.bold);
    EXPECT_EQ(storage.string(), QStringLiteral("***both*** **bold** *it* ~~gone~~ __under__"));
}

TEST_F(MarkdownTest, HeadingsNeedABlankAfterOneToThreeHashes)
{
    open(QStringLiteral("# One\n##\tTwo\n### Three\n#x\n#### four\n# "));
    EXPECT_EQ(styled(), (std::vector<Styled>{
                            {"#", "h1"}, {"One", "h1"}, {"##", "h2"}, {"Two", "h2"}, {"###", "h3"}, {"Three", "h3"}}));
    const double h1 = markAt(2).fontScale.value_or(1);
    const double h2 = markAt(9).fontScale.value_or(1);
    const double h3 = markAt(17).fontScale.value_or(1);
    EXPECT_GT(h1, h2);
    EXPECT_GT(h2, h3);
    EXPECT_GT(h3, 1.0);
    EXPECT_EQ(markAt(0).bold, true);
    EXPECT_EQ(markAt(2).color, markAt(17).color);
}

TEST_F(MarkdownTest, CommentsStartTheirLineAfterAnyBlanks)
{
    open(QStringLiteral("  // note to self\nprice // not a comment\n\t//tight\nhttp://example.com"));
    EXPECT_EQ(styled(), (std::vector<Styled>{
                            {"//", "commentMarker"}, {"note to self", "commentMarker"}, {"//tight", "commentMarker"}}));
    EXPECT_EQ(markAt(2).italic, true);
    EXPECT_TRUE(markAt(2).color);
}

TEST_F(MarkdownTest, InlineCodeAndBlocksOfCode)
{
    open(QStringLiteral("`a` and `b`\n```\n**not bold** `nor code`\n```\nafter **bold**"));
    EXPECT_EQ(styled(), around(u"`", u"a", u"inlineCode") + around(u"`", u"b", u"inlineCode") +
                            around(u"```", u"\n**not bold** `nor code`\n", u"codeBlock") +
                            around(u"**", u"bold", u"bold"));
    EXPECT_EQ(markAt(0).color, QStringLiteral("inlineCodeMarkerColor"));
    EXPECT_EQ(markAt(12).color, QStringLiteral("codeBlockMarkerColor"));
    EXPECT_FALSE(markAt(19).bold) << "markers inside a block of code are code";

    // A fence that is never closed styles nothing; a third fence after a block neither.
    open(QStringLiteral("```\ncode **x**\nmore"));
    EXPECT_EQ(styled(), around(u"**", u"x", u"bold"));
    open(QStringLiteral("```\none\n```\ntwo\n```\nthree"));
    EXPECT_EQ(styled(), around(u"```", u"\none\n", u"codeBlock"));
}

TEST_F(MarkdownTest, UnbalancedMarkersLeaveTheTextUntouched)
{
    for (const QString &text : {QStringLiteral("**a *b"), QStringLiteral("a ~~b"), QStringLiteral("`a\nb`"),
                                QStringLiteral("__a _b"), QStringLiteral("**a*"), QStringLiteral("2 * 3 = 6")}) {
        open(text);
        EXPECT_EQ(styled(), std::vector<Styled>{}) << text.toStdString();
        EXPECT_EQ(storage.string(), text);
    }
}

TEST_F(MarkdownTest, RestylingIsStableAndFollowsTheMarkers)
{
    const QString text =
        QStringLiteral("# Plan\n**bold** and *it*\n  // aside\n```\nint x;\n```\n`c` ~~s~~ __u__\n## End");
    open(text);
    const auto first = allRuns();
    session->reStyleAndProcessNote();
    EXPECT_EQ(allRuns(), first);

    // Taking away the closing marker takes the bold away, with every look it brought.
    backspace(15);
    EXPECT_EQ(storage.string().mid(7, 8), QStringLiteral("**bold* "));
    for (qsizetype i = 7; i < 14; ++i) {
        EXPECT_NE(markAt(i).subtag, QStringLiteral("bold"));
        EXPECT_NE(markAt(i).subtag, QStringLiteral("boldMarker"));
    }
    // The star left behind now opens an italic that the star before "it" closes.
    EXPECT_EQ(markAt(13).subtag, QStringLiteral("italicMarker"));
    EXPECT_EQ(markAt(14).subtag, QStringLiteral("italic"));
    EXPECT_EQ(markAt(9).subtag, QString());
}

TEST_F(MarkdownTest, TypingOnOneLineStylesItAsAFullRestyleWould)
{
    const QString text = QStringLiteral("notes\n```\ncode here\n```\nplain line\n//\nafter\n# Title\nend");
    open(text);
    struct Keystroke {
        const char16_t *anchor;
        qsizetype offset;
        QString text;
    };
    // Inside the block; closing a bold on a plain line; under a bare "//"; on a heading.
    const std::vector<Keystroke> keys{
        {u"here", 0, QStringLiteral("*")},
        {u"plain", 0, QStringLiteral("**b**")},
        {u"after", 5, QStringLiteral("x")},
        {u"Title", 5, QStringLiteral("!")},
    };
    for (const Keystroke &key : keys) {
        const qsizetype at = storage.string().indexOf(QStringView(key.anchor)) + key.offset;
        type(at, key.text);
        ASSERT_TRUE(TextChangePipeline::isLineOnlyEdit(session->editRecord(),
                                                       storage.substring(storage.lineRange({at, 0})), {}))
            << key.text.toStdString();
        const auto byLine = allRuns();
        const auto byLineStyled = styled();
        session->reStyleAndProcessNote();
        EXPECT_EQ(styled(), byLineStyled) << key.text.toStdString();
        EXPECT_TRUE(allRuns() == byLine) << key.text.toStdString();
    }
    EXPECT_EQ(markAt(storage.string().indexOf(u"*here")).subtag, QStringLiteral("codeBlock"));
}

TEST_F(MarkdownTest, ALongNoteIsStyledInOneSweepWithoutChangingItsText)
{
    QString text = QStringLiteral("journal");
    for (int i = 0; i < 20000; ++i) {
        switch (i % 5) {
        case 0:
            text += QStringLiteral("\n# Day %1").arg(i);
            break;
        case 1:
            text += QStringLiteral("\n**met** *Ann* at `%1` ~~late~~").arg(i);
            break;
        case 2:
            text += QStringLiteral("\n  // remember %1").arg(i);
            break;
        case 3:
            text += QStringLiteral("\n```\nx = %1\n```").arg(i);
            break;
        default:
            text += QStringLiteral("\nplain __%1__ line").arg(i);
            break;
        }
    }
    open(text);
    session->reStyleAndProcessNote();
    EXPECT_EQ(storage.string(), text);
    std::size_t bold = 0, blocks = 0, headings = 0;
    for (const Styled &s : styled()) {
        bold += s.subtag == u"bold";
        blocks += s.subtag == u"codeBlock";
        headings += s.subtag == u"h1";
    }
    EXPECT_EQ(bold, 4000u);
    EXPECT_EQ(blocks, 4000u);
    EXPECT_EQ(headings, 8000u);
}

} // namespace
} // namespace scrivlet
