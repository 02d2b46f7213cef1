#include "keywords/KeywordTestEnvironment.h"

#include "editor/ScrivlinkExpansion.h"
#include "editor/ScrivlinkExtraction.h"
#include "editor/ScrivlinkPass.h"
#include "editor/ScrivlinkShortening.h"
#include "editor/ScrivlinkToggle.h"
#include "keywords/NoteEditorSession.h"
#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"
#include "platform/MemorySettingsStore.h"

#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace scrivlet {
namespace {

using namespace std::chrono_literals;
using testing::KeywordTestEnvironment;

const QString kArticle = QStringLiteral("https://www.example.com/path/to/my-long-article-name/");
const QString kArticleShort = QStringLiteral("+example.com/...long-article-name+");

// One note open in an editor with its links pass, as the app and the command line have it.
class LinkNote : public ::testing::Test {
protected:
    void open(const QString &content, qsizetype caret = 0)
    {
        links.reset();
        session.reset();
        Note note;
        note.content = content;
        noteViewModel = std::make_unique<NoteViewModel>(std::move(note));
        storage.setText(content, {});
        storage.setSelectedRange({caret, 0});
        session =
            std::make_unique<NoteEditorSession>(storage, *noteViewModel, env.context, nullptr, QStringLiteral("main"));
        session->passes().applyMarkdown = markdown;
        links = std::make_unique<ScrivlinkPass>(*session, env.context);
        session->open();
    }

    void type(const QString &text)
    {
        session->willChangeText(storage.selectedRange(), text, UserActionType::keydown);
        storage.type(text);
    }

    void typeAtEnd(const QString &text)
    {
        storage.setSelectedRange({storage.length(), 0});
        type(text);
    }

    ScrivlinkManager &manager() const { return *noteViewModel->note().scrivlinkManager; }
    QStringList shortForms() const
    {
        QStringList forms;
        for (const Scrivlink &link : manager().scrivlinks)
            forms << link.shortenedUrl;
        return forms;
    }
    QString expanded() const { return expandAllScrivlinks(storage.string(), manager().scrivlinks); }

