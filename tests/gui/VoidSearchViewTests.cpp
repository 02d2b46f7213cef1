#include "notes/NoteStackFixture.h"

#include "notes/TrashManager.h"
#include "views/MessageBoxAlerts.h"
#include "views/NoteRowDelegate.h"
#include "views/SearchResultsModel.h"
#include "views/SearchSnippet.h"
#include "views/SearchView.h"
#include "views/VoidView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace scrivlet;
using namespace scrivlet::test;
using namespace std::chrono_literals;

namespace {

const QString kSuccess = QStringLiteral("success");
const QString kInfo = QStringLiteral("info");

qint64 ms(const QDateTime &time)
{
    return time.toMSecsSinceEpoch();
}

} // namespace

class VoidViewTest : public NoteStackTest {
protected:
    void SetUp() override
    {
        NoteStackTest::SetUp();
        // Local time is what the rows speak in; noon keeps "hours ago" on the same day.
        clock.setNow(QDateTime(QDate(2026, 3, 10), QTime(12, 0)));
    }

    void TearDown() override
    {
        view.reset();
        NoteStackTest::TearDown();
    }

    QUuid trashed(const QString &text, qint64 dbIndex, const QDateTime &deletedAt)
    {
        return insertRaw({.content = text,
                          .dbIndex = dbIndex,
                          .softDeleted = 1,
                          .deletedAt = ms(deletedAt),
                          .lastModified = ms(deletedAt),
                          .created = ms(deletedAt)});
    }

    void open()
    {
        view = std::make_unique<VoidView>(*manager, *notes, bus, clock);
        view->setAlerts(alerts);
        view->resize(360, 420);
        view->show();
    }

    void press(Qt::Key key) { QTest::keyClick(view->list(), key); }

    std::unique_ptr<VoidView> view;
};

TEST_F(VoidViewTest, ListsNewestDeletionFirstWithWhenEachWentAndTheCount)
{
    seedStack(2);
    const QUuid older = trashed(QStringLiteral("shopping\n\nmilk   eggs"), 5000, clock.now().addSecs(-2 * 3600 - 60));
    const QUuid newer = trashed(QStringLiteral("just now"), 7000, clock.now().addSecs(-20));
    const QUuid lastYear = trashed(QStringLiteral("ancient"), 9000, QDateTime(QDate(2025, 7, 4), QTime(10, 0)));
    start();
    open();

    ASSERT_EQ(view->rowCount(), 3);
    EXPECT_EQ(view->idAt(0), newer);
    EXPECT_EQ(view->idAt(1), older);
    EXPECT_EQ(view->idAt(2), lastYear);
    // A note's lines read as one line in its row.
    EXPECT_EQ(view->textAt(1), QStringLiteral("shopping milk eggs"));
    EXPECT_EQ(view->timeAt(0), QStringLiteral("Deleted less than a minute ago"));
    EXPECT_EQ(view->timeAt(1), QStringLiteral("Deleted 2 hours ago"));
    EXPECT_EQ(view->timeAt(2), QStringLiteral("Deleted July 4, 2025"));
    EXPECT_EQ(view->countText(), QStringLiteral("3 lost souls"));
    EXPECT_FALSE(view->isShowingEmptyState());
    EXPECT_TRUE(view->emptyButton()->isEnabled());

    // Time moves on while the view is away; coming back shows it.
    view->hide();
    clock.setNow(clock.now().addSecs(3600));
    view->show();
    EXPECT_EQ(view->timeAt(0), QStringLiteral("Deleted 1 hour ago"));
}

