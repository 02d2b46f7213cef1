// The tutorial notes that work on plain text (totals, counts), run through the command
// line as a new user first sees them: the note stays as written and gets exactly the
// block a reader of it expects. One test per note.

#include "shell/tutorial/TutorialNotes.h"

#include <QProcess>

#include <gtest/gtest.h>

using namespace scrivlet;

namespace {

class TextTutorial : public ::testing::Test {
protected:
    // What "process" makes of `note` with the number format of `locale`.
    static QString process(const QString &note, const QString &locale)
    {
        QProcess process;
        process.start(QStringLiteral(SCRIVLET_CLI_PATH),
                      {QStringLiteral("process"), QStringLiteral("--locale"), locale});
        if (!process.waitForStarted())
            return QStringLiteral("<did not start>");
        process.write(note.toUtf8());
        process.closeWriteChannel();
        if (!process.waitForFinished(60000) || process.exitCode() != 0)
            return QStringLiteral("<failed: ") + QString::fromUtf8(process.readAllStandardError()) + u'>';
        return QString::fromUtf8(process.readAllStandardOutput());
    }

    // The note, unchanged, with `block` one blank line below it.
    static void expectBlock(const QString &note, const QString &locale, const QString &block)
    {
        EXPECT_EQ(process(note, locale).toStdString(), QString(note + QStringLiteral("\n\n") + block).toStdString())
            << "locale " << locale.toStdString();
    }

    static QString note(int number, TutorialNotes::Variant variant = TutorialNotes::Variant::point)
    {
        return TutorialNotes::texts(variant).at(number - 1);
    }
};

TEST_F(TextTutorial, TheCountNoteCountsItsNames)
{
    ASSERT_TRUE(note(7).startsWith(QStringLiteral("count\n")));
    // Five names of ten words in five lines: 16 syllables by the vowel rule, so
    // 206.835 - 1.015 * 2 - 84.6 * 1.6 and 0.39 * 2 + 11.8 * 1.6 - 15.59.
    const QString block = QStringLiteral("Items: 5\nWords: 10\nCharacters: 67\nSentences: 5\n"
                                         "Flesch Reading Ease Score: 69.45\nFlesch-Kincaid Grade Level: 4.07");
    expectBlock(note(7), QStringLiteral("en_US"), block);
    expectBlock(note(7, TutorialNotes::Variant::comma), QStringLiteral("de_DE"), block);
}

TEST_F(TextTutorial, TheSumNoteAddsTheShoppingInTheUsersNumberFormat)
{
    ASSERT_TRUE(note(8).startsWith(QStringLiteral("sum\n")));
    expectBlock(note(8), QStringLiteral("en_US"), QStringLiteral("Total: $37.25"));
    expectBlock(note(8, TutorialNotes::Variant::comma), QStringLiteral("de_DE"), QStringLiteral("Total: $37,25"));
}

TEST_F(TextTutorial, TheAverageNoteAveragesTheSameShopping)
{
    ASSERT_TRUE(note(9).startsWith(QStringLiteral("avg\n")));
    expectBlock(note(9), QStringLiteral("en_US"), QStringLiteral("Avg: $9.31"));
    expectBlock(note(9, TutorialNotes::Variant::comma), QStringLiteral("de_DE"), QStringLiteral("Avg: $9,31"));
}

} // namespace
