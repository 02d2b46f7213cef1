#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sqlite3.h>

// Failures show text, not the bytes of a QString.
inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace {

struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;

    QString outText() const { return QString::fromUtf8(out); }
    QString errText() const { return QString::fromUtf8(err); }
    QJsonArray array() const { return QJsonDocument::fromJson(out).array(); }
};

CliRun runCli(const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(QStringLiteral(SCRIVLET_CLI_PATH), arguments);
    EXPECT_TRUE(process.waitForStarted());
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60000));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

QStringList ids(const QJsonArray &notes)
{
    QStringList list;
    for (const QJsonValue &note : notes)
        list << note[QStringLiteral("id")].toString();
    return list;
}

// Every test works on a fresh data folder of its own.
class DataDirCli : public ::testing::Test {
protected:
    CliRun run(QStringList arguments, const QByteArray &input = {})
    {
        arguments.prepend(m_dir.path());
        arguments.prepend(QStringLiteral("--data-dir"));
        return runCli(arguments, input);
    }

    QJsonArray stack() { return run({QStringLiteral("notes"), QStringLiteral("list"), QStringLiteral("--json")}).array(); }
    QJsonArray theVoid() { return run({QStringLiteral("void"), QStringLiteral("list"), QStringLiteral("--json")}).array(); }
    QString openText() { return run({QStringLiteral("notes"), QStringLiteral("show")}).outText(); }

    QString path(const QString &name) const { return m_dir.filePath(name); }

    QTemporaryDir m_dir;
};

TEST_F(DataDirCli, AFreshFolderHasTheTutorialStackAndNineSlots)
{
    const CliRun json = run({QStringLiteral("notes"), QStringLiteral("list"), QStringLiteral("--json")});
    ASSERT_EQ(json.exitCode, 0) << json.err.constData();
    const QJsonArray notes = json.array();
    ASSERT_EQ(notes.size(), 17);
    // Oldest first: the welcome note is the front of the stack, and the one left open.
    EXPECT_TRUE(notes.last()[QStringLiteral("content")].toString().startsWith(u"Welcome to Scrivlet!"));
    EXPECT_TRUE(notes.first()[QStringLiteral("content")].toString().startsWith(u"Wow, even ads"));
    double previousIndex = -1;
    for (const QJsonValue &note : notes) {
        EXPECT_GT(note[QStringLiteral("dbIndex")].toDouble(), previousIndex);
        previousIndex = note[QStringLiteral("dbIndex")].toDouble();
        EXPECT_FALSE(note[QStringLiteral("isSlotted")].toBool());
        EXPECT_TRUE(note[QStringLiteral("slotIndex")].isNull());
        EXPECT_FALSE(QUuid::fromString(note[QStringLiteral("id")].toString()).isNull());
    }
    // Tutorial notes carry the fixed anchor date, one second apart, written in UTC.
    EXPECT_EQ(notes.first()[QStringLiteral("lastModified")].toString(), QStringLiteral("2001-01-01T00:00:00.000Z"));
    EXPECT_EQ(notes.last()[QStringLiteral("lastModified")].toString(), QStringLiteral("2001-01-01T00:00:16.000Z"));

    const QStringList lines = run({QStringLiteral("notes"), QStringLiteral("list")}).outText().split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 17);
    EXPECT_EQ(lines.last(), QStringLiteral("* ") % notes.last()[QStringLiteral("id")].toString() %
                                QStringLiteral("  Welcome to Scrivlet!"));
    EXPECT_TRUE(lines.at(5).startsWith(u"  ") && lines.at(5).endsWith(u"Last trick - I promise!"))
        << qPrintable(lines.at(5));

    const QJsonArray slotted = run({QStringLiteral("slots"), QStringLiteral("--json")}).array();
    ASSERT_EQ(slotted.size(), 9);
    for (int i = 0; i < 9; ++i) {
        EXPECT_TRUE(slotted[i][QStringLiteral("isSlotted")].toBool());
        EXPECT_EQ(slotted[i][QStringLiteral("slotIndex")].toInt(), i + 1);
    }
    EXPECT_TRUE(slotted[0][QStringLiteral("content")].toString().startsWith(u"# Hermes\n\nThis is your"));
    EXPECT_EQ(slotted[8][QStringLiteral("content")].toString(), QStringLiteral("# Hades"));
    EXPECT_TRUE(run({QStringLiteral("slots")}).outText().startsWith(QStringLiteral("* 1  ")));

    // The folder holds the store and its own settings; a second start seeds nothing more.
    EXPECT_TRUE(QFile::exists(path(QStringLiteral("cd-v1-notes.sqlite"))));
    EXPECT_TRUE(QFile::exists(path(QStringLiteral("settings.ini"))));
    EXPECT_EQ(ids(stack()), ids(notes));
}

