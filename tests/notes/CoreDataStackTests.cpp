#include "NotesStoreFixture.h"

#include <QCryptographicHash>
#include <QFile>

#include <sqlite3.h>

using namespace scrivlet;
using namespace scrivlet::test;

namespace {

QByteArray fileHash(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// Runs one statement on the file through a connection of its own, as another process
// (a backup, an older build) would.
void execOnFile(const QString &path, const char *sql)
{
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &db), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
    sqlite3_close(db);
}

} // namespace

TEST(CoreDataStack, NewStoreIsCreatedInWalWithLinkedRows)
{
    QTemporaryDir dir;
    const QString dataDir = dir.filePath(QStringLiteral("Application Support/Scrivlet"));
    auto opened = CoreDataStack::open(dataDir);
    ASSERT_TRUE(opened.ok()) << opened.error().message.toStdString();
    CoreDataStack &stack = *opened.value();
    EXPECT_EQ(stack.filePath(), dataDir + QStringLiteral("/cd-v1-notes.sqlite"));
    EXPECT_TRUE(QFile::exists(stack.filePath()));

    Database &db = stack.database();
    Statement mode = db.prepare(QStringLiteral("PRAGMA journal_mode"));
    ASSERT_EQ(mode.step(), Statement::Step::Row);
    EXPECT_EQ(mode.columnText(0), QStringLiteral("wal"));
    Statement encoding = db.prepare(QStringLiteral("PRAGMA encoding"));
    ASSERT_EQ(encoding.step(), Statement::Step::Row);
    EXPECT_EQ(encoding.columnText(0), QStringLiteral("UTF-16le"));
    EXPECT_EQ(db.queryInt(QStringLiteral("PRAGMA foreign_keys")), 1);
    EXPECT_EQ(db.queryInt(QStringLiteral("PRAGMA user_version")), CoreDataStack::currentSchemaVersion());
}

TEST_F(NotesStoreTest, DeletingANoteRowTakesItsChildRowsAlong)
{
    auto makeNoteWithChildren = [this] {
        Note note = manager->createNote();
        note.content = QStringLiteral("list\n- eggs https://example.org/x");
        auto item = std::make_shared<ChecklistItem>();
        item->content = QStringLiteral("eggs");
        note.checklistManager->checklist.push_back(item);
        note.scrivlinkManager->scrivlinks.push_back(
            Scrivlink{QUuid::createUuid(), QStringLiteral("https://example.org/x"), QStringLiteral("ex/x"), {12, 4}});
        Attachment attachment;
        attachment.id = QUuid::createUuid();
        attachment.fileName = QStringLiteral("a.png");
        note.attachments.push_back(attachment);
        manager->saveNote(note);
        return note.id;
    };
    const QUuid doomed = makeNoteWithChildren();
    const QUuid kept = makeNoteWithChildren();
    for (const char *table : {"checklistItems", "scrivlinks", "attachments"})
        ASSERT_EQ(count(QStringLiteral("SELECT count(*) FROM ") % QLatin1String(table)), 2) << table;

    // Straight at the database, as a batch delete does, without the manager.
    Statement remove = stack->database().prepare(QStringLiteral("DELETE FROM notes WHERE id = ?1"));
    remove.bind(1, doomed.toString(QUuid::WithoutBraces));
    ASSERT_TRUE(remove.exec());

    for (const char *table : {"checklistItems", "scrivlinks", "attachments"})
        EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM ") % QLatin1String(table)), 1) << table;
    const auto survivor = manager->fetchNote(kept);
    ASSERT_TRUE(survivor);
    EXPECT_EQ(survivor->checklistManager->checklist.size(), 1u);
    EXPECT_EQ(survivor->scrivlinkManager->scrivlinks.size(), 1u);
    EXPECT_EQ(survivor->attachments.size(), 1u);
}

