#include "LifecycleFixture.h"

#include "notes/CoreDataStack.h"
#include "shell/lifecycle/AutoNewNoteRule.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/NotesPreferences.h"
#include "shell/preferences/TutorialPreferences.h"
#include "shell/preferences/VisualPreferences.h"

#include <QFile>

using namespace scrivlet;
using namespace scrivlet::test;
using namespace std::chrono_literals;

namespace {

QString welcomeLine(const QString &text)
{
    return text.section(QLatin1Char('\n'), 0, 0);
}

// The stack as a backup holds it: the backup's files renamed into a store of its own.
QStringList textsInBackup(const QString &dataPath, const QString &backupName, const QString &scratchPath)
{
    const QString stem = QDir(dataPath).filePath(backupName);
    const QString target = CoreDataStack::storePath(scratchPath);
    for (const char *suffix : {"", "-wal", "-shm"}) {
        if (QFile::exists(stem + QLatin1String(suffix))) {
            EXPECT_TRUE(QFile::copy(stem + QLatin1String(suffix), target + QLatin1String(suffix)));
        }
    }
    auto opened = CoreDataStack::open(scratchPath);
    if (!opened)
        return {QStringLiteral("<unreadable backup>")};
    MemorySettingsStore settings;
    ManualClock clock;
    CoreDataManager store(*opened.value(), settings, clock);
    QStringList texts;
    for (const Note &note : store.fetchAll(false))
        texts << note.content;
    return texts;
}

} // namespace

// ---- start-up ------------------------------------------------------------------------------

TEST_F(LifecycleTest, FirstLaunchSeedsTheTutorialOnceAndOpensOnTheWelcomeNote)
{
    launch();
    EXPECT_FALSE(TutorialPreferences(settings).showOnboarding());
    const QStringList texts = loadedTexts();
    ASSERT_EQ(texts.size(), 17);
    EXPECT_EQ(welcomeLine(texts.last()), QStringLiteral("Welcome to Scrivlet!"));
    EXPECT_EQ(welcomeLine(texts.first()), QStringLiteral("Wow, even ads won’t turn you away eh? Okay, well since we’re "
                                                         "here, I guess I can introduce myself."));
    EXPECT_EQ(openText(), texts.last());
    // The welcome note is the newest by date too, so sync and sorting agree on the front.
    const auto &models = notes().noteViewModels();
    for (std::size_t i = 1; i < models.size(); ++i) {
        EXPECT_LT(models[i - 1]->note().created, models[i]->note().created);
        EXPECT_TRUE(models[i]->note().isTutorial);
    }
    EXPECT_EQ(notes().slottedNoteViewModels().size(), 9u);

    // The user clears the stack; the next launch doesn't bring the tutorial back.
    for (const Note &note : store().fetchAll(false))
        store().deleteRow(note.id);
    launch();
    EXPECT_EQ(loadedTexts(), QStringList{QString()});
}

TEST_F(LifecycleTest, EachModeOfTheAppIconBringsUpItsWindow)
{
    struct Case {
        const char *mode;
        QStringList events;
    };
    const Case cases[] = {
        {"both", {"create", "show", "center"}},
        {"dockOnly", {"create", "show", "center"}},
        {"menuOnly", {"create", "orderOut hideApp", "center"}},
        {"neither", {"create", "orderOut hideApp", "center"}},
        {"trueMenuApp", {}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.mode);
        settings.clear();
        VisualPreferences(settings).setAppIconPreference(QString::fromLatin1(c.mode));
        launch();
        EXPECT_EQ(journal, c.events);
        // With or without a window, the stack is ready once the start-up is done.
        EXPECT_FALSE(loadedTexts().isEmpty());
    }

    // Only the first launch with a window centres it; later ones open it where the
    // user left it.
    VisualPreferences(settings).setAppIconPreference(QStringLiteral("both"));
    launch();
    EXPECT_EQ(journal, (QStringList{"create", "show", "center"}));
    launch();
    EXPECT_EQ(journal, (QStringList{"create", "show"}));
}

