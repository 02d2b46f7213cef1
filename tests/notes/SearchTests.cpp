#include "NoteStackFixture.h"

#include "notes/RelativeTimeText.h"
#include "notes/SearchQuery.h"
#include "notes/TextFolding.h"

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
    const QStringList queries = {
        "Café", "cafe", "CAFE", "caf", "ca", "é", "e", "x", "au lait", "RÉSUMÉ", "resume", "naive", "straße",
        "strasse", "σίσυφος", "sisyphus", "😀", "emoji  in", "a+b", "+++", "   ", "", "line one", "one\nline",
        "e two", "tab separated", "tab\tsep", "日本", "テキスト", "istanbul", "İstanbul", "combining e accent",
        "257.25", "23 / 8", "no such words here", "the", "Hermes", "void",
    };
    for (const QString &query : queries) {
        SCOPED_TRACE(query.toStdString());
        EXPECT_EQ(idsOf(notes->searchNotes(query)), plainScan(query));
    }

    // What the scan means for the user.
    const auto cafe = notes->searchNotes(QStringLiteral("Café"));
    EXPECT_EQ(cafe.size(), 4u); // three stack notes and the slot
    EXPECT_EQ(cafe.front().id, slotted);
    EXPECT_EQ(notes->searchNotes(QStringLiteral("?!")).size(), manager->fetchAll(true).size());
    for (const QString &query : {QStringLiteral("void"), QStringLiteral("cafe in the")}) {
        const auto found = idsOf(notes->searchNotes(query));
        EXPECT_EQ(std::count(found.begin(), found.end(), deleted), 0);
    }

    notes->updateSearchResults(QStringLiteral("lait"));
    ASSERT_EQ(notes->searchResults().size(), 1u);
    EXPECT_EQ(notes->searchResults().front()->note().content, kTexts[0]);
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
    Note edited = stackNote(QStringLiteral("x"));
    edited.content = QStringLiteral("Crème brûlée recipe");
    manager->saveNote(edited);
    EXPECT_EQ(idsOf(notes->searchNotes(QStringLiteral("creme brulee"))), std::vector<QUuid>{edited.id});
    EXPECT_TRUE(notes->searchNotes(QStringLiteral("x")).size() < manager->fetchAll(true).size());

    manager->setContent(edited.id, QStringLiteral("plain now"));
    EXPECT_TRUE(notes->searchNotes(QStringLiteral("creme")).empty());
    EXPECT_EQ(idsOf(notes->searchNotes(QStringLiteral("PLAIN"))), std::vector<QUuid>{edited.id});

    const Note created = manager->createNote();
    manager->setContent(created.id, QStringLiteral("brand new café"));
    EXPECT_EQ(notes->searchNotes(QStringLiteral("cafe")).back().id, created.id);

    manager->deleteRow(created.id);
    EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM noteSearch")), count(QStringLiteral("SELECT count(*) FROM notes")));
    manager->softDelete(edited.id);
    EXPECT_TRUE(notes->searchNotes(QStringLiteral("plain")).empty());
    manager->restoreNote(edited.id);
    EXPECT_EQ(idsOf(notes->searchNotes(QStringLiteral("plain"))), std::vector<QUuid>{edited.id});
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