TEST_F(VoidViewTest, EnterRestoresTheSelectedNoteToTheTopOfTheStack)
{
    seedStack(3);
    const QUuid gone = trashed(QStringLiteral("bring me back"), 15000, clock.now().addSecs(-600));
    trashed(QStringLiteral("stay"), 16000, clock.now().addSecs(-7200));
    start();
    open();
    ASSERT_EQ(view->idAt(0), gone);

    press(Qt::Key_Return);
    const Note restored = *manager->fetchNote(gone);
    EXPECT_FALSE(restored.softDeleted);
    EXPECT_EQ(restored.dbIndex, 40000);
    EXPECT_EQ(lastPill(), (Pill{"Note restored", kSuccess}));
    ASSERT_EQ(view->rowCount(), 1);
    EXPECT_EQ(view->textAt(0), QStringLiteral("stay"));
    EXPECT_EQ(view->countText(), QStringLiteral("1 lost soul"));
    // The stack reloads on the main loop and has the note as its newest.
    clock.advance(0ms);
    EXPECT_EQ(loadedTexts().last(), QStringLiteral("bring me back"));

    // The last one, with Down first to show the selection stays inside the list.
    press(Qt::Key_Down);
    press(Qt::Key_Enter);
    EXPECT_EQ(manager->countTrash(), 0);
    EXPECT_TRUE(view->isShowingEmptyState());
    EXPECT_EQ(view->countText(), QStringLiteral("0 lost souls"));
    EXPECT_FALSE(view->emptyButton()->isEnabled());
}

TEST_F(VoidViewTest, DeletingForGoodAsksAndOnlyThenRemovesTheRow)
{
    seedStack(1);
    const QUuid first = trashed(QStringLiteral("first"), 5000, clock.now().addSecs(-60));
    const QUuid second = trashed(QStringLiteral("second"), 6000, clock.now().addSecs(-120));
    start();
    open();

    alerts.queueAnswer(1); // Cancel
    press(Qt::Key_Delete);
    ASSERT_EQ(alerts.asked().size(), 1u);
    EXPECT_EQ(alerts.asked()[0].title, QStringLiteral("Delete from The Void?"));
    EXPECT_EQ(alerts.asked()[0].text, QStringLiteral("There is no recovery beyond The Void."));
    EXPECT_EQ(alerts.asked()[0].buttons, (QStringList{"Delete", "Cancel"}));
    EXPECT_EQ(view->rowCount(), 2);
    EXPECT_TRUE(manager->fetchRow(first).has_value());

    // The row's own pill, clicked with the pointer.
    alerts.queueAnswer(0);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(view.get()));
    const QRect row = view->list()->visualRect(view->list()->model()->index(1, 0));
    const QRect deletePill = view->delegate()->actionRect(row, 1);
    ASSERT_FALSE(deletePill.isEmpty());
    QTest::mouseClick(view->list()->viewport(), Qt::LeftButton, {}, deletePill.center());
    EXPECT_EQ(alerts.asked().size(), 2u);
    EXPECT_FALSE(manager->fetchRow(second).has_value());
    EXPECT_TRUE(manager->fetchRow(first).has_value());
    EXPECT_EQ(lastPill(), (Pill{"Note permanently deleted", kInfo}));
    ASSERT_EQ(view->rowCount(), 1);
    EXPECT_EQ(view->idAt(0), first);

    // Restore by its pill too: the first action of the row.
    const QRect restorePill =
        view->delegate()->actionRect(view->list()->visualRect(view->list()->model()->index(0, 0)), 0);
    QTest::mouseClick(view->list()->viewport(), Qt::LeftButton, {}, restorePill.center());
    EXPECT_FALSE(manager->fetchNote(first)->softDeleted);
    EXPECT_EQ(view->rowCount(), 0);
}

TEST_F(VoidViewTest, EmptyingAsksWithTheCountAndEmptiesOnlyOnConfirmation)
{
    seedStack(1);
    trashed(QStringLiteral("a"), 5000, clock.now().addSecs(-60));
    trashed(QStringLiteral("b"), 6000, clock.now().addSecs(-60));
    start();
    open();

    alerts.queueAnswer(1);
    view->emptyButton()->click();
    ASSERT_EQ(alerts.asked().size(), 1u);
    EXPECT_EQ(alerts.asked()[0].title, QStringLiteral("Empty The Void?"));
    EXPECT_EQ(alerts.asked()[0].text,
              QStringLiteral("This will permanently delete 2 notes. There are no turtles beyond The Void."));
    EXPECT_EQ(alerts.asked()[0].buttons, (QStringList{"Empty The Void", "Cancel"}));
    EXPECT_EQ(manager->countTrash(), 2);
    EXPECT_EQ(view->rowCount(), 2);

    alerts.queueAnswer(0);
    view->emptyButton()->click();
    EXPECT_EQ(manager->countTrash(), 0);
    EXPECT_EQ(lastPill(), (Pill{"Emptied 2 notes from The Void", kInfo}));
    EXPECT_TRUE(view->isShowingEmptyState());
    EXPECT_EQ(view->rowCount(), 0);
    QSignalSpy closed(view.get(), &VoidView::closed);
    QTest::keyClick(view.get(), Qt::Key_Escape);
    EXPECT_EQ(closed.count(), 1);
    // The live note is untouched.
    EXPECT_EQ(count(QStringLiteral("SELECT COUNT(*) FROM notes WHERE isSlotted = 0")), 1);
}