TEST_F(DataDirCli, TheOpenNoteIsKeptBetweenRuns)
{
    const QJsonArray notes = stack();
    ASSERT_EQ(notes.size(), 17);
    auto content = [&](int fromFront) { return notes[17 - fromFront][QStringLiteral("content")].toString(); };

    const CliRun back = run({QStringLiteral("notes"), QStringLiteral("previous")});
    EXPECT_EQ(back.exitCode, 0) << back.err.constData();
    EXPECT_TRUE(back.outText().startsWith(QStringLiteral("* ") % notes[15][QStringLiteral("id")].toString()));
    run({QStringLiteral("notes"), QStringLiteral("previous")});
    EXPECT_EQ(openText(), content(3) % u'\n');
    EXPECT_EQ(run({QStringLiteral("notes"), QStringLiteral("next")}).exitCode, 0);
    EXPECT_EQ(openText(), content(2) % u'\n');
    // The list marks the same note as open.
    const QStringList lines = run({QStringLiteral("notes"), QStringLiteral("list")}).outText().split(u'\n');
    EXPECT_TRUE(lines.at(15).startsWith(QStringLiteral("* ") % notes[15][QStringLiteral("id")].toString()));

    // At the deep end the stack says so, and a script walking it stops there.
    EXPECT_EQ(run({QStringLiteral("notes"), QStringLiteral("jump"), notes[1][QStringLiteral("id")].toString()}).exitCode, 0);
    EXPECT_EQ(run({QStringLiteral("notes"), QStringLiteral("previous")}).exitCode, 0);
    const CliRun end = run({QStringLiteral("notes"), QStringLiteral("previous")});
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_TRUE(end.out.isEmpty());
    EXPECT_EQ(end.errText(), QStringLiteral("warning: No older notes\n"));
    EXPECT_EQ(openText(), content(17) % u'\n');
}

