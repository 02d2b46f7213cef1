#include "editor/UndoManagement.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "notes/NoteViewModel.h"
#include "notes/NotesReloadedNotification.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "platform/qt/DocumentTextStorage.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "views/HintTextView.h"
#include "views/MainWindow.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"

#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace scrivlet;
using namespace std::chrono_literals;

namespace {

// The app's wiring, on a real store file in a temporary folder and a clock that the
// test moves.
class MainWindowTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        auto opened = CoreDataStack::open(m_dir.path());
        ASSERT_TRUE(opened.ok()) << qPrintable(opened.error().message);
        m_stack = std::move(opened).value();
        m_store = std::make_unique<CoreDataManager>(*m_stack, m_settings, m_clock);
    }

    std::unique_ptr<MainWindow> openWindow()
    {
        const auto latest = m_store->fetchLatest(1, false);
        m_note = std::make_shared<NoteViewModel>(latest.empty() ? m_store->createNote() : latest.back());
        m_open = {m_note};
        auto window = std::make_unique<MainWindow>(m_context, m_settings, m_note, [this](const Note &note) {
            ++m_saves;
            m_store->saveFromEditor(note, &m_open, nullptr);
        });
        window->show();
        QCoreApplication::processEvents(); // the first full pass is queued
        return window;
    }

    QString storedContent() { return m_store->fetchNote(m_note->id())->content; }

    QTemporaryDir m_dir;
    MemorySettingsStore m_settings;
    NotificationBus m_bus;
    ManualClock m_clock;
    KeywordPreferences m_keywordPreferences{m_settings, &m_bus};
    KeywordDefinitionsContainer m_keywords{m_keywordPreferences};
    VisualPreferences m_visual{m_settings};
    MiscPreferences m_misc{m_settings};
    UndoManagement m_undo{m_clock};
    EditorContext m_context{m_keywords, m_visual, m_misc, m_bus, m_clock, nullptr, nullptr, &m_undo};
    std::unique_ptr<CoreDataStack> m_stack;
    std::unique_ptr<CoreDataManager> m_store;
    std::shared_ptr<NoteViewModel> m_note;
    NoteViewModelList m_open;
    int m_saves = 0;
};

} // namespace

TEST_F(MainWindowTest, TypingIsSavedAfterAPauseAndOnClose)
{
    auto window = openWindow();
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Scrivlet"));
    NoteTextEdit &edit = window->editorView().textEdit();

    QTest::keyClicks(&edit, QStringLiteral("sum"));
    QTest::keyClick(&edit, Qt::Key_Return);
    QTest::keyClicks(&edit, QStringLiteral("12 apples"));
    // The total is written below the line being typed, and typing goes on above it.
    EXPECT_EQ(m_note->note().content, QStringLiteral("sum\n12 apples\n\nTotal: 12"));
    m_clock.advance(900ms);
    EXPECT_EQ(m_saves, 0) << "still typing";
    EXPECT_EQ(storedContent(), QString());
    m_clock.advance(100ms);
    EXPECT_EQ(m_saves, 1);
    EXPECT_EQ(storedContent(), QStringLiteral("sum\n12 apples\n\nTotal: 12"));

    // The last keystrokes before closing are not left to the timer.
    QTest::keyClicks(&edit, QStringLiteral(" and 3 pears"));
    window->close();
    EXPECT_EQ(storedContent(), QStringLiteral("sum\n12 apples and 3 pears\n\nTotal: 15"));
    EXPECT_EQ(m_settings.value(QStringLiteral("windowWidth")).toDouble(), double(window->width()));

    // The next start shows the same note, with the same frame.
    const QSize size = window->size();
    window.reset();
    auto again = openWindow();
    EXPECT_EQ(again->editorView().textEdit().storage().string(),
              QStringLiteral("sum\n12 apples and 3 pears\n\nTotal: 15"));
    EXPECT_EQ(again->size(), size);
}

TEST_F(MainWindowTest, KeywordLineIsColouredAndItsHintShowsUntilTheNoteGrows)
{
    auto window = openWindow();
    NoteTextEdit &edit = window->editorView().textEdit();
    HintTextView &hint = window->editorView().hintView();
    EXPECT_FALSE(hint.isShowingHint());

    QTest::keyClicks(&edit, QStringLiteral("math"));
    EXPECT_TRUE(hint.isShowingHint());
    EXPECT_TRUE(hint.text().startsWith(QStringLiteral("Type an '=' to calculate or convert.")));
    const TextAttributes keyword = edit.storage().attributesAt(1);
    ASSERT_TRUE(keyword.custom);
    EXPECT_EQ(keyword.custom->tag, QStringLiteral("keyword"));
    EXPECT_EQ(keyword.custom->subtag, QStringLiteral("MATH"));
    // On screen the keyword takes its theme colour, and what is typed after it doesn't.
    const QColor accent = edit.theme().color(QStringLiteral("accent1Main"));
    QTextCursor cursor(edit.document());
    cursor.setPosition(2);
    EXPECT_EQ(cursor.charFormat().foreground().color(), accent);

    QTest::keyClick(&edit, Qt::Key_Return);
    EXPECT_TRUE(hint.isShowingHint()) << "nothing written below the keyword yet";
    QTest::keyClicks(&edit, QStringLiteral("x"));
    EXPECT_FALSE(hint.isShowingHint());
    cursor.setPosition(6);
    EXPECT_NE(cursor.charFormat().foreground().color(), accent);

    // Removing the keyword makes the note plain: no mark is left on the first line.
    edit.storage().setSelectedRange({0, 4});
    QTest::keyClick(&edit, Qt::Key_Delete);
    EXPECT_FALSE(edit.storage().attributesAt(0).custom);
    EXPECT_EQ(edit.storage().string(), QStringLiteral("\nx"));
}