TEST_F(VoidViewTest, EscapeAndTheBackButtonClose)
{
    seedStack(1);
    trashed(QStringLiteral("a"), 5000, clock.now());
    start();
    open();
    QSignalSpy closed(view.get(), &VoidView::closed);
    press(Qt::Key_Escape);
    EXPECT_EQ(closed.count(), 1);
    auto *back = view->findChild<QAbstractButton *>(QStringLiteral("voidBack"));
    ASSERT_TRUE(back);
    back->click();
    EXPECT_EQ(closed.count(), 2);
    // Nothing was restored or lost on the way out.
    EXPECT_EQ(manager->countTrash(), 1);
}

class SearchViewTest : public VoidViewTest {
protected:
    void TearDown() override
    {
        search.reset();
        VoidViewTest::TearDown();
    }

    void openSearch()
    {
        search = std::make_unique<SearchView>(*notes, clock);
        search->resize(360, 480);
        search->show();
        search->activate();
    }

    QString rowText(int row) const { return search->model()->index(row, 0).data(NoteRowDelegate::TextRole).toString(); }
    QString rowTime(int row) const { return search->model()->index(row, 0).data(NoteRowDelegate::TimeRole).toString(); }
    QString rowHit(int row) const
    {
        const QVariant hit = search->model()->index(row, 0).data(NoteRowDelegate::HitRole);
        return hit.isValid() ? rowText(row).mid(hit.toPoint().x(), hit.toPoint().y()) : QString();
    }

    std::unique_ptr<SearchView> search;
};

TEST_F(SearchViewTest, ResultsShowTheWordsAroundTheHitAndWhenTheNoteChanged)
{
    const QString filler = QStringLiteral("lorem ipsum dolor sit amet consectetur adipiscing elit sed do ");
    insertRaw({.content = QString(filler + filler + QStringLiteral("the Café on the corner\nsecond line")),
               .dbIndex = 10000,
               .lastModified = ms(clock.now().addSecs(-3 * 3600 - 5)),
               .created = ms(clock.now())});
    insertRaw({.content = QStringLiteral("cafe list\nbeans"),
               .dbIndex = 20000,
               .lastModified = ms(QDateTime(QDate(2025, 5, 4), QTime(9, 0))),
               .created = ms(clock.now())});
    insertRaw({.content = QStringLiteral("tea only"),
               .dbIndex = 30000,
               .lastModified = ms(QDateTime(QDate(2026, 2, 1), QTime(9, 0))),
               .created = ms(clock.now())});
    insertRaw({.content = QStringLiteral("cafe in the bin"),
               .dbIndex = 40000,
               .softDeleted = 1,
               .deletedAt = ms(clock.now()),
               .lastModified = ms(clock.now()),
               .created = ms(clock.now())});
    start();
    openSearch();

    // The empty query lists every live note in stack order, each from its beginning.
    ASSERT_EQ(search->model()->rowCount(), 3);
    EXPECT_EQ(rowText(2), QStringLiteral("tea only"));
    EXPECT_EQ(rowTime(2), QStringLiteral("February 1"));
    EXPECT_TRUE(rowHit(2).isEmpty());
    EXPECT_EQ(search->statusText(), QStringLiteral("3 notes"));

    QTest::keyClicks(search->field(), QStringLiteral("cafe"));
    ASSERT_EQ(search->model()->rowCount(), 2);
    // The long note starts a few words before its hit, which keeps its accent.
    EXPECT_TRUE(rowText(0).startsWith(QChar(0x2026))) << rowText(0).toStdString();
    EXPECT_TRUE(rowText(0).contains(QStringLiteral("the Café on the corner second line")));
    EXPECT_LT(rowText(0).size(), 60);
    EXPECT_EQ(rowHit(0), QStringLiteral("Café"));
    EXPECT_EQ(rowTime(0), QStringLiteral("3 hours"));
    EXPECT_EQ(rowText(1), QStringLiteral("cafe list beans"));
    EXPECT_EQ(rowHit(1), QStringLiteral("cafe"));
    EXPECT_EQ(rowTime(1), QStringLiteral("May 4, 2025"));
    EXPECT_EQ(search->statusText(), QStringLiteral("2 notes"));

    QTest::keyClicks(search->field(), QStringLiteral("zz"));
    EXPECT_EQ(search->model()->rowCount(), 0);
    EXPECT_EQ(search->statusText(), QStringLiteral("No notes found"));
}