TEST_F(DataDirCli, NotesGoToTheVoidAndComeBack)
{
    const CliRun first = run({QStringLiteral("notes"), QStringLiteral("new"), QStringLiteral("Café au lait")});
    ASSERT_EQ(first.exitCode, 0) << first.err.constData();
    EXPECT_TRUE(first.errText().contains(u"New note created"));
    const QString firstId = first.outText().trimmed();
    EXPECT_EQ(openText(), QStringLiteral("Café au lait\n"));

    // Without TEXT the note is read from standard input, exactly.
    const CliRun second = run({QStringLiteral("notes"), QStringLiteral("new")}, "from a pipe\nline two\n\n");
    ASSERT_EQ(second.exitCode, 0) << second.err.constData();
    const QString secondId = second.outText().trimmed();
    const QJsonObject shown =
        QJsonDocument::fromJson(run({QStringLiteral("notes"), QStringLiteral("show"), QStringLiteral("--json")}).out).object();
    EXPECT_EQ(shown[QStringLiteral("id")].toString(), secondId);
    EXPECT_EQ(shown[QStringLiteral("content")].toString(), QStringLiteral("from a pipe\nline two\n\n"));
    QStringList expected = ids(stack());
    ASSERT_EQ(expected.size(), 19);
    EXPECT_EQ(expected.mid(17), (QStringList{firstId, secondId}));

    // Deleting the open note opens the one below it.
    const CliRun deleted = run({QStringLiteral("notes"), QStringLiteral("delete")});
    EXPECT_EQ(deleted.exitCode, 0) << deleted.err.constData();
    EXPECT_TRUE(deleted.errText().contains(u"Note deleted"));
    EXPECT_EQ(openText(), QStringLiteral("Café au lait\n"));
    EXPECT_FALSE(ids(stack()).contains(secondId));
    QJsonArray trashed = theVoid();
    ASSERT_EQ(trashed.size(), 1);
    EXPECT_EQ(trashed[0][QStringLiteral("id")].toString(), secondId);
    EXPECT_TRUE(trashed[0][QStringLiteral("deletedAt")].toString().endsWith(u'Z'));

    // A note named by the start of its id goes without moving the open note.
    const QString welcome = expected.at(16);
    EXPECT_EQ(run({QStringLiteral("notes"), QStringLiteral("delete"), welcome.left(8)}).exitCode, 0);
    EXPECT_EQ(openText(), QStringLiteral("Café au lait\n"));
    const CliRun again = run({QStringLiteral("notes"), QStringLiteral("delete"), welcome});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(again.errText().contains(u"is in The Void")) << again.err.constData();

    const CliRun listed = run({QStringLiteral("void"), QStringLiteral("list")});
    EXPECT_TRUE(listed.outText().startsWith(u"2 lost souls\n")) << listed.out.constData();

    // A restored note comes back as the newest; the rest is gone for good when emptied.
    const CliRun restored = run({QStringLiteral("void"), QStringLiteral("restore"), secondId});
    EXPECT_EQ(restored.exitCode, 0) << restored.err.constData();
    EXPECT_EQ(restored.errText(), QStringLiteral("Note restored\n"));
    EXPECT_EQ(ids(stack()).last(), secondId);
    EXPECT_EQ(run({QStringLiteral("void"), QStringLiteral("restore"), secondId}).exitCode, 1);

    const CliRun emptied = run({QStringLiteral("void"), QStringLiteral("empty")});
    EXPECT_EQ(emptied.exitCode, 0);
    EXPECT_EQ(emptied.errText(), QStringLiteral("Emptied 1 note from The Void\n"));
    EXPECT_EQ(run({QStringLiteral("void"), QStringLiteral("list")}).outText(),
              QStringLiteral("The Void is empty\nDeleted notes will drift here\n"));
    EXPECT_EQ(run({QStringLiteral("void"), QStringLiteral("empty")}).errText(), QStringLiteral("The Void is already empty\n"));
    const CliRun gone = run({QStringLiteral("notes"), QStringLiteral("show"), welcome});
    EXPECT_EQ(gone.exitCode, 1);
    EXPECT_TRUE(gone.errText().contains(u"no note has the ID"));
    EXPECT_EQ(stack().size(), 18);
}

TEST_F(DataDirCli, PromoteAndJumpMoveThroughTheWholeStack)
{
    const QJsonArray notes = stack();
    const QString fifth = notes[4][QStringLiteral("id")].toString();

    const CliRun jumped = run({QStringLiteral("notes"), QStringLiteral("jump"), fifth});
    EXPECT_EQ(jumped.exitCode, 0) << jumped.err.constData();
    EXPECT_TRUE(jumped.outText().startsWith(QStringLiteral("* ") % fifth));
    EXPECT_EQ(jumped.errText(), QStringLiteral("Navigated to note\n"));
    const CliRun same = run({QStringLiteral("notes"), QStringLiteral("jump"), fifth});
    EXPECT_EQ(same.exitCode, 1);
    EXPECT_EQ(same.errText(), QStringLiteral("warning: Already on this note\n"));

    // The open note goes to the front with its text and stays open.
    const CliRun promoted = run({QStringLiteral("notes"), QStringLiteral("promote")});
    EXPECT_EQ(promoted.exitCode, 0) << promoted.err.constData();
    EXPECT_EQ(promoted.errText(), QStringLiteral("Promoted note to front\n"));
    const QJsonArray after = stack();
    ASSERT_EQ(after.size(), 17);
    EXPECT_EQ(after.last()[QStringLiteral("id")].toString(), fifth);
    EXPECT_EQ(after.last()[QStringLiteral("content")], notes[4][QStringLiteral("content")]);
    EXPECT_GT(after.last()[QStringLiteral("dbIndex")].toDouble(), notes.last()[QStringLiteral("dbIndex")].toDouble());
    EXPECT_EQ(openText(), notes[4][QStringLiteral("content")].toString() % u'\n');
    const CliRun already = run({QStringLiteral("notes"), QStringLiteral("promote"), fifth});
    EXPECT_EQ(already.exitCode, 1);
    EXPECT_EQ(already.errText(), QStringLiteral("warning: Note is already first\n"));

    // Slotted notes stay where they are; a jump to one opens its slot.
    const QJsonArray slotted = run({QStringLiteral("slots"), QStringLiteral("--json")}).array();
    const QString gaia = slotted[2][QStringLiteral("id")].toString();
    const CliRun refused = run({QStringLiteral("notes"), QStringLiteral("promote"), gaia});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.errText(), QStringLiteral("warning: Slotted notes cannot be moved to front\n"));
    EXPECT_EQ(run({QStringLiteral("notes"), QStringLiteral("delete"), gaia}).errText(),
              QStringLiteral("warning: Slotted notes cannot be deleted\n"));
    const CliRun toSlot = run({QStringLiteral("notes"), QStringLiteral("jump"), gaia});
    EXPECT_EQ(toSlot.exitCode, 0) << toSlot.err.constData();
    EXPECT_EQ(toSlot.outText(), QStringLiteral("* 3  ") % gaia % QStringLiteral("  # Gaia\n"));
    EXPECT_TRUE(run({QStringLiteral("slots")}).outText().contains(QStringLiteral("\n* 3  ") % gaia));
    EXPECT_EQ(openText(), notes[4][QStringLiteral("content")].toString() % u'\n');
}

