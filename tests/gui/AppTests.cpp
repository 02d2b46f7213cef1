#include "notes/CoreDataManager.h"
#include "support/AppUnderX.h"

#include <QDateTime>
#include <QRegularExpression>
#include <gtest/gtest.h>

using namespace scrivlet;
using scrivlet::testing::AppUnderX;

// The real app on a display of its own, driven with the keys a person presses; what
// counts is what ends up in the store and the settings once it has quit.

namespace {

const QString kApp = QStringLiteral(SCRIVLET_APP_PATH);

// Live notes of the stack, oldest first, as the store holds them.
QStringList stackTexts(AppUnderX &app)
{
    QStringList texts;
    EXPECT_TRUE(app.withStore([&](CoreDataManager &store) {
        for (const Note &note : store.fetchLatest(1000, false))
            texts.append(note.content);
    })) << qPrintable(app.lastError());
    return texts;
}

// An app on a fresh folder without the first-launch notes: the stack starts with one
// empty note.
void startFresh(AppUnderX &app)
{
    app.setSetting(QStringLiteral("showOnboarding"), false);
    app.setSetting(QStringLiteral("showFirstTimeSettings"), false);
    ASSERT_TRUE(app.start()) << qPrintable(app.lastError());
}

} // namespace

TEST(AppWindow, WalkingTheStackWithShortcutsEditsTheNoteOnScreen)
{
    AppUnderX app(kApp);
    ASSERT_NO_FATAL_FAILURE(startFresh(app));
    ASSERT_TRUE(app.type(QStringLiteral("first")));
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+n")));
    ASSERT_TRUE(app.type(QStringLiteral("second")));
    // Older, then newer again, with both pairs of keys.
    ASSERT_TRUE(app.key(QStringLiteral("alt+Left")));
    ASSERT_TRUE(app.type(QStringLiteral(" older")));
    ASSERT_TRUE(app.key(QStringLiteral("alt+Right")));
    ASSERT_TRUE(app.type(QStringLiteral(" newer")));
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+Prior")));
    ASSERT_TRUE(app.type(QStringLiteral("!")));
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+Next")));
    // "Next" on a written newest note makes a new one; a second "new" on that empty
    // note is refused, so only one empty note comes of the three presses.
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+Next")));
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+n")));
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+n")));
    // Going to latest from an older note lands on the empty newest one.
    ASSERT_TRUE(app.key(QStringLiteral("alt+Left")));
    ASSERT_TRUE(app.key(QStringLiteral("alt+End")));
    ASSERT_TRUE(app.type(QStringLiteral("third")));
    // The oldest note, moved to the front, stays open there.
    ASSERT_TRUE(app.key(QStringLiteral("alt+Left alt+Left")));
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+shift+Up")));
    ASSERT_TRUE(app.type(QStringLiteral("^")));
    ASSERT_TRUE(app.quit()) << qPrintable(app.lastError());
    EXPECT_EQ(stackTexts(app), (QStringList{QStringLiteral("second newer"), QStringLiteral("third"),
                                            QStringLiteral("first older!^")}));
}

TEST(AppWindow, DeletingAsksAndSendsTheNoteToTheVoid)
{
    AppUnderX app(kApp);
    ASSERT_NO_FATAL_FAILURE(startFresh(app));
    ASSERT_TRUE(app.type(QStringLiteral("doomed")));
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+n")));
    ASSERT_TRUE(app.type(QStringLiteral("keeper")));
    ASSERT_TRUE(app.key(QStringLiteral("alt+Left")));
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+shift+BackSpace")));

    // A real question, answered with its default button.
    const QString dialog = app.waitForWindow(QStringLiteral("^Delete Note$"));
    ASSERT_FALSE(dialog.isEmpty()) << qPrintable(app.lastError());
    ASSERT_TRUE(app.focusWindow(dialog));
    ASSERT_TRUE(app.key(QStringLiteral("Return")));
    EXPECT_TRUE(AppUnderX::waitUntil([&] { return !app.isWindowVisible(dialog); }, 5000));
    // The app moved on to the note that is left: typing goes there.
    ASSERT_TRUE(app.focusMainWindow());
    ASSERT_TRUE(app.type(QStringLiteral("!")));
    ASSERT_TRUE(app.quit()) << qPrintable(app.lastError());

    EXPECT_EQ(stackTexts(app), QStringList{QStringLiteral("keeper!")});
    app.withStore([](CoreDataManager &store) {
        const std::vector<Note> trash = store.fetchTrash();
        ASSERT_EQ(trash.size(), 1u);
        EXPECT_EQ(trash.front().content, QStringLiteral("doomed"));
        EXPECT_TRUE(trash.front().softDeleted);
    });
}