TEST_F(SearchViewTest, AnOldNoteBeyondTheLoadedStackIsFoundChosenAndOpened)
{
    seedStack(150);
    const QUuid old = insertRaw({.content = QStringLiteral("where is the zebra"),
                                 .dbIndex = 5000,
                                 .lastModified = ms(clock.now()),
                                 .created = ms(clock.now())});
    start();
    for (const auto &model : notes->noteViewModels())
        ASSERT_NE(model->id(), old);
    openSearch();
    QSignalSpy chosen(search.get(), &SearchView::resultChosen);

    // Too short for the store's index: found by reading the notes in slices on the loop.
    QTest::keyClicks(search->field(), QStringLiteral("ze"));
    for (int i = 0; i < 100 && !search->model()->isComplete(); ++i)
        clock.advance(0ms);
    ASSERT_TRUE(search->model()->isComplete());
    ASSERT_EQ(search->model()->rowCount(), 1);
    EXPECT_EQ(rowHit(0), QStringLiteral("ze"));

    QTest::keyClick(search->field(), Qt::Key_B);
    ASSERT_EQ(search->model()->rowCount(), 1);
    QTest::keyClick(search->field(), Qt::Key_Return);
    ASSERT_EQ(chosen.count(), 1);
    const QUuid id = chosen.at(0).at(0).toUuid();
    EXPECT_EQ(id, old);
    // What the window does with the choice.
    notes->jumpToNote(id);
    EXPECT_EQ(openText(), QStringLiteral("where is the zebra"));
}

TEST_F(SearchViewTest, ArrowsPickClicksChooseEscapeClosesAndActivateStartsOver)
{
    seedStack(5);
    start();
    openSearch();
    QSignalSpy chosen(search.get(), &SearchView::resultChosen);
    QSignalSpy closed(search.get(), &SearchView::closed);
    ASSERT_EQ(search->model()->rowCount(), 5);
    EXPECT_EQ(search->list()->currentIndex().row(), 0);

    QTest::keyClick(search->field(), Qt::Key_Down);
    QTest::keyClick(search->field(), Qt::Key_Down);
    QTest::keyClick(search->field(), Qt::Key_Up);
    EXPECT_EQ(search->list()->currentIndex().row(), 1);
    QTest::keyClick(search->field(), Qt::Key_Up);
    QTest::keyClick(search->field(), Qt::Key_Up);
    EXPECT_EQ(search->list()->currentIndex().row(), 0);
    QTest::keyClick(search->field(), Qt::Key_Enter);
    ASSERT_EQ(chosen.count(), 1);
    EXPECT_EQ(chosen.at(0).at(0).toUuid(), notes->noteViewModels().front()->id());

    ASSERT_TRUE(QTest::qWaitForWindowExposed(search.get()));
    const QRect third = search->list()->visualRect(search->model()->index(2, 0));
    QTest::mouseClick(search->list()->viewport(), Qt::LeftButton, {}, third.center());
    ASSERT_EQ(chosen.count(), 2);
    EXPECT_EQ(chosen.at(1).at(0).toUuid(), notes->noteViewModels()[2]->id());

    QTest::keyClicks(search->field(), QStringLiteral("note 4"));
    EXPECT_EQ(search->model()->rowCount(), 1);
    QTest::keyClick(search->field(), Qt::Key_Escape);
    EXPECT_EQ(closed.count(), 1);

    search->activate();
    EXPECT_TRUE(search->field()->text().isEmpty());
    EXPECT_EQ(search->model()->rowCount(), 5);
}

