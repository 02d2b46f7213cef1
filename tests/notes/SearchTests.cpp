#include "NoteStackFixture.h"

#include "notes/Database.h"
#include "notes/RelativeTimeText.h"
#include "notes/SearchQuery.h"
#include "notes/SearchResults.h"
#include "notes/TextFolding.h"
#include "notes/Transaction.h"

#include <sqlite3.h>

using namespace scrivlet;
using namespace scrivlet::test;

namespace {

std::vector<QUuid> idsOf(const std::vector<Note> &notes)
{
    std::vector<QUuid> ids;
    for (const Note &note : notes)
        ids.push_back(note.id);
    return ids;
}

const QStringList kTexts = {
    QStringLiteral("Café au lait at nine"),
    QStringLiteral("cafe crawl list"),
    QStringLiteral("CAFÉ SOCIETY"),
    QStringLiteral("naïve résumé draft"),
    QStringLiteral("Straße und Strasse"),
    QStringLiteral("ΣΊΣΥΦΟΣ rolls the stone"),
    QStringLiteral("emoji 😀 in the middle"),
    QStringLiteral("a+b=c and ab"),
    QStringLiteral("line one\nline two"),
    QStringLiteral("tab\tseparated"),
    QStringLiteral("日本語のテキスト"),
    QStringLiteral("İstanbul trip"),
    QString::fromUtf8("combining e\xcc\x81 accent"),
    QStringLiteral("math\n240 + (23 / 8) * 6 = 257.25"),
    QStringLiteral(""),
    QStringLiteral("x"),
};

} // namespace

class SearchTest : public NoteStackTest {
protected:
    void SetUp() override
    {
        NoteStackTest::SetUp();
        qint64 index = 10000;
        for (const QString &text : kTexts) {
            insertRaw({.content = text, .dbIndex = index});
            index += 10000;
        }
        deleted = insertRaw({.content = QStringLiteral("cafe in the void"), .dbIndex = index, .softDeleted = 1});
        slotted = insertRaw({.content = QStringLiteral("# Hermes\nCafé plans"), .dbIndex = 1, .isSlotted = true});
        start();
    }

    // The plain scan that the store's index must agree with: every live note whose
    // folded text holds the folded query, in stack order.
    std::vector<QUuid> plainScan(const QString &query)
    {
        const QString cleaned = SearchQuery::clean(query);
        const QString needle = TextFolding::fold(cleaned);
        std::vector<QUuid> ids;
        for (const Note &note : manager->fetchAll(true)) {
            if (cleaned.isEmpty() || (!needle.isEmpty() && TextFolding::fold(note.content).contains(needle)))
                ids.push_back(note.id);
        }
        return ids;
    }

    // What the search view ends up listing for `query`: every row of its results once
    // the slices the main loop runs between keystrokes are done.
    std::vector<QUuid> listed(const QString &query)
    {
        notes->updateSearchResults(query);
        clock.advance(std::chrono::milliseconds(0));
        SearchResults &results = notes->searchResults();
        EXPECT_TRUE(results.isComplete());
        std::vector<QUuid> ids;
        for (qsizetype i = 0; i < results.size(); ++i)
            ids.push_back(results.at(i).value_or(SearchResult()).id);
        return ids;
    }

    // Both ways of searching agree with the plain scan.
    void expectPlainScan(const QString &query)
    {
        SCOPED_TRACE(query.toStdString());
        const std::vector<QUuid> expected = plainScan(query);
        EXPECT_EQ(listed(query), expected);
        EXPECT_EQ(idsOf(notes->searchNotes(query)), expected);
    }

    QUuid deleted;
    QUuid slotted;
};

TEST(SearchQuery, KeepsLettersDigitsAndSpacesOnly)
{
    EXPECT_EQ(SearchQuery::clean(QStringLiteral("a+b")), QStringLiteral("ab"));
    EXPECT_EQ(SearchQuery::clean(QStringLiteral("  hi there!  ")), QStringLiteral("hi there"));
    EXPECT_EQ(SearchQuery::clean(QStringLiteral("line\nbreak")), QStringLiteral("linebreak"));
    EXPECT_EQ(SearchQuery::clean(QStringLiteral("ça va? 42")), QStringLiteral("ça va 42"));
    EXPECT_EQ(SearchQuery::clean(QStringLiteral("😀 ok")), QStringLiteral("ok"));
    EXPECT_EQ(SearchQuery::clean(QStringLiteral("?!.,;")), QString());
}

