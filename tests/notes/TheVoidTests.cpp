#include "NoteStackFixture.h"

#include "notes/TrashManager.h"

using namespace scrivlet;
using namespace scrivlet::test;
using namespace std::chrono_literals;

namespace {

const QString kInfo = QStringLiteral("info");

} // namespace

class TheVoidTest : public NoteStackTest {
protected:
    void SetUp() override
    {
        NoteStackTest::SetUp();
        trash = std::make_unique<TrashManager>(*manager, settings, bus, alerts, clock);
    }

    void TearDown() override
    {
        trash.reset();
        NoteStackTest::TearDown();
    }

    qint64 msAgo(qint64 days) const { return clock.now().addDays(-days).toMSecsSinceEpoch(); }

    QUuid trashed(qint64 daysAgo, const QString &text = QStringLiteral("gone"))
    {
        return insertRaw({.content = text, .dbIndex = 90000 + daysAgo, .softDeleted = 1, .deletedAt = msAgo(daysAgo),
                          .lastModified = msAgo(daysAgo)});
    }

    void addChecklistRow(const QUuid &id)
    {
        Statement item = stack->database().prepare(QStringLiteral(
            "INSERT INTO checklistItems (note, content) SELECT objectId, 'tick' FROM notes WHERE id = ?1"));
        ASSERT_TRUE(item.bind(1, id.toString(QUuid::WithoutBraces)).exec());
    }

    std::unique_ptr<TrashManager> trash;
};

TEST_F(TheVoidTest, RestoredNotesComeBackOnTopOfTheStack)
{
    const auto ids = seedStack(3);
    TutorialPreferences(settings).setSuppressDeleteWarning(true);
    start();
    notes->setCurrentIndex(0);
    notes->deleteNote(notes->currentNote());
    ASSERT_EQ(trash->count(), 1);
    EXPECT_EQ(TrashManager::lostSouls(trash->count()), QStringLiteral("1 lost soul"));
    EXPECT_EQ(TrashManager::lostSouls(2), QStringLiteral("2 lost souls"));

    EXPECT_TRUE(trash->restore(ids[0]));
    EXPECT_EQ(lastPill(), (Pill{"Note restored", QStringLiteral("success")}));
    const Note restored = *manager->fetchNote(ids[0]);
    EXPECT_FALSE(restored.softDeleted);
    EXPECT_FALSE(restored.deletedAt.has_value());
    EXPECT_EQ(restored.dbIndex, 40000);
    EXPECT_EQ(trash->count(), 0);
    // The stack hears of it on the main loop.
    clock.advance(0ms);
    EXPECT_EQ(loadedTexts(), (QStringList{"note 2", "note 3", "note 1"}));
    EXPECT_FALSE(trash->restore(QUuid::createUuid()));
}

TEST_F(TheVoidTest, RetentionRemovesOnlyWhatIsOlderThanThePeriod)
{
    struct Case {
        const char *period;
        int removed;
    };
    for (const Case &c : {Case{"7 days", 3}, Case{"30 days", 2}, Case{"90 days", 1}, Case{"Never", 0},
                          Case{"fortnight", 2}}) {
        SCOPED_TRACE(c.period);
        stack->database().exec(QStringLiteral("DELETE FROM notes"));
        trashed(3);
        trashed(8);
        const QUuid month = trashed(31);
        trashed(91);
        addChecklistRow(month);
        // A live note untouched for a year isn't The Void's to remove.
        insertRaw({.content = QStringLiteral("old but live"), .lastModified = msAgo(365)});
        NotesPreferences(settings).setTrashRetentionPeriod(QString::fromLatin1(c.period));

        EXPECT_EQ(trash->autoEmpty(), c.removed);
        EXPECT_EQ(trash->count(), 4 - c.removed);
        EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM notes WHERE softDeleted = 0")), 1);
        // Child rows go with their notes.
        EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM checklistItems")), c.removed >= 2 ? 0 : 1);
    }
    // Nothing is sent to sync for a batch delete, and a Void with nothing due stays quiet.
    EXPECT_TRUE(sink.deletions.isEmpty());
    EXPECT_EQ(manager->autoEmptyTrash(0), 0);
    EXPECT_TRUE(pills.empty());
}

