#include "notes/CoreDataManager.h"
#include "support/AppUnderX.h"

#include <gtest/gtest.h>

using namespace scrivlet;
using scrivlet::testing::AppUnderX;

namespace {

const QString kApp = QStringLiteral(SCRIVLET_APP_PATH);

// Writes the stack before the app starts, oldest first; returns the notes' ids.
std::vector<QUuid> seed(AppUnderX &app, const QStringList &texts)
{
    std::vector<QUuid> ids;
    EXPECT_TRUE(app.withStore([&](CoreDataManager &store) {
        for (const QString &text : texts) {
            const Note note = store.createNote();
            EXPECT_TRUE(store.setContent(note.id, text));
            ids.push_back(note.id);
        }
    })) << qPrintable(app.lastError());
    return ids;
}

std::optional<Note> stored(AppUnderX &app, const QUuid &id)
{
    std::optional<Note> note;
    EXPECT_TRUE(app.withStore([&](CoreDataManager &store) { note = store.fetchNote(id); }))
        << qPrintable(app.lastError());
    return note;
}

} // namespace

// A note far below the hundred the app loads is found by search, opened, and takes
// what the user types next.
TEST(AppVoidSearch, SearchOpensAnOldNoteAndTypingLandsInIt)
{
    AppUnderX app(kApp);
    app.setSetting(QStringLiteral("showOnboarding"), false);
    QStringList texts{QStringLiteral("where is the zebra")};
    for (int i = 1; i <= 150; ++i)
        texts << QStringLiteral("filler %1").arg(i);
    const auto ids = seed(app, texts);
    const QUuid old = ids.front();

    ASSERT_TRUE(app.start()) << qPrintable(app.lastError());
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+shift+f")));
    ASSERT_TRUE(app.type(QStringLiteral("zebra")));
    ASSERT_TRUE(app.key(QStringLiteral("Return")));
    ASSERT_TRUE(app.type(QStringLiteral(" found")));
    ASSERT_TRUE(app.quit()) << qPrintable(app.lastError());

    const auto note = stored(app, old);
    ASSERT_TRUE(note);
    EXPECT_EQ(note->content, QStringLiteral("where is the zebra found"));
    // The note that was open when search began kept its text.
    const auto newest = stored(app, ids.back());
    ASSERT_TRUE(newest);
    EXPECT_EQ(newest->content, QStringLiteral("filler 150"));
}

// The open note goes to The Void and comes back from it with Enter, as the newest note.
TEST(AppVoidSearch, DeletedNoteIsRestoredFromTheVoid)
{
    AppUnderX app(kApp);
    app.setSetting(QStringLiteral("showOnboarding"), false);
    app.setSetting(QStringLiteral("suppressDeleteWarning"), true);
    const auto ids = seed(app, {QStringLiteral("keep me"), QStringLiteral("bring me back")});

    ASSERT_TRUE(app.start()) << qPrintable(app.lastError());
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+shift+BackSpace")));
    // The delete is saved at once, so the store shows it while the app runs.
    ASSERT_TRUE(AppUnderX::waitUntil([&] {
        const auto note = stored(app, ids[1]);
        return note && note->softDeleted;
    }));
    ASSERT_TRUE(app.key(QStringLiteral("ctrl+shift+t")));
    ASSERT_TRUE(app.key(QStringLiteral("Return")));
    ASSERT_TRUE(app.key(QStringLiteral("Escape")));
    ASSERT_TRUE(app.quit()) << qPrintable(app.lastError());

    const auto restored = stored(app, ids[1]);
    ASSERT_TRUE(restored);
    EXPECT_FALSE(restored->softDeleted);
    EXPECT_FALSE(restored->deletedAt.has_value());
    EXPECT_TRUE(app.withStore([&](CoreDataManager &store) {
        EXPECT_EQ(store.countTrash(), 0);
        // Restoring made it the newest of the stack.
        const auto latest = store.fetchLatest(1, false);
        ASSERT_EQ(latest.size(), 1u);
        EXPECT_EQ(latest.front().id, ids[1]);
    }));
}