TEST(SearchQuery, LocatesTheHitInTheTextAsWritten)
{
    const auto locate = [](const QString &text, const QString &query) {
        return SearchQuery::locate(text, TextFolding::fold(SearchQuery::clean(query)));
    };
    EXPECT_EQ(locate(QStringLiteral("Le Café au lait"), QStringLiteral("cafe")), (TextRange{3, 4}));
    // A decomposed accent after the last letter found belongs to the hit.
    EXPECT_EQ(locate(QString::fromUtf8("cafe\xcc\x81 noir"), QStringLiteral("CAFÉ")), (TextRange{0, 5}));
    EXPECT_EQ(locate(QStringLiteral("😀 Straße"), QStringLiteral("STRASSE")), std::nullopt);
    EXPECT_EQ(locate(QStringLiteral("😀 Straße, straße"), QStringLiteral("STRAẞE")), (TextRange{3, 6}));
    EXPECT_EQ(locate(QStringLiteral("The ΣΊΣΥΦΟΣ myth"), QStringLiteral("σίσυφος")), (TextRange{4, 7}));
    EXPECT_EQ(locate(QStringLiteral("anything"), QString()), std::nullopt);
}

TEST(TextFolding, IgnoresCaseAndDiacritics)
{
    EXPECT_EQ(TextFolding::fold(u"Café"), TextFolding::fold(u"CAFE"));
    EXPECT_EQ(TextFolding::fold(QString::fromUtf8("e\xcc\x81")), QStringLiteral("e"));
    EXPECT_EQ(TextFolding::fold(u"ΣΊΣΥΦΟΣ"), TextFolding::fold(u"σισυφοσ"));
    EXPECT_EQ(TextFolding::fold(u"MiXeD 42"), QStringLiteral("mixed 42"));
    EXPECT_NE(TextFolding::fold(u"Strasse"), TextFolding::fold(u"Straße"));
}

TEST_F(SearchTest, TheIndexFindsExactlyWhatAPlainScanFinds)
{
    // Queries of one and two characters are looked for without the index.
    const QStringList queries = {
        "Café", "cafe", "CAFE", "caf", "ca", "é", "e", "x", "au lait", "RÉSUMÉ", "resume", "naive", "straße",
        "strasse", "σίσυφος", "sisyphus", "😀", "emoji  in", "a+b", "+++", "   ", "", "line one", "one\nline",
        "e two", "tab separated", "tab\tsep", "日本", "テキスト", "istanbul", "İstanbul", "combining e accent",
        "257.25", "23 / 8", "no such words here", "the", "Hermes", "void", "ß", "Σ", "日", "İ", "a b", "ab",
        "\t", "5", "x!", "!?", "ne", "q",
    };
    for (const QString &query : queries)
        expectPlainScan(query);

    // What the scan means for the user.
    const auto cafe = notes->searchNotes(QStringLiteral("Café"));
    EXPECT_EQ(cafe.size(), 4u); // three stack notes and the slot
    EXPECT_EQ(cafe.front().id, slotted);
    EXPECT_EQ(notes->searchNotes(QStringLiteral("?!")).size(), manager->fetchAll(true).size());
    for (const QString &query : {QStringLiteral("void"), QStringLiteral("cafe in the")}) {
        const auto found = idsOf(notes->searchNotes(query));
        EXPECT_EQ(std::count(found.begin(), found.end(), deleted), 0);
    }

    // A row carries what the view shows and what it needs to open the note.
    for (const QString &query : {QString(), QStringLiteral("ca"), QStringLiteral("é"), QStringLiteral("ΣΥΦ")}) {
        notes->updateSearchResults(query);
        clock.advance(std::chrono::milliseconds(0));
        const std::vector<Note> whole = notes->searchNotes(query);
        ASSERT_EQ(notes->searchResults().size(), qsizetype(whole.size()));
        for (std::size_t i = 0; i < whole.size(); ++i) {
            const auto row = notes->searchResults().at(qsizetype(i));
            ASSERT_TRUE(row);
            EXPECT_EQ(row->id, whole[i].id);
            EXPECT_EQ(row->content, whole[i].content);
            EXPECT_EQ(row->lastModified, whole[i].lastModified);
            EXPECT_EQ(row->dbIndex, whole[i].dbIndex);
            EXPECT_EQ(row->isSlotted, whole[i].isSlotted);
            EXPECT_EQ(row->slotIndex, whole[i].slotIndex);
            // Where the view finds the text around the hit.
            const QString needle = TextFolding::fold(SearchQuery::clean(query));
            ASSERT_EQ(row->hit.has_value(), !needle.isEmpty());
            if (row->hit) {
                EXPECT_EQ(TextFolding::fold(QStringView(row->content).mid(row->hit->location, row->hit->length)),
                          needle);
            }
        }
    }
}