TEST(CoreDataStack, UnreadableFilesAreRefusedAndLeftByteForByte)
{
    QTemporaryDir dir;
    const QString path = CoreDataStack::storePath(dir.path());

    // Not a database at all.
    QByteArray junk = "These are my notes, typed into a text file by hand.\n";
    junk = junk.repeated(100);
    ASSERT_TRUE(writeFile(path, junk));
    auto opened = CoreDataStack::open(dir.path());
    ASSERT_FALSE(opened.ok());
    EXPECT_EQ(opened.error().kind, StoreError::Kind::notADatabase);
    EXPECT_TRUE(opened.error().message.contains(QStringLiteral("not a database")))
        << opened.error().message.toStdString();
    EXPECT_TRUE(opened.error().message.contains(QStringLiteral("cd-v1-notes.sqlite")));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), junk);
    file.close();
    EXPECT_FALSE(QFile::exists(path + QStringLiteral("-wal")));

    // Some other program's database.
    ASSERT_TRUE(QFile::remove(path));
    execOnFile(path, "CREATE TABLE accounts (name TEXT)");
    QByteArray before = fileHash(path);
    opened = CoreDataStack::open(dir.path());
    ASSERT_FALSE(opened.ok());
    EXPECT_EQ(opened.error().kind, StoreError::Kind::notADatabase);
    EXPECT_EQ(fileHash(path), before);

    // A store from a newer version of the app.
    ASSERT_TRUE(QFile::remove(path));
    ASSERT_TRUE(CoreDataStack::open(dir.path()).ok());
    execOnFile(path, "PRAGMA user_version = 99");
    before = fileHash(path);
    opened = CoreDataStack::open(dir.path());
    ASSERT_FALSE(opened.ok());
    EXPECT_EQ(opened.error().kind, StoreError::Kind::newerSchema);
    EXPECT_TRUE(opened.error().message.contains(QStringLiteral("newer"))) << opened.error().message.toStdString();
    EXPECT_EQ(fileHash(path), before);
}

TEST(CoreDataStackDeathTest, FolderThatCannotBeMadeFailsWithTheStoreMessage)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    QTemporaryDir dir;
    // A plain file where a folder should be: no user, root included, can make the folder.
    const QString blocker = dir.filePath(QStringLiteral("blocker"));
    ASSERT_TRUE(writeFile(blocker, "x"));
    const QString dataDir = blocker + QStringLiteral("/Scrivlet");

    auto opened = CoreDataStack::open(dataDir);
    ASSERT_FALSE(opened.ok());
    EXPECT_EQ(opened.error().kind, StoreError::Kind::cannotOpen);
    EXPECT_TRUE(opened.error().message.contains(dataDir)) << opened.error().message.toStdString();
    EXPECT_DEATH(CoreDataStack::failFatally(opened.error()), "Core Data store failed: Can't open the store file");
}

TEST_F(NotesStoreTest, NoteTextComesBackExactlyAfterReopening)
{
    QString awkward = QStringLiteral("before");
    awkward.append(QChar(0xD83D)); // a high surrogate with no partner
    awkward.append(QChar(u'\0'));
    awkward.append(QStringLiteral("after nul "));
    awkward.append(QChar(0xDE00));                        // a low surrogate alone
    awkward.append(QString::fromUtf16(u"\U0001F600 ok")); // and a proper pair
    ASSERT_EQ(awkward.size(), 6 + 1 + 1 + 10 + 1 + 2 + 3);

    QString large;
    large.reserve(5 * 1024 * 1024 / 2);
    for (int i = 0; large.size() < 5 * 1024 * 1024 / 2; ++i)
        large += QStringLiteral("line %1 of a very long note = %2\n").arg(i).arg(i * 3.5);

    std::vector<std::pair<QUuid, QString>> expected;
    for (const QString &text : {awkward, large, QString()}) {
        const Note note = manager->createNote();
        ASSERT_TRUE(manager->setContent(note.id, text));
        expected.emplace_back(note.id, text);
    }
    for (int i = 0; i < 40; ++i) {
        const Note note = manager->createNote();
        ASSERT_TRUE(manager->setContent(note.id, QStringLiteral("note %1").arg(i)));
        expected.emplace_back(note.id, QStringLiteral("note %1").arg(i));
    }
    const std::vector<Note> before = manager->fetchAll(true);

    openStore();
    const std::vector<Note> after = manager->fetchAll(true);
    ASSERT_EQ(after.size(), expected.size());
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 0; i < after.size(); ++i) {
        EXPECT_EQ(after[i].id, expected[i].first);
        EXPECT_EQ(after[i].content, expected[i].second) << "note " << i;
        EXPECT_EQ(after[i].dbIndex, before[i].dbIndex);
        EXPECT_EQ(after[i].lastModified, before[i].lastModified);
    }
    EXPECT_EQ(after[0].content.size(), awkward.size());
    EXPECT_EQ(after[1].content.size(), large.size());
}