TEST_F(LifecycleTest, ThePinIsRestoredOnlyWhenTheUserAskedForIt)
{
    MiscPreferences misc(settings);
    misc.setLastPinState(true);
    launch();
    EXPECT_FALSE(presenter->isPinned());

    misc.setRestorePinOnOpen(true);
    launch();
    EXPECT_TRUE(presenter->isPinned());
}

TEST_F(LifecycleTest, TheVoidIsClearedAtStartByTheRetentionPeriod)
{
    launch();
    const Note old = store().createNote();
    store().setContent(old.id, QStringLiteral("deleted long ago"));
    store().softDelete(old.id);
    clock.advance(std::chrono::days(20));
    const Note recent = store().createNote();
    store().setContent(recent.id, QStringLiteral("deleted lately"));
    store().softDelete(recent.id);
    clock.advance(std::chrono::days(15));

    NotesPreferences(settings).setTrashRetentionPeriod(QStringLiteral("Never"));
    launch();
    EXPECT_EQ(store().countTrash(), 2);

    NotesPreferences(settings).setTrashRetentionPeriod(QStringLiteral("30 days"));
    launch();
    ASSERT_EQ(store().countTrash(), 1);
    EXPECT_EQ(store().fetchTrash().front().content, QStringLiteral("deleted lately"));

    // The menu's "Empty The Void" reaches The Void through the app.
    alerts.queueAnswer(0);
    bus.post(QStringLiteral("emptyTrashClicked"));
    EXPECT_EQ(store().countTrash(), 0);
    EXPECT_EQ(pills.last(), QStringLiteral("Emptied 1 note from The Void"));
}

// ---- activation -------------------------------------------------------------------------------

struct RuleCase {
    const char *timing;
    double secondsAway;
    bool fires;
};

class AutoNewNoteRuleTest : public ::testing::TestWithParam<RuleCase> {};

TEST_P(AutoNewNoteRuleTest, FiresOnceTheUserWasAwayLongEnough)
{
    const RuleCase c = GetParam();
    const QDateTime now(QDate(2026, 3, 1), QTime(12, 0), Qt::UTC);
    const double closed = double(now.toSecsSinceEpoch()) - c.secondsAway;
    EXPECT_EQ(AutoNewNoteRule::fires(QString::fromLatin1(c.timing), closed, now), c.fires);
}

INSTANTIATE_TEST_SUITE_P(Thresholds, AutoNewNoteRuleTest,
                         ::testing::Values(RuleCase{"always", 0, true}, RuleCase{"never", 1e9, false},
                                           RuleCase{"5 mins", 1e9, false}, RuleCase{"", 1e9, false},
                                           RuleCase{"3 mins", 179.5, false}, RuleCase{"3 mins", 180, true},
                                           RuleCase{"30 mins", 1799, false}, RuleCase{"30 mins", 1800, true},
                                           RuleCase{"1 hr", 3599, false}, RuleCase{"1 hr", 3600, true},
                                           RuleCase{"1 day", 86399, false}, RuleCase{"1 day", 86400, true},
                                           // A clock set back never counts as time away.
                                           RuleCase{"3 mins", -600, false}));

TEST_F(LifecycleTest, ComingBackAfterTheSetTimeStartsAFreshNote)
{
    NotesPreferences(settings).setAutoNewNoteTiming(QStringLiteral("30 mins"));
    launch();
    type(QStringLiteral("groceries"));
    lifecycle->resign();

    clock.advance(29min);
    lifecycle->activate();
    EXPECT_EQ(openText(), QStringLiteral("groceries"));

    lifecycle->resign();
    clock.advance(30min);
    journal.clear();
    lifecycle->activate();
    EXPECT_EQ(journal, QStringList{"post newButtonClickedNotification"});
    EXPECT_EQ(openText(), QString());
    EXPECT_EQ(loadedTexts().size(), 18);
    EXPECT_EQ(store().fetchAll(false).size(), 18u);
}