TEST_F(DataDirCli, SearchFindsNotesWhateverTheirCaseAndAccents)
{
    const QString cafe = run({QStringLiteral("notes"), QStringLiteral("new"), QStringLiteral("Meet at the Café")}).outText().trimmed();
    const QString doomed = run({QStringLiteral("notes"), QStringLiteral("new"), QStringLiteral("another cafe, deleted")}).outText().trimmed();
    run({QStringLiteral("notes"), QStringLiteral("delete"), doomed});

    const CliRun plain = run({QStringLiteral("search"), QStringLiteral("CAFE")});
    EXPECT_EQ(plain.exitCode, 0);
    EXPECT_EQ(plain.outText(), cafe % QStringLiteral("  Meet at the Café\n"));
    const QJsonArray found = run({QStringLiteral("search"), QStringLiteral("cafe"), QStringLiteral("--json")}).array();
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0][QStringLiteral("content")].toString(), QStringLiteral("Meet at the Café"));

    // Slotted notes are searched too; words after the verb are one query.
    const QJsonArray hermes = run({QStringLiteral("search"), QStringLiteral("first"), QStringLiteral("of"),
                                   QStringLiteral("nine"), QStringLiteral("--json")})
                                  .array();
    ASSERT_EQ(hermes.size(), 1);
    EXPECT_TRUE(hermes[0][QStringLiteral("isSlotted")].toBool());
    EXPECT_EQ(hermes[0][QStringLiteral("slotIndex")].toInt(), 1);
    EXPECT_TRUE(run({QStringLiteral("search"), QStringLiteral("hermes")}).outText().contains(u"  [slot 1] # Hermes"));

    // Punctuation alone searches for nothing in particular: every live note.
    EXPECT_EQ(run({QStringLiteral("search"), QStringLiteral("?!"), QStringLiteral("--json")}).array().size(), 18 + 9);
    const CliRun none = run({QStringLiteral("search"), QStringLiteral("xylophone")});
    EXPECT_EQ(none.exitCode, 0);
    EXPECT_TRUE(none.out.isEmpty());
    EXPECT_TRUE(none.errText().contains(u"xylophone"));
}

TEST_F(DataDirCli, BadInputIsRefusedBeforeTheFolderIsTouched)
{
    const QString fresh = path(QStringLiteral("fresh"));
    auto usage = [&](const QStringList &arguments, const char *words, const QByteArray &input = {}) {
        const CliRun result = runCli(QStringList{QStringLiteral("--data-dir"), fresh} + arguments, input);
        EXPECT_EQ(result.exitCode, 2) << qPrintable(arguments.join(u' '));
        EXPECT_TRUE(result.out.isEmpty());
        EXPECT_TRUE(result.err.contains(words)) << qPrintable(arguments.join(u' ')) << ": " << result.err.constData();
    };
    usage({QStringLiteral("notes")}, "needs one of list, show");
    usage({QStringLiteral("notes"), QStringLiteral("frob")}, "unknown command \"notes frob\"");
    usage({QStringLiteral("notes"), QStringLiteral("list"), QStringLiteral("extra")}, "unexpected argument \"extra\"");
    usage({QStringLiteral("notes"), QStringLiteral("jump")}, "needs a note ID");
    usage({QStringLiteral("notes"), QStringLiteral("show"), QStringLiteral("zz-top")}, "is not a note ID");
    usage({QStringLiteral("void"), QStringLiteral("restore")}, "needs a note ID");
    usage({QStringLiteral("notes"), QStringLiteral("next"), QStringLiteral("--json")}, "--json does not apply");
    usage({QStringLiteral("search")}, "needs a QUERY");
    usage({QStringLiteral("reset"), QStringLiteral("everything")}, "unknown command \"reset everything\"");
    usage({QStringLiteral("notes"), QStringLiteral("new")}, "not valid UTF-8", QByteArray("ok\xff\xfe", 4));
    EXPECT_FALSE(QFileInfo::exists(fresh));

    const CliRun noFolder = runCli({QStringLiteral("notes"), QStringLiteral("list")});
    EXPECT_EQ(noFolder.exitCode, 2);
    EXPECT_TRUE(noFolder.err.contains("needs --data-dir DIR"));

    const CliRun help = runCli({QStringLiteral("--help")});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("--data-dir DIR notes list"));
    EXPECT_TRUE(help.out.contains("1 when"));
}

