#include "KeywordTestEnvironment.h"

#include "notes/NoteViewModel.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"
#include "views/ThemePalette.h"

#include <QCoreApplication>
#include <QTextCursor>
#include <QTextDocument>
#include <gtest/gtest.h>

namespace scrivlet {
namespace {

using testing::KeywordTestEnvironment;

// The look a character has on screen: the format of the character after `position`.
QTextCharFormat formatAt(const QTextDocument &document, int position)
{
    QTextCursor cursor(const_cast<QTextDocument *>(&document));
    cursor.setPosition(position + 1);
    return cursor.charFormat();
}

TEST(MarkdownOnScreen, TheEditorDrawsTheStylesInTheThemesColours)
{
    KeywordTestEnvironment env;
    Note note;
    note.content = QStringLiteral("# Head\n**b** *i* ~~s~~ __u__ `c`\n```\ncode\n```");
    NoteEditorView view(env.context, std::make_shared<NoteViewModel>(note), [](const Note &) {});
    view.show();
    // The note's first full pass runs on the next turn of the event loop.
    QCoreApplication::processEvents();
    const QTextDocument &document = *view.textEdit().document();
    const QString text = note.content;
    const ThemePalette &theme = view.textEdit().theme();
    const auto at = [&](const char16_t *needle) { return int(text.indexOf(QStringView(needle))); };

    const QTextCharFormat body = formatAt(document, at(u" *i"));
    const QTextCharFormat heading = formatAt(document, at(u"Head"));
    EXPECT_EQ(heading.fontWeight(), QFont::Bold);
    EXPECT_GT(heading.font().pointSizeF(), body.font().pointSizeF());
    EXPECT_EQ(heading.foreground().color(), theme.color(QStringLiteral("accent1Main")));

    EXPECT_EQ(formatAt(document, at(u"b**")).fontWeight(), QFont::Bold);
    EXPECT_NE(body.fontWeight(), QFont::Bold);
    EXPECT_EQ(formatAt(document, at(u"**b")).foreground().color(), theme.color(QStringLiteral("markerColor")));
    EXPECT_TRUE(formatAt(document, at(u"i*")).fontItalic());
    EXPECT_FALSE(body.fontItalic());
    EXPECT_TRUE(formatAt(document, at(u"s~")).fontStrikeOut());
    EXPECT_TRUE(formatAt(document, at(u"u_")).fontUnderline());
    EXPECT_FALSE(body.fontUnderline());
    EXPECT_EQ(formatAt(document, at(u"c`")).foreground().color(), theme.color(QStringLiteral("accent3Main")));
    EXPECT_EQ(formatAt(document, at(u"code")).foreground().color(), theme.color(QStringLiteral("accent2Main")));
    EXPECT_EQ(formatAt(document, at(u"```")).foreground().color(), theme.color(QStringLiteral("codeBlockMarkerColor")));
}

} // namespace
} // namespace scrivlet