TEST_F(TheVoidTest, EmptyingAsksWithTheCountAndSaysHowManyWent)
{
    trash->emptyFromMenu();
    EXPECT_EQ(lastPill(), (Pill{"The Void is already empty", kInfo}));
    EXPECT_TRUE(alerts.asked().empty());

    trashed(1);
    trashed(2);
    alerts.queueAnswer(1);
    trash->emptyFromMenu();
    ASSERT_EQ(alerts.asked().size(), 1u);
    EXPECT_EQ(alerts.asked()[0].title, QStringLiteral("Empty The Void?"));
    EXPECT_EQ(alerts.asked()[0].text, QStringLiteral("This will permanently delete 2 notes. This action cannot be undone."));
    EXPECT_EQ(alerts.asked()[0].buttons, (QStringList{"Empty The Void", "Cancel"}));
    EXPECT_FALSE(alerts.asked()[0].suppressionTitle.has_value());
    EXPECT_EQ(trash->count(), 2);

    alerts.queueAnswer(0);
    trash->emptyFromMenu();
    EXPECT_EQ(lastPill(), (Pill{"Emptied 2 notes from The Void", kInfo}));
    EXPECT_EQ(trash->count(), 0);

    trashed(4);
    alerts.queueAnswer(0);
    EXPECT_TRUE(trash->emptyFromView());
    EXPECT_EQ(alerts.asked().back().text,
              QStringLiteral("This will permanently delete 1 note. There are no turtles beyond The Void."));
    EXPECT_EQ(lastPill(), (Pill{"Emptied 1 note from The Void", kInfo}));
    EXPECT_TRUE(sink.deletions.isEmpty());
}

TEST_F(TheVoidTest, DeletingOneNoteForGoodAsksFirst)
{
    const QUuid id = trashed(1);
    alerts.queueAnswer(1);
    EXPECT_FALSE(trash->deletePermanently(id));
    EXPECT_EQ(alerts.asked().back().title, QStringLiteral("Delete from The Void?"));
    EXPECT_EQ(alerts.asked().back().text, QStringLiteral("There is no recovery beyond The Void."));
    EXPECT_EQ(alerts.asked().back().buttons, (QStringList{"Delete", "Cancel"}));
    EXPECT_EQ(trash->count(), 1);

    alerts.queueAnswer(0);
    EXPECT_TRUE(trash->deletePermanently(id));
    EXPECT_EQ(lastPill(), (Pill{"Note permanently deleted", kInfo}));
    EXPECT_EQ(trash->count(), 0);
    // A single delete is a change like any other, and the other machines hear of it.
    EXPECT_EQ(sink.deletions, QList<QUuid>{id});
}

TEST_F(TheVoidTest, DeletingByAgeSparesRecentAndSlottedNotes)
{
    clock.setNow(QDateTime(QDate(2026, 3, 10), QTime(15, 0)).toUTC());
    const qint64 earlyToday = QDateTime(QDate(2026, 3, 10), QTime(0, 30)).toMSecsSinceEpoch();
    const qint64 yesterday = QDateTime(QDate(2026, 3, 9), QTime(23, 30)).toMSecsSinceEpoch();
    insertRaw({.content = QStringLiteral("today"), .dbIndex = 10000, .lastModified = earlyToday});
    insertRaw({.content = QStringLiteral("yesterday"), .dbIndex = 20000, .lastModified = yesterday});
    insertRaw({.content = QStringLiteral("void, yesterday"), .dbIndex = 30000, .softDeleted = 1,
               .deletedAt = yesterday, .lastModified = yesterday});
    insertRaw({.content = QStringLiteral("slot"), .dbIndex = 1, .isSlotted = true, .lastModified = msAgo(800)});
    insertRaw({.content = QStringLiteral("last month"), .dbIndex = 5000, .lastModified = msAgo(40)});

    int refetches = 0;
    auto watch = bus.subscribe(QStringLiteral("refetchNotes"), [&](const QVariantMap &) { ++refetches; });
    EXPECT_EQ(trash->deleteNotesOlderThan(AutoDeleteOption::never), 0);
    EXPECT_EQ(refetches, 0);
    EXPECT_EQ(trash->deleteNotesOlderThan(AutoDeleteOption::oneMonth), 1);
    EXPECT_EQ(trash->deleteNotesOlderThan(AutoDeleteOption::today), 2);
    EXPECT_EQ(refetches, 2);
    Statement left = stack->database().prepare(QStringLiteral("SELECT content FROM notes ORDER BY dbIndex"));
    QStringList texts;
    while (left.step() == Statement::Step::Row)
        texts << left.columnText(0);
    EXPECT_EQ(texts, (QStringList{"slot", "today"}));

    EXPECT_EQ(AutoDelete::fromRawValue(QStringLiteral("oneWeek")), AutoDeleteOption::oneWeek);
    EXPECT_EQ(AutoDelete::cutOff(AutoDeleteOption::oneWeek, clock.now()), clock.now().addDays(-7));
}
