#include "editor/UndoManagement.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "notes/CoreDataManager.h"
#include "notes/CoreDataNotesManager.h"
#include "notes/CoreDataStack.h"
#include "notes/NoteViewModel.h"
#include "platform/ManualClock.h"
#include "platform/MemoryAlerts.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "platform/qt/DocumentTextStorage.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/NotesPreferences.h"
#include "shell/preferences/TutorialPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "views/MainWindow.h"
#include "views/MessagePill.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"
#include "views/SplitView.h"
#include "views/TextViewRegistry.h"
#include "views/VoidView.h"
#include "views/SearchView.h"

#include <QAction>
#include <QGuiApplication>
#include <QScreen>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace scrivlet;

namespace {

// The window on a real stack: a store in a temporary folder, slots and all.
class MainWindowStackTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        auto opened = CoreDataStack::open(m_dir.path());
        ASSERT_TRUE(opened.ok()) << qPrintable(opened.error().message);
        m_stack = std::move(opened).value();
        TutorialPreferences(m_settings).setShowOnboarding(false);
        m_store = std::make_unique<CoreDataManager>(*m_stack, m_settings, m_clock);
        m_notes = std::make_unique<CoreDataNotesManager>(*m_store, m_settings, m_bus, m_clock, m_alerts);
        m_notes->setUp();
        m_pills = m_bus.subscribe(QStringLiteral("MessagePillNotification"), [this](const QVariantMap &p) {
            m_lastPill = p.value(QStringLiteral("message")).toString();
        });
    }

    std::unique_ptr<MainWindow> openWindow()
    {
        const auto open = m_notes->currentNote();
        auto window = std::make_unique<MainWindow>(m_context, m_settings, open, [this, open](const Note &note) {
            NoteViewModelList holder{open};
            m_store->saveFromEditor(note, &holder, nullptr);
        });
        window->attachStack(*m_store, *m_notes);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        return window;
    }

    static void focus(NoteEditorView *editor)
    {
        editor->textEdit().setFocus();
        QCoreApplication::processEvents();
    }

    QTemporaryDir m_dir;
    MemorySettingsStore m_settings;
    NotificationBus m_bus;
    ManualClock m_clock;
    MemoryAlerts m_alerts;
    KeywordPreferences m_keywordPreferences{m_settings, &m_bus};
    KeywordDefinitionsContainer m_keywords{m_keywordPreferences};
    VisualPreferences m_visual{m_settings};
    MiscPreferences m_misc{m_settings};
    UndoManagement m_undo{m_clock};
    EditorContext m_context{m_keywords, m_visual, m_misc, m_bus, m_clock, nullptr, nullptr, &m_undo};
    std::unique_ptr<CoreDataStack> m_stack;
    std::unique_ptr<CoreDataManager> m_store;
    std::unique_ptr<CoreDataNotesManager> m_notes;
    NotificationBus::Subscription m_pills;
    QString m_lastPill;
};

} // namespace

TEST(MainWindowFrame, AFrameOnNoScreenComesBackOntoTheNearestOne)
{
    const QList<QRect> screens{QRect(0, 0, 1920, 1080), QRect(1920, 0, 1280, 1024)};
    // Touching a screen, even partly: left where the user put it.
    EXPECT_EQ(MainWindow::reachableFrame(QRect(1800, 500, 400, 300), screens), QRect(1800, 500, 400, 300));
    // Right of the second screen, which is gone: pulled back to its right edge.
    EXPECT_EQ(MainWindow::reachableFrame(QRect(4000, 100, 400, 300), screens), QRect(2800, 100, 400, 300));
    // Above and left of everything, and larger than the nearest screen: shrunk to fit.
    EXPECT_EQ(MainWindow::reachableFrame(QRect(-5000, -3000, 2500, 1200), screens), QRect(0, 0, 1920, 1080));
    EXPECT_EQ(MainWindow::reachableFrame(QRect(5, 5, 10, 10), {}), QRect(5, 5, 10, 10));
}