TEST(AppWindow, ASlottedNoteIsEditedBesideTheStack)
{
    AppUnderX app(kApp);
    ASSERT_NO_FATAL_FAILURE(startFresh(app));
    ASSERT_TRUE(app.type(QStringLiteral("stack note")));
    // Going to a slot opens the split and puts the caret in the slot's note.
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+3")));
    ASSERT_TRUE(app.type(QStringLiteral("\nfertile")));
    // The slotted pane makes no new notes.
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+n")));
    ASSERT_TRUE(app.type(QStringLiteral(" soil")));
    ASSERT_TRUE(app.quit()) << qPrintable(app.lastError());

    EXPECT_EQ(stackTexts(app), QStringList{QStringLiteral("stack note")});
    app.withStore([](CoreDataManager &store) {
        QString slotThree;
        for (const Note &note : store.fetchLatest(100, true)) {
            if (note.slotIndex == 3)
                slotThree = note.content;
        }
        EXPECT_EQ(slotThree, QStringLiteral("# Gaia\nfertile soil"));
    });
    EXPECT_EQ(app.setting(QStringLiteral("isSplitView")).toString(), QStringLiteral("true"));
    EXPECT_EQ(app.setting(QStringLiteral("lastActiveSlottedNote")).toInt(), 2);

    // The next start opens in the split, on the same slot, and the split can be closed.
    ASSERT_TRUE(app.start()) << qPrintable(app.lastError());
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+backslash")));
    ASSERT_TRUE(app.quit()) << qPrintable(app.lastError());
    EXPECT_EQ(app.setting(QStringLiteral("isSplitView")).toString(), QStringLiteral("false"));
}

TEST(AppWindow, PinKeepsTheWindowOnTopAndIsRemembered)
{
    AppUnderX app(kApp);
    ASSERT_NO_FATAL_FAILURE(startFresh(app));
    const QString above = QStringLiteral("_NET_WM_STATE_ABOVE");
    EXPECT_FALSE(app.windowProperty(app.windowId(), QStringLiteral("_NET_WM_STATE")).contains(above));
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+shift+p")));
    // The pinned window is shown anew with its new level.
    const QString pinned = app.waitForWindow(QStringLiteral("^Scrivlet$"));
    ASSERT_FALSE(pinned.isEmpty());
    EXPECT_TRUE(AppUnderX::waitUntil(
        [&] { return app.windowProperty(pinned, QStringLiteral("_NET_WM_STATE")).contains(above); }, 5000))
        << qPrintable(app.windowProperty(pinned, QStringLiteral("_NET_WM_STATE")));
    ASSERT_TRUE(app.quit()) << qPrintable(app.lastError());
    EXPECT_EQ(app.setting(QStringLiteral("lastPinState")).toString(), QStringLiteral("true"));
}

TEST(AppWindow, TypingInAMathNoteSavesTheResultLine)
{
    AppUnderX app(kApp);
    ASSERT_NO_FATAL_FAILURE(startFresh(app));
    ASSERT_TRUE(app.type(QStringLiteral("math\n82 + 55 =")));
    ASSERT_TRUE(app.quit()) << qPrintable(app.lastError());
    const QStringList texts = stackTexts(app);
    ASSERT_EQ(texts.size(), 1);
    EXPECT_TRUE(texts.front().contains(QRegularExpression(QStringLiteral("^math\\n82 \\+ 55 = 137(\\.0+)?$"))))
        << qPrintable(texts.front());
}

TEST(AppWindow, HidingTheWindowSavesAndRemembersWhenItWentAway)
{
    AppUnderX app(kApp);
    ASSERT_NO_FATAL_FAILURE(startFresh(app));
    ASSERT_TRUE(app.type(QStringLiteral("kept")));
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+w")));
    EXPECT_TRUE(AppUnderX::waitUntil([&] { return !app.isRunning() || !app.isWindowVisible(app.windowId()); }));
    // Without a tray item to come back through, closing quits; with one the app stays.
    if (app.isRunning()) {
        ASSERT_TRUE(app.quit()) << qPrintable(app.lastError());
    }
    EXPECT_GE(app.setting(QStringLiteral("lastWindowCloseTime")).toDouble(), double(before));
    EXPECT_EQ(stackTexts(app), QStringList{QStringLiteral("kept")});
}