TEST_F(DataDirCli, AFolderOrStoreThatCannotBeOpenedFailsWithItsReason)
{
    QFile file(path(QStringLiteral("a-file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a folder");
    file.close();
    const CliRun isFile = runCli({QStringLiteral("--data-dir"), file.fileName(), QStringLiteral("slots")});
    EXPECT_EQ(isFile.exitCode, 1);
    EXPECT_TRUE(isFile.err.contains("is a file, not a folder")) << isFile.err.constData();
    const CliRun under = runCli({QStringLiteral("--data-dir"), file.fileName() % QStringLiteral("/notes"), QStringLiteral("slots")});
    EXPECT_EQ(under.exitCode, 1);
    EXPECT_TRUE(under.err.contains("cannot create the data folder")) << under.err.constData();

    // A store that isn't one is reported, and left exactly as it was.
    const QByteArray garbage(4096, 'x');
    QFile store(path(QStringLiteral("cd-v1-notes.sqlite")));
    ASSERT_TRUE(store.open(QIODevice::WriteOnly));
    store.write(garbage);
    store.close();
    const CliRun broken = run({QStringLiteral("notes"), QStringLiteral("list")});
    EXPECT_EQ(broken.exitCode, 1);
    EXPECT_TRUE(broken.out.isEmpty());
    EXPECT_TRUE(broken.err.contains("cannot open the notes in")) << broken.err.constData();
    ASSERT_TRUE(store.open(QIODevice::ReadOnly));
    EXPECT_EQ(store.readAll(), garbage);
}

TEST_F(DataDirCli, AFolderTheAppHasOpenIsLeftToIt)
{
    ASSERT_EQ(run({QStringLiteral("notes"), QStringLiteral("new"), QStringLiteral("kept")}).exitCode, 0);
    const QByteArray before = run({QStringLiteral("notes"), QStringLiteral("list")}).out;

    // The app holds the folder's lock for as long as it runs; this process stands in for it.
    QLockFile app(path(QStringLiteral("scrivlet.lock")));
    ASSERT_TRUE(app.tryLock(0));
    const CliRun refused = run({QStringLiteral("notes"), QStringLiteral("new"), QStringLiteral("lost?")});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains("Scrivlet is running on")) << refused.err.constData();
    EXPECT_TRUE(refused.out.isEmpty());
    app.unlock();

    EXPECT_EQ(run({QStringLiteral("notes"), QStringLiteral("list")}).out, before) << "the refused run wrote nothing";
    // Once the app is gone the folder is the command line's again.
    EXPECT_EQ(run({QStringLiteral("notes"), QStringLiteral("new"), QStringLiteral("later")}).exitCode, 0);
}

// A notes database as the earlier app wrote it: dates as seconds since 1970.
void writeLegacyDatabase(const QString &path, const QList<QPair<QString, QString>> &notes)
{
    sqlite3 *db = nullptr;
    ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &db), SQLITE_OK);
    QByteArray sql = "CREATE TABLE notes (id TEXT PRIMARY KEY, created REAL, lastModified REAL, content TEXT, "
                     "dbIndex INTEGER, isSlotted INTEGER, skippedURLs TEXT);";
    int index = 1;
    for (const auto &[id, content] : notes) {
        QString escaped = content;
        escaped.replace(u'\'', QStringLiteral("''"));
        sql += QStringLiteral("INSERT INTO notes VALUES ('%1', 1600000000, %2, '%3', %4, 0, NULL);")
                   .arg(id)
                   .arg(1600000000 + index)
                   .arg(escaped)
                   .arg(index)
                   .toUtf8();
        ++index;
    }
    char *error = nullptr;
    EXPECT_EQ(sqlite3_exec(db, sql.constData(), nullptr, nullptr, &error), SQLITE_OK) << (error ? error : "");
    sqlite3_free(error);
    sqlite3_close(db);
}

} // namespace

