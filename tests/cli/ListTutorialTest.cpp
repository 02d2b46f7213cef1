// List notes through the command line as a script sees them with --json: the text comes
// back untouched, and every row carries what a reader of the note sees beside it.

#include "shell/tutorial/TutorialNotes.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <gtest/gtest.h>

using namespace scrivlet;

namespace {

struct Row {
    QString content;
    bool checked;
    bool hidden;
    friend bool operator==(const Row &, const Row &) = default;
};

std::ostream &operator<<(std::ostream &os, const Row &row)
{
    return os << '{' << row.content.toStdString() << ", checked " << row.checked << ", hidden " << row.hidden << '}';
}

QByteArray runProcess(const QString &note, const QStringList &options)
{
    QProcess process;
    process.start(QStringLiteral(SCRIVLET_CLI_PATH), QStringList{QStringLiteral("process")} + options);
    EXPECT_TRUE(process.waitForStarted());
    process.write(note.toUtf8());
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    return process.readAllStandardOutput();
}

// The note's JSON: its text and rows.
std::pair<QString, std::vector<Row>> processAsJson(const QString &note, QStringList options = {})
{
    const QByteArray out = runProcess(note, options << QStringLiteral("--json"));
    QJsonParseError error;
    const QJsonObject object = QJsonDocument::fromJson(out, &error).object();
    EXPECT_EQ(error.error, QJsonParseError::NoError) << out.constData();
    EXPECT_TRUE(object.value(QStringLiteral("scrivlinks")).isArray());
    std::vector<Row> rows;
    for (const QJsonValue &value : object.value(QStringLiteral("checklist")).toArray()) {
        const QJsonObject row = value.toObject();
        rows.push_back({row.value(QStringLiteral("content")).toString(), row.value(QStringLiteral("checked")).toBool(),
                        row.value(QStringLiteral("hidden")).toBool()});
    }
    return {object.value(QStringLiteral("text")).toString(), rows};
}

TEST(ListTutorial, TheTutorialListShowsItsRowsAsAReaderExpects)
{
    const QString note = TutorialNotes::texts(TutorialNotes::Variant::point).at(5);
    ASSERT_TRUE(note.startsWith(QStringLiteral("list")));
    const auto [text, rows] = processAsJson(note);
    EXPECT_EQ(text, note);
    const std::vector<Row> expected = {
        {QStringLiteral("Every line is automatically a new item.\n"), false, false},
        {QStringLiteral("# Break up lists with headers\n"), false, true},
        {QStringLiteral("Doesn’t it feel good\n"), false, false},
        {QStringLiteral("to check things off\n"), false, false},
        // The check word inside the line ticks nothing: only at its end does it.
        {QStringLiteral("just type “/x” at the end of an item\n"), false, false},
        {QStringLiteral("to check it off /x\n"), true, false},
        {QStringLiteral("like that ^\n"), false, false},
        {QStringLiteral("[←] great job!"), false, false},
    };
    EXPECT_EQ(rows, expected);

    // Without --json the text comes out as before, byte for byte.
    EXPECT_EQ(runProcess(note, {}), note.toUtf8());
}

TEST(ListTutorial, AHandWrittenListWithTickedRows)
{
    const QString note = QStringLiteral("TODO\n"
                                        "milk /X\n"
                                        "\n"
                                        "// for the weekend\n"
                                        "bread done\n"
                                        "eggs   \n"
                                        "   \n"
                                        "undone");
    const auto [text, rows] = processAsJson(note);
    EXPECT_EQ(text, note);
    const std::vector<Row> expected = {
        {QStringLiteral("milk /X\n"), true, false},
        {QStringLiteral("// for the weekend\n"), false, true},
        {QStringLiteral("bread done\n"), true, false},
        {QStringLiteral("eggs   \n"), false, false},
        {QStringLiteral("   \n"), false, false},
        {QStringLiteral("undone"), true, false},
    };
    EXPECT_EQ(rows, expected);

    // Other check words from the settings: "/x" no longer ticks, "ok" does.
    const auto [_, custom] = processAsJson(note, {QStringLiteral("--set"), QStringLiteral("checkTriggers=ok,fin")});
    ASSERT_EQ(custom.size(), 6u);
    EXPECT_FALSE(custom[0].checked);
    EXPECT_FALSE(custom[2].checked);

    // A note that isn't a list has no rows.
    EXPECT_TRUE(processAsJson(QStringLiteral("sum\nmilk /x")).second.empty());
}

} // namespace