TEST(SearchSnippet, KeepsTheHitInSightAndReadsAsOneLine)
{
    struct Case {
        QString content;
        qsizetype hitAt;
        qsizetype hitLength;
        QString text; // empty: only the hit is checked
        QString hit;
    };
    const QString longLine = QStringLiteral("alpha beta gamma delta epsilon zeta eta theta iota kappa");
    const Case cases[] = {
        // Near the start: nothing is cut.
        {QStringLiteral("buy  milk\n\ntoday"), 5, 4, QStringLiteral("buy milk today"), QStringLiteral("milk")},
        // Far into one line: begins on a word, with an ellipsis.
        {longLine, longLine.indexOf(QStringLiteral("kappa")), 5,
         QStringLiteral("\u2026epsilon zeta eta theta iota kappa"), QStringLiteral("kappa")},
        // On a later line: begins at that line, not mid-way through the one before.
        {longLine + QStringLiteral("\nsecond has it"), longLine.size() + 8, 3, QStringLiteral("second has it"),
         QStringLiteral("has")},
        // A hit that spans a line break reads with a space.
        {QStringLiteral("end\nstart"), 2, 3, QStringLiteral("end start"), QStringLiteral("d s")},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.content.toStdString());
        const SearchSnippet snippet = SearchSnippet::make(c.content, TextRange{c.hitAt, c.hitLength});
        EXPECT_EQ(snippet.text, c.text);
        ASSERT_TRUE(snippet.hit);
        EXPECT_EQ(snippet.text.mid(snippet.hit->location, snippet.hit->length), c.hit);
    }

    // A long note is cut at the end, and a hit past the text is ignored rather than trusted.
    const QString huge = QString(1000, u'x');
    const SearchSnippet cut = SearchSnippet::make(huge, TextRange{5000, 3});
    EXPECT_FALSE(cut.hit);
    EXPECT_EQ(cut.text.size(), SearchSnippet::kMaxLength + 1);
    EXPECT_EQ(cut.text.back(), QChar(0x2026));
}

TEST(MessageBoxAlerts, AnswersWithTheButtonClickedAndEscapeCancels)
{
    MessageBoxAlerts alerts;
    const Alerts::Request request{QStringLiteral("Empty The Void?"),
                                  QStringLiteral("This will permanently delete 1 note."),
                                  {QStringLiteral("Empty The Void"), QStringLiteral("Cancel")},
                                  std::nullopt};

    QString shownText;
    QTimer::singleShot(0, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        ASSERT_TRUE(box);
        shownText = box->informativeText();
        for (QAbstractButton *button : box->buttons()) {
            if (button->text() == QStringLiteral("Empty The Void"))
                button->click();
        }
    });
    EXPECT_EQ(alerts.ask(request).button, 0);
    EXPECT_EQ(shownText, request.text);

    QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape); });
    EXPECT_EQ(alerts.ask(request).button, 1);

    Alerts::Request withBox = request;
    withBox.suppressionTitle = QStringLiteral("Don't ask again.");
    QTimer::singleShot(0, [] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        ASSERT_TRUE(box && box->checkBox());
        box->checkBox()->setChecked(true);
        for (QAbstractButton *button : box->buttons()) {
            if (button->text() == QStringLiteral("Cancel"))
                button->click();
        }
    });
    const Alerts::Response answer = alerts.ask(withBox);
    EXPECT_TRUE(answer.suppressionChecked);
    EXPECT_EQ(answer.button, 1);
}