TEST_F(SearchTest, TheIndexFollowsEveryWrite)
{
    const auto stackNote = [&](const QString &text) {
        for (const Note &note : manager->fetchAll(false)) {
            if (note.content == text)
                return note;
        }
        return Note{};
    };
    // Every query here is looked for before and after each write, so the search view's
    // order of the stack must follow the writes, not be read afresh.
    const QStringList queries = {QString(), "cafe", "ca", "plain", "x", "e"};
    const auto expectAllAgree = [&] {
        for (const QString &query : queries)
            expectPlainScan(query);
    };
    expectAllAgree();

    Note edited = stackNote(QStringLiteral("x"));
    edited.content = QStringLiteral("Crème brûlée recipe");
    manager->saveNote(edited);
    EXPECT_EQ(idsOf(notes->searchNotes(QStringLiteral("creme brulee"))), std::vector<QUuid>{edited.id});
    expectAllAgree();

    manager->setContent(edited.id, QStringLiteral("plain now"));
    EXPECT_TRUE(notes->searchNotes(QStringLiteral("creme")).empty());
    EXPECT_EQ(listed(QStringLiteral("PLAIN")), std::vector<QUuid>{edited.id});

    const Note created = manager->createNote();
    manager->setContent(created.id, QStringLiteral("brand new café"));
    EXPECT_EQ(listed(QStringLiteral("cafe")).back(), created.id);
    expectAllAgree();

    // Moves in the stack reorder the hits.
    manager->moveToFront(stackNote(QStringLiteral("cafe crawl list")).id, true);
    EXPECT_EQ(listed(QStringLiteral("ca")).back(), stackNote(QStringLiteral("cafe crawl list")).id);
    expectAllAgree();

    manager->deleteRow(created.id);
    EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM noteSearch")), count(QStringLiteral("SELECT count(*) FROM notes")));
    manager->softDelete(edited.id);
    EXPECT_TRUE(listed(QStringLiteral("plain")).empty());
    expectAllAgree();
    manager->restoreNote(edited.id);
    EXPECT_EQ(listed(QStringLiteral("plain")), std::vector<QUuid>{edited.id});
    expectAllAgree();
}

TEST_F(SearchTest, WritesUndoneOrMadeElsewhereReachTheSearch)
{
    const auto stackNote = [&](int i) { return manager->fetchAll(false).at(std::size_t(i)); };
    expectPlainScan(QStringLiteral("ca"));

    // A write that is rolled back after a search saw it.
    Database &db = stack->database();
    ASSERT_FALSE(db.inTransaction());
    {
        Transaction transaction(db);
        ASSERT_TRUE(db.exec(QStringLiteral("UPDATE notes SET softDeleted = 1 WHERE dbIndex = 10000; "
                                           "UPDATE notes SET dbIndex = 999999 WHERE dbIndex = 20000")));
        expectPlainScan(QStringLiteral("ca"));
        expectPlainScan(QString());
    }
    expectPlainScan(QStringLiteral("ca"));
    expectPlainScan(QString());

    // Writes through another connection to the file.
    Database other;
    ASSERT_TRUE(other.open(CoreDataStack::storePath(dataPath())));
    const Note first = stackNote(0);
    ASSERT_TRUE(other.exec(QStringLiteral("UPDATE notes SET softDeleted = 1 WHERE id = '%1'")
                               .arg(first.id.toString(QUuid::WithoutBraces))));
    ASSERT_TRUE(other.exec(QStringLiteral("UPDATE notes SET dbIndex = 5 WHERE id = '%1'")
                               .arg(stackNote(2).id.toString(QUuid::WithoutBraces))));
    for (const QString &query : {QString(), QStringLiteral("ca"), QStringLiteral("cafe")}) {
        expectPlainScan(query);
        const auto ids = listed(query);
        EXPECT_EQ(std::count(ids.begin(), ids.end(), first.id), 0);
    }
}