    KeywordTestEnvironment env;
    AttributedText storage;
    // The styling pass of the notes opened next, where a test needs one.
    TextPasses::Pass markdown;
    std::unique_ptr<NoteViewModel> noteViewModel;
    std::unique_ptr<NoteEditorSession> session;
    std::unique_ptr<ScrivlinkPass> links;
};

TEST(ScrivlinkShortForm, TypicalUrlsReadShort)
{
    const std::vector<std::pair<QString, QString>> cases = {
        {kArticle, QStringLiteral("example.com/...long-article-name")},
        {QStringLiteral("http://example.com/abc"), QStringLiteral("example.com/abc")},
        {QStringLiteral("example.com"), QStringLiteral("example.com")},
        {QStringLiteral("example.com/"), QStringLiteral("example.com")},
        {QStringLiteral("a.b.c.example.com/x"), QStringLiteral("c.example.com/x")},
        {QStringLiteral("www.example.com/a"), QStringLiteral("example.com/a")},
        {QStringLiteral("https://en.wikipedia.org/wiki/Long_article_title_here"),
         QStringLiteral("en.wikipedia.org/...article_title_here")},
        // A word of eleven letters or more: the last six characters tell it apart.
        {QStringLiteral("https://example.com/blog/internationalization-guide"),
         QStringLiteral("example.com/...-guide")},
        {QStringLiteral("https://example.com/search?q=qt&page=12"), QStringLiteral("example.com/...12")},
        {QStringLiteral("https://example.com/#introduction"), QStringLiteral("example.com/...uction")},
        {QStringLiteral("https://docs.google.com/document/d/1aBcDeFgHiJkLmNoPqRsTuVwXyZ/edit"),
         QStringLiteral("docs.google.com/...uVwXyZ/edit")},
        {QStringLiteral("https://drive.google.com/file/d/0B1234567890abcdefXYZ/view?usp=sharing"),
         QStringLiteral("drive.google.com/...defXYZ/view?usp=sharing")},
        {QStringLiteral("http://192.168.1.20:8080/admin/settings"), QStringLiteral("192.168.1.20/...ttings")},
        {QStringLiteral("http://localhost:3000/api"), QStringLiteral("localhost:3000/api")},
        {QStringLiteral("localhost/dashboard/users"), QStringLiteral("localhost/...users")},
        {QStringLiteral("ftp://files.example.org/pub/archive-2024.tar.gz"),
         QStringLiteral("ftp:files.example.org/...tar.gz")},
        {QStringLiteral("https://EXAMPLE.com/Mixed-Case-Path"), QStringLiteral("example.com/...Mixed-Case-Path")},
    };
    for (const auto &[url, expected] : cases)
        EXPECT_EQ(shortenUrl(url), expected) << url.toStdString();
}

TEST(ScrivlinkExtraction, FindsRealLinksAndLeavesTheRest)
{
    const QString text = QStringLiteral("mail bob@example.com or bob.smith@mail.example.org\n"
                                        "see example.com/docs. then 10.0.0.1:8080/status, readme.txt v1.2 "
                                        "localhost:5173 notes.example/x https://sub.example.co.uk/a?b=c#d");
    QStringList found;
    for (const Scrivlink &link : extractFullLinks(text)) {
        found << link.fullUrl;
        EXPECT_EQ(text.mid(link.currentRange.location, link.currentRange.length), link.fullUrl);
    }
    EXPECT_EQ(found,
              (QStringList{QStringLiteral("example.com/docs"), QStringLiteral("10.0.0.1:8080/status"),
                           QStringLiteral("localhost:5173"), QStringLiteral("https://sub.example.co.uk/a?b=c#d")}));

    const QString shortText = QStringLiteral("a +example.com/...name+ b +x.com/abc[2]+ c +not a link+ "
                                             "+localhost:80/x+ +ftp:files.example.org+");
    QStringList forms;
    for (const Scrivlink &link : extractShortenedLinks(shortText))
        forms << link.shortenedUrl;
    EXPECT_EQ(forms, (QStringList{QStringLiteral("+example.com/...name+"), QStringLiteral("+x.com/abc[2]+"),
                                  QStringLiteral("+localhost:80/x+"), QStringLiteral("+ftp:files.example.org+")}));
}

TEST(ScrivlinkShortForm, LikeFormsAreNumberedAboveTheHighest)
{
    std::vector<Scrivlink> known;
    const auto add = [&](const QString &form) {
        Scrivlink link;
        link.shortenedUrl = form;
        known.push_back(link);
    };
    const QString form = QStringLiteral("+x.com/...abcdef+");
    EXPECT_EQ(makeUnique(form, known), form);
    add(form);
    EXPECT_EQ(makeUnique(form, known), QStringLiteral("+x.com/...abcdef[1]+"));
    add(QStringLiteral("+x.com/...abcdef[1]+"));
    add(QStringLiteral("+x.com/...abcdef[7]+"));
    EXPECT_EQ(makeUnique(form, known), QStringLiteral("+x.com/...abcdef[8]+"));
    // Only forms of the same base count.
    EXPECT_EQ(makeUnique(QStringLiteral("+y.com/...abcdef+"), known), QStringLiteral("+y.com/...abcdef+"));
}

TEST_F(LinkNote, AUrlIsShortenedOnceSomethingFollowsIt)
{
    open(QStringLiteral("note\nsee "));
    typeAtEnd(kArticle);
    EXPECT_EQ(storage.string(), QStringLiteral("note\nsee ") + kArticle) << "still being typed";
    EXPECT_TRUE(manager().scrivlinks.empty());

    type(QStringLiteral(" "));
    EXPECT_EQ(storage.string(), QStringLiteral("note\nsee ") + kArticleShort + u' ');
    ASSERT_EQ(manager().scrivlinks.size(), 1u);
    const Scrivlink &link = manager().scrivlinks.front();
    EXPECT_EQ(link.fullUrl, kArticle);
    EXPECT_EQ(link.currentRange, (TextRange{9, kArticleShort.size()}));
    EXPECT_EQ(storage.selectedRange(), (TextRange{storage.length(), 0})) << "the caret stays behind the blank";
    EXPECT_EQ(manager().locationOfLastShortenedLink, storage.length());
    EXPECT_EQ(noteViewModel->note().content, storage.string());

    const TextAttributes marks = storage.attributesAt(10);
    ASSERT_TRUE(marks.custom.has_value());
    EXPECT_EQ(marks.custom->tag, QStringLiteral("scrivlink"));
    EXPECT_EQ(marks.foreground, QStringLiteral("accent1Secondary"));
    EXPECT_EQ(marks.underlineStyle, 1);

    // A caret in front of a URL with nothing between them leaves it alone too.
    open(QStringLiteral("x\nhttp://example.com/some-long-page"), 2);
    EXPECT_TRUE(manager().scrivlinks.empty());
    open(QStringLiteral("x\nhttp://example.com/some-long-page"), 1);
    EXPECT_EQ(shortForms(), QStringList{QStringLiteral("+example.com/...some-long-page+")});
}

TEST_F(LinkNote, EqualShortFormsAreNumberedAndExpandBackExactly)
{
    const QString original = QStringLiteral("\U0001F600 links\nhttps://x.com/a/abcdef-ghi https://x.com/b/abcdef-ghi\n"
                                            "\U0001F44D https://x.com/c/abcdef-ghi, mail a@b.com (done)\n");
    open(original);
    EXPECT_EQ(shortForms(),
              (QStringList{QStringLiteral("+x.com/...abcdef-ghi+"), QStringLiteral("+x.com/...abcdef-ghi[1]+"),
                           QStringLiteral("+x.com/...abcdef-ghi[2]+")}));
    EXPECT_EQ(expanded(), original);
    for (const Scrivlink &link : manager().scrivlinks)
        EXPECT_EQ(storage.substring(link.currentRange), link.shortenedUrl);

    // A fourth typed later continues the numbering.
    typeAtEnd(QStringLiteral("https://x.com/d/abcdef-ghi\n"));
    EXPECT_EQ(shortForms().last(), QStringLiteral("+x.com/...abcdef-ghi[3]+"));
    EXPECT_EQ(expanded(), original + QStringLiteral("https://x.com/d/abcdef-ghi\n"));

    // The text of a part of the note, as a copy takes it.
    const qsizetype start = storage.string().indexOf(u'\n') + 1;
    EXPECT_EQ(links->expandedText({start, storage.string().indexOf(u'\n', start) - start}),
              QStringLiteral("https://x.com/a/abcdef-ghi https://x.com/b/abcdef-ghi"));
}

TEST_F(LinkNote, TogglingKeepsALinkInFullUntilItIsGone)
{
    open(QStringLiteral("note\n") + kArticle + QStringLiteral(" end"));
    ASSERT_EQ(manager().scrivlinks.size(), 1u);

    EXPECT_TRUE(links->toggleScrivlinkAt(7));
    EXPECT_EQ(storage.string(), QStringLiteral("note\n") + kArticle + QStringLiteral(" end"));
    EXPECT_TRUE(manager().scrivlinks.empty()) << "a link kept in full is not shortened again";
    EXPECT_EQ(manager().skippedURLs, QStringList{kArticle});
    EXPECT_EQ(noteViewModel->note().content, storage.string());

    // Toggled again: short, with the caret right behind it.
    EXPECT_TRUE(links->toggleScrivlinkAt(10));
    EXPECT_EQ(storage.string(), QStringLiteral("note\n") + kArticleShort + QStringLiteral(" end"));
    EXPECT_TRUE(manager().skippedURLs.isEmpty());
    EXPECT_EQ(storage.selectedRange(), (TextRange{5 + kArticleShort.size(), 0}));
    EXPECT_FALSE(manager().shorteningFromClick);

    // Kept in full, then deleted from the text: the note forgets it at the next update.
    EXPECT_TRUE(links->toggleScrivlinkAt(6));
    ASSERT_EQ(manager().skippedURLs.size(), 1);
    storage.setSelectedRange({5, kArticle.size()});
    session->willChangeText(storage.selectedRange(), {}, UserActionType::delete_);
    storage.type(QString());
    EXPECT_TRUE(manager().skippedURLs.isEmpty());
    EXPECT_FALSE(links->toggleScrivlinkAt(1)) << "no link at the keyword";
}

TEST_F(LinkNote, ADamagedShortFormLeavesTheModel)
{
    open(QStringLiteral("note\n") + kArticle + QStringLiteral(" and https://example.org/other-long-page ok"));
    ASSERT_EQ(manager().scrivlinks.size(), 2u);
    // Delete the closing "+" of the first link.
    const qsizetype plus = 5 + kArticleShort.size() - 1;
    storage.setSelectedRange({plus + 1, 0});
    session->willChangeText({plus, 1}, {}, UserActionType::delete_);
    storage.replaceCharacters({plus, 1}, {}, {});
    session->textDidChange();
    EXPECT_EQ(shortForms(), QStringList{QStringLiteral("+example.org/...other-long-page+")});
    EXPECT_EQ(storage.substring(manager().scrivlinks.front().currentRange),
              QStringLiteral("+example.org/...other-long-page+"))
        << "the remaining link's range follows the edit";
}

TEST_F(LinkNote, CodeKeepsLinksAsTyped)
{
    open(QStringLiteral("code\n") + kArticle + QStringLiteral(" x"));
    EXPECT_TRUE(manager().scrivlinks.empty());
    EXPECT_EQ(storage.string(), QStringLiteral("code\n") + kArticle + QStringLiteral(" x"));

    // Inline code in another note: its span is marked by the styling pass.
    markdown = [](const TextPassInput &input) {
        static const QRegularExpression inlineCode(QStringLiteral("`[^`\n]+`"));
        auto matches = inlineCode.globalMatch(input.storage.string());
        while (matches.hasNext()) {
            const auto match = matches.next();
            TextAttributes code;
            code.custom = CustomAttribute{QStringLiteral("markdown"), QStringLiteral("inlineCode")};
            input.storage.addAttributes({match.capturedStart(), match.capturedLength()}, code);
        }
    };
    open(QStringLiteral("note\n`curl https://example.com/api/v1/long-endpoint ` and ") + kArticle + u' ');
    EXPECT_EQ(shortForms(), QStringList{kArticleShort});
    EXPECT_TRUE(storage.string().contains(QStringLiteral("https://example.com/api/v1/long-endpoint")));

    // A short link that ends up inside code is put back in full.
    storage.setSelectedRange({storage.string().indexOf(kArticleShort), 0});
    type(QStringLiteral("`"));
    typeAtEnd(QStringLiteral("`"));
    EXPECT_TRUE(manager().scrivlinks.empty());
    EXPECT_TRUE(storage.string().contains(u'`' + kArticle + QStringLiteral(" `")));
}

TEST_F(LinkNote, ShortFormsRefuseTyping)
{
    open(QStringLiteral("note\n") + kArticle + QStringLiteral(" tail"));
    const ScrivlinkManager &m = manager();
    const QString text = storage.string();
    const qsizetype start = 5;
    const qsizetype end = start + kArticleShort.size();
    const auto key = [](const QString &characters, quint16 code = 0) {
        return std::optional<ScrivlinkKeyPress>(ScrivlinkKeyPress{characters, code});
    };
    const auto blocks = [&](qsizetype at, const QString &typed, std::optional<ScrivlinkKeyPress> event) {
        return shouldBlockEdit(text, {at, 0}, typed, event, m);
    };

    EXPECT_FALSE(blocks(2, QStringLiteral("a"), key(QStringLiteral("a")))) << "away from links";
    EXPECT_TRUE(blocks(start + 3, QStringLiteral("a"), key(QStringLiteral("a"))));
    EXPECT_TRUE(blocks(start + 3, {}, std::nullopt)) << "an edit of unknown origin";
    EXPECT_FALSE(blocks(start, QStringLiteral(" "), key(QStringLiteral(" "))));
    EXPECT_FALSE(blocks(start, QStringLiteral("\n"), key(QStringLiteral("\r"), 36)));
    EXPECT_FALSE(blocks(start, QStringLiteral("a"), key(QStringLiteral("a"))));
    EXPECT_FALSE(blocks(end, QStringLiteral("a"), key(QStringLiteral("a"))));
    EXPECT_FALSE(blocks(start + 3, QStringLiteral("x"), key(QStringLiteral("x"), 123))) << "arrows move through";
    EXPECT_FALSE(blocks(start + 3, QStringLiteral("x"), key(QStringLiteral("x"), 51))) << "delete";
    EXPECT_TRUE(blocks(start + 3, QStringLiteral("\n"), key(QStringLiteral("\n"), 36)));

    // In the editor: the refusal tells the user why; delete selects the whole link.
    std::vector<QVariantMap> pills;
    auto subscription = env.bus.subscribe(QStringLiteral("MessagePillNotification"),
                                          [&](const QVariantMap &payload) { pills.push_back(payload); });
    storage.setSelectedRange({start + 3, 0});
    EXPECT_EQ(links->preventScrivlinkEditing(key(QStringLiteral("q"), 12)), ScrivlinkPass::KeyDecision::Refused);
    ASSERT_EQ(pills.size(), 1u);
    EXPECT_EQ(pills[0].value(QStringLiteral("message")).toString(),
              QStringLiteral("Shortened links can't be edited. Expand before editing."));
    EXPECT_EQ(pills[0].value(QStringLiteral("type")).toString(), QStringLiteral("warning"));

    storage.setSelectedRange({end, 0});
    EXPECT_EQ(links->preventScrivlinkEditing(key({}, 51)), ScrivlinkPass::KeyDecision::LinkSelected);
    EXPECT_EQ(storage.selectedRange(), (TextRange{start, kArticleShort.size()}));
}

TEST_F(LinkNote, WithShorteningOffOnlyTheToggledLinkIsShortened)
{
    env.keywordPreferences.setDisableLinkShortening(true);
    open(QStringLiteral("note\nhttps://a.example.com/first-long-page https://b.example.com/second-long-page x"));
    EXPECT_TRUE(manager().scrivlinks.empty());
    EXPECT_EQ(manager().skippedURLs.size(), 2);

    EXPECT_TRUE(links->toggleScrivlinkAt(50));
    EXPECT_EQ(storage.string(),
              QStringLiteral("note\nhttps://a.example.com/first-long-page +b.example.com/...second-long-page+ x"));
    EXPECT_EQ(manager().skippedURLs, QStringList{QStringLiteral("https://a.example.com/first-long-page")});
    EXPECT_TRUE(manager().manualToggledUrl.isEmpty());
}

TEST_F(LinkNote, LongNotesUpdateOnceTypingPauses)
{
    const QString filler = QString(1200, u'a') + u'\n';
    open(QStringLiteral("note\n") + filler);
    typeAtEnd(kArticle + u' ');
    EXPECT_TRUE(manager().scrivlinks.empty());
    EXPECT_TRUE(links->hasPendingUpdate());
    env.clock.advance(99ms);
    EXPECT_TRUE(manager().scrivlinks.empty());
    env.clock.advance(1ms);
    EXPECT_EQ(shortForms(), QStringList{kArticleShort});
    EXPECT_EQ(noteViewModel->note().content, storage.string()) << "the note holds the short form to save";

    open(QStringLiteral("note\n") + QString(6000, u'b') + u'\n');
    typeAtEnd(kArticle + u' ');
    env.clock.advance(150ms);
    EXPECT_TRUE(manager().scrivlinks.empty());
    env.clock.advance(50ms);
    EXPECT_EQ(shortForms(), QStringList{kArticleShort});
}

TEST_F(LinkNote, ShowingAllLinksInFullPutsThemBackAfterwards)
{
    const QString original = QStringLiteral("note\n") + kArticle + QStringLiteral(" and ") + kArticle + u' ';
    open(original);
    const QString shortText = storage.string();
    ASSERT_EQ(manager().scrivlinks.size(), 2u);
    links->setShowsAllLinksInFull(true);
    EXPECT_EQ(storage.string(), original);
    typeAtEnd(QStringLiteral("z"));
    EXPECT_EQ(storage.string(), original + u'z') << "nothing is shortened meanwhile";
    links->setShowsAllLinksInFull(false);
    EXPECT_EQ(storage.string(), shortText + u'z');
    EXPECT_EQ(expanded(), original + u'z');
}

TEST_F(LinkNote, ManyLinksAndHugeUrlsLoseNothing)
{
    QString original = QStringLiteral("links\n");
    for (int i = 0; i < 10000; ++i)
        original +=
            QStringLiteral("https://site%1.example.com/articles/item-%2-of-the-list\n").arg(i % 50).arg(i % 700);
    open(original);
    EXPECT_EQ(manager().scrivlinks.size(), 10000u);
    const QStringList forms = shortForms();
    EXPECT_EQ(QSet<QString>(forms.cbegin(), forms.cend()).size(), 10000);
    EXPECT_EQ(expanded(), original);

    const QString huge = QStringLiteral("https://example.com/") + QString(50000, u'x') + QStringLiteral("-end");
    open(QStringLiteral("note\n") + huge + u' ');
    EXPECT_EQ(storage.string(), QStringLiteral("note\n+example.com/...xx-end+ "));
    EXPECT_EQ(expanded(), QStringLiteral("note\n") + huge + u' ');
}

TEST(ScrivlinkStore, LinksAndSkippedUrlsSurviveASaveAndReload)
{
    QTemporaryDir dir;
    auto opened = CoreDataStack::open(dir.path());
    ASSERT_TRUE(opened.ok());
    MemorySettingsStore settings;
    ManualClock clock;
    CoreDataManager store(*opened.value(), settings, clock);

    Note note = store.createNote();
    note.content = QStringLiteral("note\n") + kArticleShort + QStringLiteral(" https://kept.example.com/in-full");
    Scrivlink link;
    link.fullUrl = kArticle;
    link.shortenedUrl = kArticleShort;
    link.currentRange = {5, kArticleShort.size()};
    note.scrivlinkManager->scrivlinks.push_back(link);
    note.scrivlinkManager->skippedURLs = {QStringLiteral("https://kept.example.com/in-full")};
    store.saveNote(note);

    const auto reloaded = store.fetchNote(note.id);
    ASSERT_TRUE(reloaded.has_value());
    ASSERT_EQ(reloaded->scrivlinkManager->scrivlinks.size(), 1u);
    EXPECT_EQ(reloaded->scrivlinkManager->scrivlinks.front(), link);
    EXPECT_EQ(reloaded->scrivlinkManager->skippedURLs, note.scrivlinkManager->skippedURLs);
    EXPECT_EQ(expandAllScrivlinks(reloaded->content, reloaded->scrivlinkManager->scrivlinks),
              QStringLiteral("note\n") + kArticle + QStringLiteral(" https://kept.example.com/in-full"));
}

} // namespace
} // namespace scrivlet
