#include "keywords/KeywordDefinitionsContainer.h"
#include "notes/CoreDataManager.h"
#include "notes/CoreDataNotesManager.h"
#include "notes/CoreDataStack.h"
#include "notes/NoteViewModel.h"
#include "platform/ManualClock.h"
#include "platform/MemoryAlerts.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "shell/lifecycle/AppLifecycle.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "views/MainWindow.h"
#include "views/MainWindowPresenter.h"
#include "views/NoteEditorView.h"
#include "views/NoteTextEdit.h"
#include "views/PopoverWindow.h"
#include "views/StatusItemManager.h"
#include "views/ThemePalette.h"

#include <QApplication>
#include <QMenu>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace scrivlet;

namespace {

// The app's start-up as app/main.cpp wires it: the store in a temporary folder, the
// life cycle, the window presenter and the tray, for one way of presenting the app.
class Presentation : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_dir.isValid());
        auto opened = CoreDataStack::open(m_dir.path());
        ASSERT_TRUE(opened.ok()) << qPrintable(opened.error().message);
        m_stack = std::move(opened).value();
    }

    void TearDown() override
    {
        m_tray.reset();
        m_lifecycle.reset();
        m_windows.reset();
    }

    void start(const QString &mode, bool trayAvailable)
    {
        m_settings.setValue(QStringLiteral("appIconPreference"), mode);
        m_windows = std::make_unique<MainWindowPresenter>(m_context, m_settings);
        m_lifecycle = std::make_unique<AppLifecycle>(*m_stack, m_settings, m_bus, m_clock, m_alerts, m_windows.get());
        m_windows->setContent([this]() -> CoreDataNotesManager & { return m_lifecycle->notesManager(); },
                              m_lifecycle->store());
        StatusItemManager::Hooks hooks;
        hooks.makePopover = [this] {
            return std::make_unique<PopoverWindow>(m_context, m_lifecycle->notesManager(), m_lifecycle->store());
        };
        hooks.hotKeyStatus = [] {
            return QStringLiteral("Global hot key: off (the desktop offers no global shortcuts)");
        };
        hooks.quit = [this] { ++m_quits; };
        m_tray = std::make_unique<StatusItemManager>(AppIconPreferences::fromRawValue(mode), trayAvailable, *m_windows,
                                                     std::move(hooks));
        m_lifecycle->setPresentedMode(m_tray->mode());
        m_lifecycle->start();
        QCoreApplication::processEvents();
    }

    MainWindow *window() const { return m_windows->mainWindow(); }
    CoreDataNotesManager &notes() { return m_lifecycle->notesManager(); }

    QTemporaryDir m_dir;
    MemorySettingsStore m_settings;
    NotificationBus m_bus;
    ManualClock m_clock;
    MemoryAlerts m_alerts;
    KeywordPreferences m_keywordPreferences{m_settings, &m_bus};
    KeywordDefinitionsContainer m_keywords{m_keywordPreferences};
    VisualPreferences m_visual{m_settings};
    MiscPreferences m_misc{m_settings};
    EditorContext m_context{m_keywords, m_visual, m_misc, m_bus, m_clock};
    std::unique_ptr<CoreDataStack> m_stack;
    std::unique_ptr<MainWindowPresenter> m_windows;
    std::unique_ptr<AppLifecycle> m_lifecycle;
    std::unique_ptr<StatusItemManager> m_tray;
    int m_quits = 0;
};

struct StartCase {
    const char *mode;
    bool trayAvailable;
    bool window;
    bool windowVisible;
    bool statusItem;
    bool quitsOnClose;
};

void PrintTo(const StartCase &c, std::ostream *os)
{
    *os << c.mode << (c.trayAvailable ? " with a tray" : " without a tray");
}

class PresentationAtStart : public Presentation, public ::testing::WithParamInterface<StartCase> {};

} // namespace