TEST_F(SearchTest, AShortQueryShowsAScreenfulAtOnceAndTheRestInSlices)
{
    for (int i = 0; i < 3 * CoreDataNotesManager::kSearchScreenful; ++i)
        insertRaw({.content = QStringLiteral("entry %1").arg(i), .dbIndex = 1000000 + i * 10000});
    int announced = 0;
    notes->addObserver([&](CoreDataNotesManager::Change change) {
        announced += change == CoreDataNotesManager::Change::searchResults ? 1 : 0;
    });
    const std::vector<QUuid> expected = plainScan(QStringLiteral("en"));

    notes->updateSearchResults(QStringLiteral("en"));
    SearchResults &results = notes->searchResults();
    EXPECT_FALSE(results.isComplete());
    EXPECT_GT(results.size(), 0);
    EXPECT_LE(results.size(), CoreDataNotesManager::kSearchScreenful);
    for (qsizetype i = 0; i < results.size(); ++i)
        EXPECT_EQ(results.at(i)->id, expected[std::size_t(i)]);
    EXPECT_EQ(announced, 1);

    clock.advance(std::chrono::milliseconds(0));
    EXPECT_TRUE(notes->searchResults().isComplete());
    EXPECT_EQ(listed(QStringLiteral("en")), expected);
    EXPECT_GE(announced, 2);

    // The next keystroke drops the rest of a search still under way.
    notes->updateSearchResults(QStringLiteral("en"));
    notes->updateSearchResults(QStringLiteral("entry 149"));
    clock.advance(std::chrono::milliseconds(0));
    EXPECT_EQ(clock.pendingCount(), 0u);
    ASSERT_EQ(notes->searchResults().size(), 1);
    EXPECT_EQ(notes->searchResults().at(0)->content, QStringLiteral("entry 149"));
}

TEST_F(SearchTest, ARowWhoseNoteWentSinceTheSearchIsEmpty)
{
    SearchResults results(*manager, QStringLiteral("a"));
    results.fetchAll();
    ASSERT_GE(results.size(), 3);
    const QUuid second = results.at(1)->id;
    manager->softDelete(results.at(2)->id); // row 2 read before, so it stays as shown
    const QUuid last = plainScan(QStringLiteral("a")).back();
    manager->deleteRow(last);
    EXPECT_EQ(results.at(1)->id, second);
    EXPECT_TRUE(results.at(2).has_value());
    EXPECT_FALSE(results.at(results.size() - 1).has_value());
    EXPECT_FALSE(results.at(results.size()).has_value());
    EXPECT_FALSE(results.at(-1).has_value());
    EXPECT_FALSE(SearchResults().at(0).has_value());
}

TEST_F(SearchTest, AStoreThatCantBeSearchedGivesNoResults)
{
    ASSERT_TRUE(stack->database().exec(QStringLiteral("DROP TABLE noteSearch")));
    for (const QString &query : {QStringLiteral("cafe"), QStringLiteral("ca")}) {
        notes->updateSearchResults(query);
        clock.advance(std::chrono::milliseconds(0));
        EXPECT_TRUE(notes->searchResults().isComplete());
        EXPECT_TRUE(notes->searchResults().isEmpty());
        EXPECT_TRUE(notes->searchNotes(query).empty());
    }
}

TEST_F(SearchTest, AStoreFromBeforeSearchGetsItsIndexOnOpening)
{
    // Take the store back to the schema without the index, as an older version left it.
    ASSERT_TRUE(stack->database().exec(QStringLiteral(
        "DROP TRIGGER notes_search_insert; DROP TRIGGER notes_search_update; DROP TRIGGER notes_search_delete; "
        "DROP TABLE noteSearch; PRAGMA user_version = 1")));
    notes.reset();
    openStore();
    EXPECT_EQ(stack->database().queryInt(QStringLiteral("PRAGMA user_version")), CoreDataStack::currentSchemaVersion());
    start();
    for (const QString &query : {QStringLiteral("cafe"), QStringLiteral("sisyphus"), QStringLiteral("resume")}) {
        SCOPED_TRACE(query.toStdString());
        EXPECT_EQ(idsOf(notes->searchNotes(query)), plainScan(query));
    }
    EXPECT_EQ(notes->searchNotes(QStringLiteral("cafe")).size(), 4u);
}

TEST(RelativeTimeText, SaysMinutesAndHoursForTodayAndTheDateBeforeThat)
{
    const QDateTime now(QDate(2026, 3, 10), QTime(15, 30));
    const QLocale english = QLocale::c();
    const auto text = [&](const QDateTime &date) { return RelativeTimeText::text(date, now, english); };
    EXPECT_EQ(text(now.addSecs(-30)), QStringLiteral("less than a minute ago"));
    EXPECT_EQ(text(now.addSecs(90)), QStringLiteral("less than a minute ago"));
    EXPECT_EQ(text(now.addSecs(-60)), QStringLiteral("1 minute"));
    EXPECT_EQ(text(now.addSecs(-59 * 60)), QStringLiteral("59 minutes"));
    EXPECT_EQ(text(now.addSecs(-3600)), QStringLiteral("1 hour"));
    EXPECT_EQ(text(now.addSecs(-(3 * 3600 + 5 * 60))), QStringLiteral("3 hours"));
    EXPECT_EQ(text(QDateTime(QDate(2026, 3, 9), QTime(23, 59))), QStringLiteral("March 9"));
    EXPECT_EQ(text(QDateTime(QDate(2025, 12, 31), QTime(12, 0))), QStringLiteral("December 31, 2025"));
}