TEST_F(DataDirCli, BackupImportAndResetWorkOnTheFoldersFiles)
{
    const CliRun backup = run({QStringLiteral("backup")});
    ASSERT_EQ(backup.exitCode, 0) << backup.err.constData();
    const QFileInfo copy(backup.outText().trimmed());
    EXPECT_TRUE(copy.exists());
    EXPECT_EQ(copy.absolutePath(), QFileInfo(m_dir.path()).absoluteFilePath());
    EXPECT_TRUE(copy.fileName().startsWith(u"cd-v1-notes_cdbackup_") && copy.fileName().endsWith(u".sqlite"));

    // Notes of the earlier app come in once, with their ids.
    QTemporaryDir elsewhere;
    const QString legacy = elsewhere.filePath(QStringLiteral("old notes.sqlite3"));
    const QString oldId = QStringLiteral("6f1c2a9e-0d4b-4e8a-9a53-2b7c1f0e4d21");
    writeLegacyDatabase(legacy, {{oldId, QStringLiteral("groceries from the old app")},
                                 {QStringLiteral("0b8e5d1c-7a26-4f3e-b1d9-c4a2e6f8a013"), QStringLiteral("it's me again")}});
    const CliRun imported = run({QStringLiteral("import-legacy"), legacy});
    EXPECT_EQ(imported.exitCode, 0) << imported.err.constData();
    EXPECT_EQ(imported.outText(), QStringLiteral("Imported 2 notes\n"));
    const QJsonArray withImported = stack();
    EXPECT_EQ(withImported.size(), 19);
    EXPECT_TRUE(ids(withImported).contains(oldId));
    EXPECT_EQ(run({QStringLiteral("search"), QStringLiteral("groceries")}).outText(),
              oldId % QStringLiteral("  groceries from the old app\n"));
    EXPECT_TRUE(run({QStringLiteral("import-legacy"), legacy}).outText().startsWith(u"No new notes"));
    EXPECT_EQ(stack().size(), 19);
    const CliRun missing = run({QStringLiteral("import-legacy"), elsewhere.filePath(QStringLiteral("none.sqlite3"))});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.contains("File not found at")) << missing.err.constData();
    EXPECT_EQ(run({QStringLiteral("import-legacy"), path(QStringLiteral("settings.ini"))}).exitCode, 1);

    // A reset of the preferences leaves every note, and forgets even the open one.
    run({QStringLiteral("notes"), QStringLiteral("previous")});
    const CliRun preferences = run({QStringLiteral("reset"), QStringLiteral("preferences")});
    EXPECT_EQ(preferences.exitCode, 0) << preferences.err.constData();
    EXPECT_EQ(preferences.outText(), QStringLiteral("Preferences reset\n"));
    QFile settings(path(QStringLiteral("settings.ini")));
    ASSERT_TRUE(settings.open(QIODevice::ReadOnly));
    EXPECT_TRUE(settings.readAll().trimmed().isEmpty());
    EXPECT_EQ(ids(stack()), ids(withImported));

    // A factory reset makes the next run a first start, tutorial and all; the store's
    // backup copies stay, the legacy database in the folder goes.
    ASSERT_TRUE(QFile::copy(legacy, path(QStringLiteral("notes.sqlite3"))));
    const CliRun factory = run({QStringLiteral("reset"), QStringLiteral("factory")});
    EXPECT_EQ(factory.exitCode, 0) << factory.err.constData();
    EXPECT_TRUE(factory.outText().endsWith(u"App reset to factory settings\n")) << factory.out.constData();
    EXPECT_TRUE(factory.outText().contains(u"notes.sqlite3"));
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("notes.sqlite3"))));
    EXPECT_TRUE(copy.exists());
    const QJsonArray afresh = stack();
    EXPECT_EQ(afresh.size(), 17);
    EXPECT_FALSE(ids(afresh).contains(oldId));
    EXPECT_EQ(theVoid().size(), 0);
}
