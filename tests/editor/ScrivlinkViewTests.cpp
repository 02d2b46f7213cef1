#include "keywords/KeywordTestEnvironment.h"

#include "notes/NoteViewModel.h"
#include "platform/qt/DocumentTextStorage.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>
#include <gtest/gtest.h>

namespace scrivlet {
namespace {

using testing::KeywordTestEnvironment;

const QString kArticle = QStringLiteral("https://www.example.com/path/to/my-long-article-name/");
const QString kArticleShort = QStringLiteral("+example.com/...long-article-name+");

// One note open in the desktop note view.
struct DesktopNote {
    explicit DesktopNote(const QString &content)
        : view(env.context, std::make_shared<NoteViewModel>(note(content)), nullptr), editor(view.textEdit()),
          noteViewModel(*view.noteViewModel())
    {
        view.resize(700, 300);
        view.show();
        // The view runs its first full pass on the next turn of the loop.
        QCoreApplication::processEvents();
    }

    static Note note(const QString &content)
    {
        Note n;
        n.content = content;
        return n;
    }

    QString text() const { return editor.storage().string(); }

    // The middle of the character at `position`, where a click lands on it.
    QPoint pointAt(qsizetype position)
    {
        QTextCursor cursor(editor.document());
        cursor.setPosition(int(position));
        const QRect left = editor.cursorRect(cursor);
        cursor.setPosition(int(position + 1));
        const QRect right = editor.cursorRect(cursor);
        return {(left.left() + right.left()) / 2, left.center().y()};
    }

    void clickAt(qsizetype position) { QTest::mouseClick(editor.viewport(), Qt::LeftButton, {}, pointAt(position)); }

    KeywordTestEnvironment env;
    NoteEditorView view;
    NoteTextEdit &editor;
    NoteViewModel &noteViewModel;
};

TEST(ScrivlinkView, AClickTogglesALinkAndTheHandShowsOverIt)
{
    DesktopNote note(QStringLiteral("note\nsee ") + kArticle + QStringLiteral(" ok"));
    ASSERT_EQ(note.text(), QStringLiteral("note\nsee ") + kArticleShort + QStringLiteral(" ok"));
    EXPECT_TRUE(note.editor.storage().attributesAt(12).custom.has_value());

    QTest::mouseMove(note.editor.viewport(), note.pointAt(15));
    EXPECT_EQ(note.editor.viewport()->cursor().shape(), Qt::PointingHandCursor);
    QTest::mouseMove(note.editor.viewport(), note.pointAt(1));
    EXPECT_EQ(note.editor.viewport()->cursor().shape(), Qt::IBeamCursor);

    note.clickAt(15);
    EXPECT_EQ(note.text(), QStringLiteral("note\nsee ") + kArticle + QStringLiteral(" ok"));
    EXPECT_EQ(note.noteViewModel.note().content, note.text());

    note.clickAt(20);
    EXPECT_EQ(note.text(), QStringLiteral("note\nsee ") + kArticleShort + QStringLiteral(" ok"));
    EXPECT_EQ(note.editor.storage().selectedRange(), (TextRange{9 + kArticleShort.size(), 0}));

    // A click on plain text only moves the caret.
    note.clickAt(2);
    EXPECT_EQ(note.text(), QStringLiteral("note\nsee ") + kArticleShort + QStringLiteral(" ok"));
}

TEST(ScrivlinkView, TypingIntoAShortLinkIsRefusedAndCopiesReadInFull)
{
    DesktopNote note(QStringLiteral("note\nsee ") + kArticle + QStringLiteral(" ok"));
    const QString shortText = note.text();
    std::vector<QVariantMap> pills;
    auto subscription = note.env.bus.subscribe(QStringLiteral("MessagePillNotification"),
                                               [&](const QVariantMap &payload) { pills.push_back(payload); });

    note.editor.storage().setSelectedRange({14, 0});
    QTest::keyClicks(&note.editor, QStringLiteral("q"));
    EXPECT_EQ(note.text(), shortText);
    ASSERT_EQ(pills.size(), 1u);
    EXPECT_EQ(pills[0].value(QStringLiteral("message")).toString(),
              QStringLiteral("Shortened links can't be edited. Expand before editing."));

    // Arrows move through it; typing goes on behind it.
    QTest::keyClick(&note.editor, Qt::Key_Right);
    EXPECT_EQ(note.editor.storage().selectedRange().location, 15);
    note.editor.storage().setSelectedRange({9 + kArticleShort.size(), 0});
    QTest::keyClicks(&note.editor, QStringLiteral("!"));
    EXPECT_EQ(note.text(), QStringLiteral("note\nsee ") + kArticleShort + QStringLiteral("! ok"));

    note.editor.selectAll();
    note.editor.copy();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("note\nsee ") + kArticle + QStringLiteral("! ok"));

    // Backspace behind a link takes the whole link at once.
    note.editor.storage().setSelectedRange({9 + kArticleShort.size(), 0});
    QTest::keyClick(&note.editor, Qt::Key_Backspace);
    EXPECT_EQ(note.text(), QStringLiteral("note\nsee ! ok"));
    EXPECT_TRUE(note.noteViewModel.note().scrivlinkManager->scrivlinks.empty());
}

} // namespace
} // namespace scrivlet