TEST_F(MainWindowStackTest, AFrameSavedOnAScreenThatIsGoneOpensOnScreen)
{
    m_settings.setValue(QStringLiteral("windowOriginX"), 90000.0);
    m_settings.setValue(QStringLiteral("windowOriginY"), -90000.0);
    m_settings.setValue(QStringLiteral("windowWidth"), 420.0);
    m_settings.setValue(QStringLiteral("windowHeight"), 380.0);
    auto window = openWindow();
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(available.contains(window->geometry())) << window->geometry().x() << "," << window->geometry().y();
    EXPECT_EQ(window->size(), QSize(420, 380));
    EXPECT_TRUE(window->windowFlags().testFlag(Qt::FramelessWindowHint));

    // Closing keeps the frame and the time the window went away.
    m_clock.setNow(QDateTime::fromSecsSinceEpoch(1'700'000'000));
    window->close();
    EXPECT_EQ(NotesPreferences(m_settings).lastWindowCloseTime(), 1'700'000'000.0);
    EXPECT_EQ(m_settings.value(QStringLiteral("windowWidth")).toDouble(), 420.0);
}

TEST_F(MainWindowStackTest, CommandsActOnThePaneThatHasTheFocus)
{
    auto window = openWindow();
    SplitView &split = window->splitView();
    TextViewRegistry &registry = window->textViewRegistry();
    ASSERT_NE(split.slottedEditor(), nullptr);
    EXPECT_FALSE(split.slottedEditor()->isVisible()) << "the split starts closed";
    EXPECT_EQ(registry.activeTextView(), split.stackEditor());

    window->command(QStringLiteral("toggleSplit"))->trigger();
    EXPECT_TRUE(NotesPreferences(m_settings).isSplitView());
    EXPECT_TRUE(split.slottedEditor()->isVisible());
    EXPECT_EQ(split.splitter().orientation(), Qt::Vertical);
    EXPECT_EQ(split.slottedEditor()->noteViewModel()->note().content.left(8), QStringLiteral("# Hermes"));

    // In the slotted pane "new" is refused and "next" walks the slots.
    focus(split.slottedEditor());
    EXPECT_TRUE(registry.isSlottedActive());
    EXPECT_FALSE(registry.activeSectionIsTop());
    // A line along the top of the pane the keys act on tells the two apart.
    const auto *marker = split.findChild<QWidget *>(QStringLiteral("activePaneMarker"));
    ASSERT_NE(marker, nullptr);
    const auto paneTop = [&](NoteEditorView *pane) { return pane->mapTo(&split, QPoint(0, 0)).y(); };
    EXPECT_TRUE(marker->isVisible());
    EXPECT_EQ(marker->geometry().top(), paneTop(split.slottedEditor()));
    EXPECT_GT(marker->geometry().top(), paneTop(split.stackEditor()));
    const auto stackSize = m_notes->noteViewModels().size();
    window->command(QStringLiteral("newNote"))->trigger();
    EXPECT_EQ(m_lastPill, QStringLiteral("New notes can only be created in the ephemeral pane"));
    EXPECT_EQ(m_notes->noteViewModels().size(), stackSize);
    window->command(QStringLiteral("nextNote"))->trigger();
    EXPECT_EQ(m_notes->slottedIndex(), 1);
    EXPECT_EQ(split.slottedEditor()->noteViewModel()->note().content, QStringLiteral("# Aphrodite"));
    EXPECT_TRUE(registry.isSlottedActive()) << "the pane keeps the focus with its new note";
    window->command(QStringLiteral("deleteNote"))->trigger();
    EXPECT_EQ(m_lastPill, QStringLiteral("Slotted notes cannot be deleted"));

    // Back in the stack's pane the same keys act on the stack.
    QTest::keyClicks(&split.stackEditor()->textEdit(), QStringLiteral("written"));
    focus(split.stackEditor());
    EXPECT_FALSE(registry.isSlottedActive());
    EXPECT_EQ(marker->geometry().top(), paneTop(split.stackEditor()));

    // The panes can stand side by side; the line then runs down the active one's side.
    window->command(QStringLiteral("toggleSplitDirection"))->trigger();
    EXPECT_EQ(split.splitter().orientation(), Qt::Horizontal);
    EXPECT_TRUE(NotesPreferences(m_settings).isSplitHorizontal());
    EXPECT_LT(marker->width(), marker->height());
    window->command(QStringLiteral("toggleSplitDirection"))->trigger();
    EXPECT_EQ(split.splitter().orientation(), Qt::Vertical);
    window->command(QStringLiteral("newNote"))->trigger();
    EXPECT_EQ(m_notes->noteViewModels().size(), stackSize + 1);
    EXPECT_EQ(split.stackEditor()->noteViewModel(), m_notes->currentNote());

    // Slot shortcuts go to the slot and into its pane; swapping puts the slots first.
    window->command(QStringLiteral("jumpToSlot5"))->trigger();
    EXPECT_EQ(m_notes->slottedIndex(), 4);
    EXPECT_EQ(split.slottedEditor()->noteViewModel()->note().content, QStringLiteral("# Zeus"));
    EXPECT_TRUE(registry.isSlottedActive());
    window->command(QStringLiteral("swapPanes"))->trigger();
    EXPECT_TRUE(split.isFirst(split.slottedEditor()));

    // Closing the split with the slots in front leaves the slots alone on screen.
    window->command(QStringLiteral("toggleSplit"))->trigger();
    EXPECT_FALSE(NotesPreferences(m_settings).isSplitView());
    EXPECT_TRUE(split.slottedEditor()->isVisible());
    EXPECT_FALSE(split.stackEditor()->isVisible());
    EXPECT_TRUE(registry.isSlottedActive());
    EXPECT_FALSE(marker->isVisible()) << "one pane needs no marking";
}

TEST_F(MainWindowStackTest, SplitSettingsAreRestoredAndPillsShowThenFade)
{
    NotesPreferences(m_settings).setIsSplitView(true);
    NotesPreferences(m_settings).setIsSplitHorizontal(true);
    auto window = openWindow();
    EXPECT_TRUE(window->splitView().slottedEditor()->isVisible());
    EXPECT_EQ(window->splitView().splitter().orientation(), Qt::Horizontal);
    EXPECT_TRUE(window->command(QStringLiteral("toggleSplit"))->isChecked());
    EXPECT_TRUE(window->command(QStringLiteral("nextNote"))->toolTip().contains(QStringLiteral("Alt+Right")));

    MessagePill &pill = window->messagePill();
    m_bus.postMessagePill(QStringLiteral("No older notes"), QStringLiteral("warning"));
    EXPECT_TRUE(pill.isVisible());
    m_bus.postMessagePill(QStringLiteral("Note deleted"), QStringLiteral("success"));
    EXPECT_EQ(pill.text(), QStringLiteral("Note deleted")) << "the new message takes the old one's place";
    EXPECT_EQ(pill.type(), QStringLiteral("success"));
    EXPECT_LT(pill.geometry().bottom(), window->centralWidget()->height());
    EXPECT_GT(pill.geometry().top(), window->centralWidget()->height() / 2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !pill.isVisible(); }, MessagePill::kHoldMs + MessagePill::kFadeMs + 2000));

    // The Void and search stand in place of the notes until they close; the bar shows which.
    window->command(QStringLiteral("theVoid"))->trigger();
    EXPECT_EQ(window->page(), MainWindow::Page::theVoid);
    EXPECT_TRUE(window->command(QStringLiteral("theVoid"))->isChecked());
    window->command(QStringLiteral("search"))->trigger();
    EXPECT_EQ(window->page(), MainWindow::Page::search);
    EXPECT_FALSE(window->command(QStringLiteral("theVoid"))->isChecked());
    emit window->findChild<SearchView *>()->closed();
    EXPECT_EQ(window->page(), MainWindow::Page::notes);
    EXPECT_FALSE(window->command(QStringLiteral("search"))->isChecked());
    QCoreApplication::processEvents();
    EXPECT_TRUE(window->splitView().stackEditor()->textEdit().hasFocus());
}

TEST_F(MainWindowStackTest, EachNoteKeepsItsUndoWhileWalkingTheStack)
{
    using namespace std::chrono_literals;
    auto window = openWindow();
    SplitView &split = window->splitView();
    focus(split.stackEditor());
    auto content = [&] { return split.stackEditor()->textEdit().storage().string(); };
    auto undo = [&] {
        QTest::keyClick(&split.stackEditor()->textEdit(), Qt::Key_Z, Qt::ControlModifier);
        QCoreApplication::processEvents();
    };

    const QString first = content();
    QTest::keyClicks(&split.stackEditor()->textEdit(), QStringLiteral(" one"));
    m_clock.advance(500ms);
    QTest::keyClicks(&split.stackEditor()->textEdit(), QStringLiteral(" two"));

    // Another note, typed into, with its own history.
    window->command(QStringLiteral("newNote"))->trigger();
    QCoreApplication::processEvents();
    focus(split.stackEditor());
    QTest::keyClicks(&split.stackEditor()->textEdit(), QStringLiteral("fresh"));
    window->command(QStringLiteral("previousNote"))->trigger();
    QCoreApplication::processEvents();
    focus(split.stackEditor());
    ASSERT_EQ(content(), first + QStringLiteral(" one two"));

    // Back on the first note, undo takes back its own words, one step at a time, and
    // leaves the other note alone.
    undo();
    EXPECT_EQ(content(), first + QStringLiteral(" one"));
    undo();
    EXPECT_EQ(content(), first);
    window->command(QStringLiteral("nextNote"))->trigger();
    QCoreApplication::processEvents();
    focus(split.stackEditor());
    EXPECT_EQ(content(), QStringLiteral("fresh"));
    undo();
    EXPECT_EQ(content(), QString());
}
