// The boxes beside a list note in the real editor: a click ticks the row in the text, and
// the boxes stay beside their lines as the note changes.

#include "keywords/KeywordTestEnvironment.h"

#include "editor/UndoManagement.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "platform/qt/DocumentTextStorage.h"
#include "views/ChecklistView.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

#include <gtest/gtest.h>

using namespace scrivlet;

namespace {

class ChecklistViewTest : public ::testing::Test {
protected:
    void open(const QString &text)
    {
        Note note;
        note.id = QUuid::createUuid();
        note.content = text;
        m_note = std::make_shared<NoteViewModel>(std::move(note));
        m_view = std::make_unique<NoteEditorView>(m_context, m_note, nullptr);
        m_view->resize(420, 400);
        m_view->show();
        settle();
    }

    void settle()
    {
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
    }

    void clickBox(int index)
    {
        const auto box = m_view->checklistView().boxRect(index);
        ASSERT_TRUE(box);
        QTest::mouseClick(&m_view->checklistView(), Qt::LeftButton, {}, box->center().toPoint());
        settle();
    }

    // Where the editor really drew the first line of a row's text, in the boxes' coordinates.
    std::pair<double, double> firstLine(int index) const
    {
        NoteTextEdit &edit = m_view->textEdit();
        const auto &item = m_note->note().checklistManager->checklist.at(std::size_t(index));
        const QTextBlock block = edit.document()->findBlock(int(item->responsibilityRange.location));
        const double top =
            edit.document()->documentLayout()->blockBoundingRect(block).top() - edit.verticalScrollBar()->value();
        return {top, top + block.layout()->lineAt(0).height()};
    }

    void expectBesideItsLine(int index) const
    {
        const auto box = m_view->checklistView().boxRect(index);
        ASSERT_TRUE(box);
        const auto [top, bottom] = firstLine(index);
        EXPECT_GE(box->top(), top) << "row " << index;
        EXPECT_LE(box->bottom(), bottom) << "row " << index;
    }

    scrivlet::testing::KeywordTestEnvironment m_env;
    UndoManagement m_undo{m_env.clock};
    EditorContext m_context = withUndo(m_env.context, m_undo);

    static EditorContext withUndo(EditorContext context, UndoManagement &undo)
    {
        context.undoManagement = &undo;
        return context;
    }
    std::shared_ptr<NoteViewModel> m_note;
    std::unique_ptr<NoteEditorView> m_view;
};

TEST_F(ChecklistViewTest, ClickingABoxTicksAndClearsTheRow)
{
    open(QStringLiteral("list\nmilk\n# Dairy\neggs"));
    ChecklistView &boxes = m_view->checklistView();
    ASSERT_TRUE(boxes.isVisible());
    EXPECT_GT(boxes.width(), 0);
    // A header shows no box.
    EXPECT_FALSE(boxes.boxRect(1));

    clickBox(2);
    EXPECT_EQ(m_view->textEdit().storage().string(), QStringLiteral("list\nmilk\n# Dairy\neggs /x"));
    EXPECT_EQ(m_note->note().content, QStringLiteral("list\nmilk\n# Dairy\neggs /x"));
    EXPECT_TRUE(m_note->note().checklistManager->checklist.at(2)->checked);

    clickBox(2);
    EXPECT_EQ(m_view->textEdit().storage().string(), QStringLiteral("list\nmilk\n# Dairy\neggs"));

    // A plain note has no margin of boxes.
    m_view->textEdit().storage().setSelectedRange({0, 4});
    QTest::keyClicks(&m_view->textEdit(), QStringLiteral("note"));
    settle();
    EXPECT_FALSE(boxes.isVisible());
}

TEST_F(ChecklistViewTest, ATickIsAnUndoStepOfItsOwn)
{
    open(QStringLiteral("list\nmilk\neggs"));
    NoteTextEdit &edit = m_view->textEdit();
    QTest::keyClicks(&edit, QStringLiteral("y"));
    clickBox(1);
    ASSERT_EQ(edit.storage().string(), QStringLiteral("list\nmilk\neggsy /x"));

    // The tick goes first, then the letter typed before it, each with its box.
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    settle();
    EXPECT_EQ(edit.storage().string(), QStringLiteral("list\nmilk\neggsy"));
    EXPECT_FALSE(m_note->note().checklistManager->checklist.at(1)->checked);
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    settle();
    EXPECT_EQ(edit.storage().string(), QStringLiteral("list\nmilk\neggs"));

    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    settle();
    EXPECT_EQ(edit.storage().string(), QStringLiteral("list\nmilk\neggsy /x"));
    EXPECT_TRUE(m_note->note().checklistManager->checklist.at(1)->checked);
    EXPECT_TRUE(m_view->checklistView().boxRect(1)) << "the boxes follow the checklist put back";
    EXPECT_TRUE(edit.storage().mirrorsDocument());
}

TEST_F(ChecklistViewTest, BoxesStayBesideTheirLinesWhenRowsWrap)
{
    open(QStringLiteral("list\nshort\n") + QStringLiteral("a row long enough to wrap in a narrow window ").repeated(4) +
         QStringLiteral("\n\nlast"));
    ASSERT_EQ(m_note->note().checklistManager->checklist.size(), 3u);
    for (int index : {0, 1, 2})
        expectBesideItsLine(index);

    // A narrower editor wraps the long row onto more lines: the last box moves down with it.
    const double before = m_view->checklistView().boxRect(2)->top();
    m_view->resize(260, 400);
    settle();
    const auto after = m_view->checklistView().boxRect(2);
    ASSERT_TRUE(after);
    EXPECT_GT(after->top(), before);
    for (int index : {0, 1, 2})
        expectBesideItsLine(index);

    // Scrolled, the boxes go along with the text.
    m_view->textEdit().verticalScrollBar()->setValue(40);
    settle();
    ASSERT_EQ(m_view->textEdit().verticalScrollBar()->value(), 40);
    expectBesideItsLine(2);
}

} // namespace
