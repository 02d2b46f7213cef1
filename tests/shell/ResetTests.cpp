#include "LifecycleFixture.h"

#include "shell/preferences/NotesPreferences.h"
#include "shell/preferences/TutorialPreferences.h"
#include "shell/preferences/VisualPreferences.h"
#include "shell/tutorial/AppReset.h"
#include "shell/tutorial/ResettingConfigs.h"

#include <QFile>

using namespace scrivlet;
using namespace scrivlet::test;

namespace {

void touch(const QString &path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("legacy");
}

// Whether `text` is anywhere in the store's files, as the store writes text (UTF-16).
bool storeFilesHold(const QString &dataPath, const QString &text)
{
    const QByteArray needle(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
    for (const QString &path : AppReset::storeFiles(dataPath)) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly) && file.readAll().contains(needle))
            return true;
    }
    return false;
}

} // namespace

class ResetTest : public LifecycleTest {
protected:
    QString inData(const char *name) const { return QDir(dataPath()).filePath(QString::fromLatin1(name)); }

    // A user's own note, saved, and a few settings changed from their defaults.
    QUuid writeOwnNote(const QString &text)
    {
        notes().newNote(text, true);
        lifecycle->resign();
        VisualPreferences(settings).setSelectedTheme(QStringLiteral("Dracula"));
        NotesPreferences(settings).setAutoNewNoteTiming(QStringLiteral("1 hr"));
        settings.setValue(QStringLiteral("windowWidth"), 500.0);
        return notes().currentNote()->id();
    }
};

TEST_F(ResetTest, ResettingPreferencesKeepsEveryNote)
{
    launch();
    const QUuid own = writeOwnNote(QStringLiteral("my own note"));
    const int rows = store().countStackRows();

    AppReset::resetPreferences(settings);
    EXPECT_EQ(settings.size(), 0);
    EXPECT_EQ(NotesPreferences(settings).autoNewNoteTiming(), QStringLiteral("never"));

    // The next launch finds the stack as it was: the tutorial is not seeded on top of
    // it again, even though the settings say it is still to come.
    EXPECT_TRUE(TutorialPreferences(settings).showOnboarding());
    launch();
    EXPECT_EQ(store().countStackRows(), rows);
    EXPECT_EQ(openText(), QStringLiteral("my own note"));
    EXPECT_EQ(notes().currentNote()->id(), own);
}

TEST_F(ResetTest, AFactoryResetMakesTheNextStartAFirstStart)
{
    launch();
    const QUuid own = writeOwnNote(QStringLiteral("a secret recipe"));
    store().softDelete(notes().noteViewModels().front()->id());
    touch(inData("notes.sqlite3"));
    touch(inData("notes_backup_2024-01-01.sqlite3"));
    touch(inData("notes_backup_notes.txt"));
    touch(inData("notes_backup_.sqlite3.bak"));
    const QStringList backupsBefore = backupFiles();
    ASSERT_FALSE(backupsBefore.isEmpty());
    ASSERT_TRUE(storeFilesHold(dataPath(), QStringLiteral("a secret recipe")));

    const AppReset::Outcome outcome = AppReset::resetToFactorySettings(settings, *stack, store());
    EXPECT_TRUE(outcome.ok()) << outcome.failures.join(u'\n').toStdString();
    QStringList removed = outcome.removedFiles;
    removed.sort();
    EXPECT_EQ(removed, (QStringList{inData("notes.sqlite3"), inData("notes_backup_2024-01-01.sqlite3")}));
    EXPECT_TRUE(QFile::exists(inData("notes_backup_notes.txt")));
    EXPECT_TRUE(QFile::exists(inData("notes_backup_.sqlite3.bak")));
    // The copies of the periodic backup are the user's way back, and stay.
    EXPECT_EQ(backupFiles(), backupsBefore);
    EXPECT_EQ(settings.size(), 0);

    // The app quits over a stack that still shows the old notes; its last save must
    // not bring one back.
    lifecycle->quit();
    EXPECT_FALSE(store().fetchNote(own).has_value());
    closeApp();
    EXPECT_FALSE(storeFilesHold(dataPath(), QStringLiteral("a secret recipe")));

    launch();
    EXPECT_EQ(loadedTexts().size(), 17);
    EXPECT_TRUE(openText().startsWith(QStringLiteral("Welcome to Scrivlet!")));
    EXPECT_EQ(store().countTrash(), 0);
    EXPECT_EQ(notes().slottedNoteViewModels().size(), 9u);
    EXPECT_TRUE(notes().searchNotes(QStringLiteral("secret")).empty());
    // A fresh install, not an upgrade: sync starts on.
    EXPECT_TRUE(NotesPreferences(settings).syncWithICloud());
}

TEST_F(ResetTest, StartSwitchesAreUsedOnceAndClearedInTheirOrder)
{
    launch();
    writeOwnNote(QStringLiteral("kept through a settings reset"));
    closeApp();

    ResettingConfigs configs;
    EXPECT_FALSE(configs.isAnySet());
    EXPECT_FALSE(configs.set(QStringLiteral("resetEverything")));
    ASSERT_TRUE(configs.set(QStringLiteral("resetAppStorage")));
    ASSERT_TRUE(configs.set(QStringLiteral("resetCurrencyRatesOnly")));
    const QStringList done = configs.applyAtStart(settings, dataPath());
    EXPECT_EQ(done.size(), 2);
    EXPECT_FALSE(configs.isAnySet());
    EXPECT_EQ(settings.size(), 0);

    // Used switches are off: a second pass in the same run changes nothing.
    VisualPreferences(settings).setSelectedTheme(QStringLiteral("Nord"));
    EXPECT_TRUE(configs.applyAtStart(settings, dataPath()).isEmpty());
    EXPECT_EQ(VisualPreferences(settings).selectedTheme(), QStringLiteral("Nord"));
    launch();
    EXPECT_EQ(openText(), QStringLiteral("kept through a settings reset"));
    closeApp();

    // A clean install wipes the database files too, and ends the pass there.
    touch(inData("notes.sqlite3"));
    configs.set(QStringLiteral("resetToCleanInstall"));
    configs.set(QStringLiteral("resetAppStorage"));
    configs.applyAtStart(settings, dataPath());
    EXPECT_FALSE(configs.resetToCleanInstall);
    EXPECT_TRUE(configs.resetAppStorage);
    EXPECT_TRUE(AppReset::storeFiles(dataPath()).isEmpty());
    EXPECT_FALSE(QFile::exists(inData("notes.sqlite3")));
    EXPECT_EQ(settings.size(), 0);

    launch();
    EXPECT_EQ(loadedTexts().size(), 17);
}