TEST_F(LifecycleTest, AnAlwaysRuleKeepsAnEmptyNoteOnTopQuietly)
{
    NotesPreferences(settings).setAutoNewNoteTiming(QStringLiteral("always"));
    launch();
    lifecycle->activate();
    EXPECT_EQ(openText(), QString());
    EXPECT_EQ(pills, QStringList{"New note created"});

    pills.clear();
    lifecycle->activate();
    lifecycle->activate();
    // No second empty note, and no scolding for a request the user didn't make.
    EXPECT_EQ(loadedTexts().size(), 18);
    EXPECT_TRUE(pills.isEmpty());
}

// ---- resign and quit ----------------------------------------------------------------------------

TEST_F(LifecycleTest, ResigningSavesBeforeTheBackupAndCleansUpAfterIt)
{
    launch();
    notes().newNote(std::nullopt, true);
    type(QStringLiteral("typed just before leaving"));
    const QUuid typedId = notes().currentNote()->id();
    // A note deleted in this run is still in memory until the app resigns.
    notes().removeNote(notes().noteViewModels().front(), std::nullopt);
    ASSERT_EQ(notes().deletedNotes().size(), 1);
    ASSERT_TRUE(backupFiles().isEmpty());
    journal.clear();

    lifecycle->resign();

    EXPECT_EQ(journal, (QStringList{"post saveCurrentNote", "saveFrame", "post cleanUpDeletedArray"}));
    EXPECT_EQ(store().fetchNote(typedId)->content, QStringLiteral("typed just before leaving"));
    EXPECT_TRUE(notes().deletedNotes().isEmpty());
    EXPECT_EQ(NotesPreferences(settings).lastWindowCloseTime(), double(clock.now().toSecsSinceEpoch()));

    // The backup was taken after the save: it holds the last keystrokes.
    const QStringList backups = backupFiles();
    ASSERT_EQ(backups.size(), 1);
    QTemporaryDir scratch;
    EXPECT_TRUE(textsInBackup(dataPath(), backups.first(), scratch.path())
                    .contains(QStringLiteral("typed just before leaving")));
}

TEST_F(LifecycleTest, AnUnfocusedWindowHidesUnlessPinned)
{
    VisualPreferences(settings).setHideWhenUnfocused(true);
    launch();
    journal.clear();
    lifecycle->resign();
    EXPECT_EQ(journal, (QStringList{"post saveCurrentNote", "saveFrame", "orderOut hideApp",
                                    "post cleanUpDeletedArray"}));
    EXPECT_FALSE(presenter->isMainWindowVisible());

    // Back through the app's icon, which shows the window only in modes that show it at
    // start; and pinned this time.
    VisualPreferences(settings).setAppIconPreference(QStringLiteral("neither"));
    lifecycle->reopen();
    EXPECT_FALSE(presenter->isMainWindowVisible());
    VisualPreferences(settings).setAppIconPreference(QStringLiteral("dockOnly"));
    lifecycle->reopen();
    EXPECT_TRUE(presenter->isMainWindowVisible());
    presenter->setPinned(true);
    journal.clear();
    lifecycle->resign();
    EXPECT_FALSE(journal.contains(QStringLiteral("orderOut hideApp")));
    EXPECT_TRUE(presenter->isMainWindowVisible());
}

TEST_F(LifecycleTest, QuitSavesTheNoteLastSoTheBackupDoesNotWaitForIt)
{
    launch();
    type(QStringLiteral("first draft"));
    lifecycle->resign();
    ASSERT_EQ(backupFiles().size(), 1);

    // A backup is due again, and the user typed after the last resign.
    clock.advance(3h);
    type(QStringLiteral("final words"));
    journal.clear();
    lifecycle->quit();

    EXPECT_EQ(journal, (QStringList{"saveFrame", "post saveCurrentNote"}));
    const QStringList backups = backupFiles();
    ASSERT_EQ(backups.size(), 2);
    QTemporaryDir scratch;
    const QStringList backedUp = textsInBackup(dataPath(), backups.last(), scratch.path());
    EXPECT_TRUE(backedUp.contains(QStringLiteral("first draft")));
    EXPECT_FALSE(backedUp.contains(QStringLiteral("final words")));

    // Nothing is lost: the next launch opens on what was typed last.
    launch();
    EXPECT_EQ(openText(), QStringLiteral("final words"));
}