TEST_F(MainWindowTest, ANoteChangedElsewhereIsReloadedAndOthersAreLeftAlone)
{
    auto window = openWindow();
    NoteEditorView &view = window->editorView();
    QTest::keyClicks(&view.textEdit(), QStringLiteral("draft"));

    NotesReloadedNotification::post(m_bus, {QUuid::createUuid()});
    EXPECT_EQ(view.reloadEpoch(), 0);
    EXPECT_EQ(view.textEdit().storage().string(), QStringLiteral("draft"));

    Note changed = m_note->note();
    changed.content = QStringLiteral("list\nfrom the other machine");
    m_note->setNote(changed);
    NotesReloadedNotification::post(m_bus, {m_note->id()});
    EXPECT_EQ(view.reloadEpoch(), 1);
    EXPECT_EQ(view.textEdit().storage().string(), QStringLiteral("list\nfrom the other machine"));
}

TEST_F(MainWindowTest, UndoAndRedoWalkTheNotesStepsAndAreSaved)
{
    auto window = openWindow();
    NoteTextEdit &edit = window->editorView().textEdit();
    const QString first = QStringLiteral("sum\n12 apples\n\nTotal: 12");
    const QString second = QStringLiteral("sum\n12 apples and 3 pears\n\nTotal: 15");

    QTest::keyClicks(&edit, QStringLiteral("sum"));
    QTest::keyClick(&edit, Qt::Key_Return);
    QTest::keyClicks(&edit, QStringLiteral("12 apples"));
    m_clock.advance(500ms); // a pause ends the step
    QTest::keyClicks(&edit, QStringLiteral(" and 3 pears"));
    ASSERT_EQ(edit.storage().string(), second);

    // Each undo goes back a step, totals and caret included, however the passes
    // restyled the text in between; past the first step it stays put.
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(edit.storage().string(), first);
    EXPECT_EQ(edit.storage().selectedRange(), (TextRange{13, 0}));
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(edit.storage().string(), QString());
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(edit.storage().string(), QString());

    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(edit.storage().string(), first);
    const TextAttributes keyword = edit.storage().attributesAt(1);
    ASSERT_TRUE(keyword.custom) << "the step put back is styled as typed text is";
    EXPECT_EQ(keyword.custom->subtag, QStringLiteral("SUM"));
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(edit.storage().string(), second);

    // What undo puts back is the note's text: it is saved like typing.
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    m_clock.advance(1s);
    EXPECT_EQ(storedContent(), first);

    // Typing after an undo starts a new step and leaves nothing to redo.
    QTest::keyClicks(&edit, QStringLiteral("!"));
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(edit.storage().string(), QStringLiteral("sum\n12 apples!\n\nTotal: 12"));
    EXPECT_TRUE(edit.storage().mirrorsDocument());

    // Text a command wrote into the note is undone as one step.
    window->editorView().noteViewModel()->mutableNote().content = QStringLiteral("sum\n12 apples!\n8 pears");
    m_bus.post(QStringLiteral("textProgrammaticallyChanged"));
    EXPECT_EQ(edit.storage().string(), QStringLiteral("sum\n12 apples!\n8 pears\n\nTotal: 20"));
    QTest::keyClick(&edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(edit.storage().string(), QStringLiteral("sum\n12 apples!\n\nTotal: 12"));
}

TEST_F(MainWindowTest, RestylingTheWholeNoteKeepsTheReadersPlace)
{
    auto window = openWindow();
    window->resize(420, 360);
    NoteEditorView &view = window->editorView();
    NoteTextEdit &edit = view.textEdit();
    QString text = QStringLiteral("Reading notes");
    for (int i = 1; i < 600; ++i)
        text += QStringLiteral("\n**Point %1** about the *design*, see `section %1`").arg(i);
    view.noteViewModel()->mutableNote().content = text;
    view.session().reStyleAndProcessNote();
    QCoreApplication::processEvents();

    // The caret stays at the top while the reader scrolls half way down.
    edit.storage().setSelectedRange({0, 0});
    QScrollBar *scroll = edit.verticalScrollBar();
    scroll->setValue(scroll->maximum() / 2);
    const int place = scroll->value();
    ASSERT_GT(place, 0);

    // A larger font restyles every run of the note; the text itself is untouched.
    m_visual.setFontSize(QStringLiteral("extraLarge"));
    m_bus.post(QStringLiteral("fontPreferencesChanged"));
    QCoreApplication::processEvents();
    EXPECT_EQ(edit.storage().string(), text);
    ASSERT_TRUE(edit.storage().attributesAt(3).font);
    EXPECT_GT(edit.storage().attributesAt(3).font->pointSize, 16);
    EXPECT_EQ(edit.storage().selectedRange(), (TextRange{0, 0}));
    EXPECT_EQ(scroll->value(), place);
    EXPECT_TRUE(edit.storage().mirrorsDocument());
}
