#include "KeywordTestEnvironment.h"

#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"

#include <gtest/gtest.h>

namespace scrivlet {
namespace {

using namespace std::chrono_literals;
using testing::KeywordTestEnvironment;

class SessionTest : public ::testing::Test {
protected:
    SessionTest()
    {
        Note note;
        note.content = QStringLiteral("sum\n1");
        noteViewModel = std::make_unique<NoteViewModel>(std::move(note));
        session = std::make_unique<NoteEditorSession>(
            storage, *noteViewModel, env.context, [this](const Note &saved) { saves.push_back(saved.content); },
            QStringLiteral("main"));
        session->passes().applyMarkdown = [this](const TextPassInput &) { ++pipelineRuns; };
        // The session is under test, not the totals: the note keeps its text as typed.
        session->passes().sum = {};
        session->open();
        pipelineRuns = 0;
    }

    void type(const QString &text)
    {
        session->willChangeText(storage.selectedRange(), text, UserActionType::keydown);
        storage.type(text);
    }

    KeywordTestEnvironment env;
    AttributedText storage;
    std::unique_ptr<NoteViewModel> noteViewModel;
    std::vector<QString> saves;
    int pipelineRuns = 0;
    std::unique_ptr<NoteEditorSession> session;
};

TEST_F(SessionTest, OpeningShowsTheNoteAndFindsItsKeyword)
{
    EXPECT_EQ(storage.string(), QStringLiteral("sum\n1"));
    EXPECT_EQ(session->activeKeyword(), KeywordID::SUM);
    EXPECT_TRUE(session->editRecord().isContentLoaded);
    EXPECT_EQ(storage.attributesAt(0).foreground, QStringLiteral("accent3Main"));
    EXPECT_EQ(env.hints.back().value(QStringLiteral("editorId")).toString(), QStringLiteral("main"));
}

TEST_F(SessionTest, SavesOnceAfterASecondOfQuietWithTheLatestText)
{
    storage.setSelectedRange({5, 0});
    type(QStringLiteral("2"));
    env.clock.advance(600ms);
    type(QStringLiteral("3"));
    env.clock.advance(999ms);
    EXPECT_TRUE(saves.empty());
    EXPECT_EQ(noteViewModel->note().content, QStringLiteral("sum\n123"));

    env.clock.advance(1ms);
    EXPECT_EQ(saves, std::vector<QString>{QStringLiteral("sum\n123")});
    env.clock.advance(5s);
    EXPECT_EQ(saves.size(), 1u);
    EXPECT_EQ(pipelineRuns, 2);
}

TEST_F(SessionTest, RecordsTheEditBeforeTheChange)
{
    storage.setSelectedRange({5, 0});
    session->willChangeText({4, 1}, {}, UserActionType::delete_);
    EXPECT_EQ(session->editRecord().preModifiedContent, QStringLiteral("sum\n1"));
    EXPECT_EQ(session->editRecord().lastModifiedContent, QString(EditRecord::kBackwardDelete));
    EXPECT_EQ(session->editRecord().lastModifiedRange, (TextRange{4, 1}));
}

TEST_F(SessionTest, TextEqualToTheNoteSkipsThePipelineUnlessForced)
{
    session->textDidChange();
    EXPECT_EQ(pipelineRuns, 0);
    session->setForceProcessing(true);
    session->textDidChange();
    EXPECT_EQ(pipelineRuns, 1);
    EXPECT_FALSE(session->forceProcessing());
}

TEST_F(SessionTest, RestylesTheNoteOnEachRestyleNotification)
{
    storage.setSelectedRange({2, 0});
    const char *names[] = {"fontPreferencesChanged", "mathPreferencesChanged", "keywordPreferencesChanged",
                           "themeChanged",           "timerStared",            "textProgrammaticallyChanged"};
    for (const char *name : names)
        env.bus.post(QString::fromLatin1(name));
    EXPECT_EQ(pipelineRuns, 6);
    EXPECT_EQ(storage.selectedRange(), (TextRange{2, 0}));

    // A changed font preference reaches the text through the restyle.
    env.visualPreferences.setDoubleFontSize(true);
    const double before = storage.attributesAt(4).font->pointSize;
    env.bus.post(QStringLiteral("fontPreferencesChanged"));
    EXPECT_EQ(storage.attributesAt(4).font->pointSize, 2 * before);
}

TEST_F(SessionTest, FlushSavesAtOnceAndStopsListeningWhenGone)
{
    storage.setSelectedRange({5, 0});
    type(QStringLiteral("0"));
    ASSERT_TRUE(session->hasPendingSave());
    session->flushPendingSave();
    EXPECT_EQ(saves, std::vector<QString>{QStringLiteral("sum\n10")});
    EXPECT_FALSE(session->hasPendingSave());

    session.reset();
    EXPECT_EQ(storage.delegate(), nullptr);
    env.bus.post(QStringLiteral("themeChanged"));
    storage.type(QStringLiteral("x"));
    EXPECT_EQ(noteViewModel->note().content, QStringLiteral("sum\n10"));
}

} // namespace
} // namespace scrivlet