TEST_P(PresentationAtStart, WindowsAndTrayItemFollowTheMode)
{
    const StartCase c = GetParam();
    start(QString::fromLatin1(c.mode), c.trayAvailable);
    EXPECT_EQ(m_windows->hasMainWindow(), c.window);
    EXPECT_EQ(m_windows->isMainWindowVisible(), c.windowVisible);
    EXPECT_EQ(m_tray->hasStatusItem(), c.statusItem);
    EXPECT_EQ(m_tray->hasStatusItem(), m_tray->contextMenu() != nullptr);
    EXPECT_EQ(StatusItemManager::quitsWhenWindowCloses(m_tray->mode()), c.quitsOnClose);
    // The note panel is made only when it is first asked for.
    EXPECT_EQ(m_tray->popover(), nullptr);
    // Whatever shows, the stack is loaded.
    EXPECT_NE(notes().currentNote(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(EveryMode, PresentationAtStart,
                         ::testing::Values(StartCase{"dockOnly", true, true, true, false, true},
                                           StartCase{"menuOnly", true, true, false, true, false},
                                           StartCase{"both", true, true, true, true, false},
                                           StartCase{"neither", true, true, false, false, false},
                                           StartCase{"trueMenuApp", true, false, false, true, false},
                                           // Without a tray the app must stay reachable: its window shows.
                                           StartCase{"menuOnly", false, true, true, false, true},
                                           StartCase{"trueMenuApp", false, true, true, false, true},
                                           StartCase{"neither", false, true, false, false, false}));

TEST_F(Presentation, ToggleHidesAFrontWindowAndBringsBackAnyOther)
{
    start(QStringLiteral("both"), true);
    ASSERT_TRUE(window());
    window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window()));

    m_windows->toggleMainWindow();
    EXPECT_FALSE(window()->isVisible());
    // The tray's click is the same toggle.
    m_tray->click();
    EXPECT_TRUE(window()->isVisible());
    ASSERT_TRUE(QTest::qWaitForWindowActive(window()));

    window()->showMinimized();
    QCoreApplication::processEvents();
    m_windows->toggleMainWindow();
    EXPECT_FALSE(window()->isMinimized());
    EXPECT_TRUE(m_windows->isMainWindowVisible());

    // A window behind another comes to the front rather than going away.
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    m_windows->toggleMainWindow();
    EXPECT_TRUE(window()->isVisible());
    EXPECT_TRUE(QTest::qWaitForWindowActive(window()));

    // The menu's line follows, and says what the hot key does.
    m_tray->contextMenu()->aboutToShow();
    QStringList texts;
    for (const QAction *action : m_tray->contextMenu()->actions())
        texts << action->text();
    EXPECT_TRUE(texts.contains(QStringLiteral("Hide Scrivlet"))) << qPrintable(texts.join(u'|'));
    EXPECT_TRUE(texts.contains(QStringLiteral("Global hot key: off (the desktop offers no global shortcuts)")));
    m_tray->contextMenu()->actions().constLast()->trigger();
    EXPECT_EQ(m_quits, 1);
}

TEST_F(Presentation, MenuBarOnlyOpensTheNotePanelInsteadOfAWindow)
{
    m_visual.setPopoverWidth(300);
    m_visual.setPopoverHeight(420);
    start(QStringLiteral("trueMenuApp"), true);
    m_windows->toggleMainWindow();
    EXPECT_FALSE(m_windows->hasMainWindow());

    m_tray->click();
    PopoverWindow *popover = m_tray->popover();
    ASSERT_TRUE(popover);
    EXPECT_TRUE(popover->isOpen());
    EXPECT_TRUE(popover->windowFlags().testFlag(Qt::FramelessWindowHint));
    EXPECT_EQ(popover->size(), QSize(300, 420));
    // The desktop says nothing of where its tray is here: the top-right corner.
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_LE(screen.right() - popover->geometry().right(), 8);
    EXPECT_LE(popover->geometry().top() - screen.top(), 8);
    ASSERT_TRUE(popover->editorView());
    EXPECT_EQ(popover->editorView()->textEdit().toPlainText(), notes().currentNote()->note().content);

    // It follows the open note, and what is typed there is saved as it closes.
    const std::shared_ptr<NoteViewModel> fresh = notes().newNote(std::nullopt, false);
    ASSERT_TRUE(fresh);
    QCoreApplication::processEvents();
    ASSERT_TRUE(QTest::qWaitForWindowActive(popover));
    NoteTextEdit &edit = popover->editorView()->textEdit();
    EXPECT_EQ(popover->editorView()->noteViewModel()->id(), fresh->id());
    QTest::keyClicks(&edit, QStringLiteral("from the tray"));
    m_tray->click();
    EXPECT_FALSE(popover->isOpen());
    EXPECT_EQ(m_lifecycle->store().fetchNote(fresh->id())->content, QStringLiteral("from the tray"));
}

TEST_F(Presentation, NotePanelGoesAwayWithTheFocusUnlessPinned)
{
    m_visual.setSelectedTheme(QStringLiteral("A theme that was removed"));
    start(QStringLiteral("trueMenuApp"), true);
    m_tray->click();
    PopoverWindow *popover = m_tray->popover();
    ASSERT_TRUE(popover);
    ASSERT_TRUE(QTest::qWaitForWindowActive(popover));
    // An unknown theme name draws in the first built-in theme.
    const ThemePalette fallback = ThemePalette::builtIn(ThemePalette::builtInNames().constFirst());
    EXPECT_EQ(popover->editorView()->textEdit().palette().color(QPalette::Base),
              fallback.color(QStringLiteral("background")));

    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_FALSE(popover->isOpen());
    // The click that took the focus away is the one that closed it: it doesn't reopen.
    m_tray->click();
    EXPECT_FALSE(popover->isOpen());
    m_tray->click();
    EXPECT_TRUE(popover->isOpen());

    // The pin holds the panel, not a window; it is remembered and announced.
    QStringList pills;
    auto subscription = m_bus.subscribe(QStringLiteral("MessagePillNotification"), [&](const QVariantMap &payload) {
        pills << payload.value(QStringLiteral("message")).toString() + u'/' +
                     payload.value(QStringLiteral("type")).toString();
    });
    m_windows->togglePin();
    EXPECT_TRUE(popover->isPinned());
    EXPECT_TRUE(popover->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(m_misc.lastPinState());
    popover->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(popover));
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_TRUE(popover->isOpen());

    m_windows->togglePin();
    EXPECT_FALSE(popover->isPinned());
    EXPECT_FALSE(m_misc.lastPinState());
    EXPECT_EQ(pills,
              (QStringList{QStringLiteral("Pinned to top/success"), QStringLiteral("Unpinned from top/success")}));
}

TEST(PopoverPlacement, BesideTheIconAndInsideTheScreen)
{
    const QRect screen(0, 0, 1280, 800);
    const QSize size(350, 450);
    // A panel at the top: under the icon, centred on it.
    QRect frame = PopoverWindow::placement(QRect(600, 0, 24, 24), size, screen);
    EXPECT_EQ(frame.size(), size);
    EXPECT_GT(frame.top(), 23);
    EXPECT_NEAR(frame.center().x(), QRect(600, 0, 24, 24).center().x(), 1);
    // A panel at the bottom: above the icon.
    frame = PopoverWindow::placement(QRect(600, 776, 24, 24), size, screen);
    EXPECT_LT(frame.bottom(), 776);
    // An icon in the corner: the panel stays on the screen.
    frame = PopoverWindow::placement(QRect(1256, 0, 24, 24), size, screen);
    EXPECT_TRUE(screen.contains(frame));
    // No icon position: the top-right corner of the screen.
    frame = PopoverWindow::placement(QRect(), size, QRect(100, 30, 1280, 800));
    EXPECT_TRUE(QRect(100, 30, 1280, 800).contains(frame));
    EXPECT_LE(1379 - frame.right(), 8);
    EXPECT_LE(frame.top() - 30, 8);
}
