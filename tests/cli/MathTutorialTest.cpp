// The math notes of the tutorial, run through the command line as a new user first sees
// them: every line that ends in "=" shows what a reader of the note expects, and every
// other line stays exactly as written.

#include "shell/tutorial/TutorialNotes.h"

#include <QProcess>
#include <QTemporaryFile>

#include <gtest/gtest.h>

#include <map>

using namespace scrivlet;

namespace {

// Rates as the server sends them: units per US dollar.
constexpr char kRates[] = R"({"rates": {"USD": 1, "CAD": 1.36, "JPY": 150, "EUR": 0.92, "BTC": 0.000016}})";

class MathTutorial : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_rates.open());
        m_rates.write(kRates);
        m_rates.flush();
    }

    // Runs the note through "process" and checks it line by line against `results`:
    // the text each calculated line gets behind its "=".
    void expectResults(const QString &note, const std::map<QString, QString> &results, const QString &locale)
    {
        QProcess process;
        process.start(QStringLiteral(SCRIVLET_CLI_PATH), {QStringLiteral("process"), QStringLiteral("--locale"), locale,
                                                          QStringLiteral("--rates"), m_rates.fileName()});
        ASSERT_TRUE(process.waitForStarted());
        process.write(note.toUtf8());
        process.closeWriteChannel();
        ASSERT_TRUE(process.waitForFinished(60000));
        ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();

        const QStringList in = note.split(u'\n');
        const QStringList out = QString::fromUtf8(process.readAllStandardOutput()).split(u'\n');
        ASSERT_EQ(out.size(), in.size());
        std::size_t calculated = 0;
        for (qsizetype i = 0; i < in.size(); ++i) {
            const auto result = results.find(in.at(i));
            if (result == results.end()) {
                EXPECT_EQ(out.at(i).toStdString(), in.at(i).toStdString()) << "line " << i + 1;
                continue;
            }
            EXPECT_EQ(out.at(i).toStdString(), QString(in.at(i) + u' ' + result->second).toStdString());
            ++calculated;
        }
        EXPECT_EQ(calculated, results.size()) << "a calculated line is missing from the note";
    }

    static QString note(int number, TutorialNotes::Variant variant)
    {
        return TutorialNotes::texts(variant).at(number - 1);
    }

private:
    QTemporaryFile m_rates;
};

TEST_F(MathTutorial, TheFirstMathNoteCalculatesItsLines)
{
    expectResults(note(2, TutorialNotes::Variant::point),
                  {{QStringLiteral("240 + (23 / 8) * 6 ="), QStringLiteral("257.25")},
                   {QStringLiteral("$4.25 for lychee + $21 for moon cakes ="), QStringLiteral("$25.25")}},
                  QStringLiteral("en_US"));
    expectResults(note(2, TutorialNotes::Variant::comma),
                  {{QStringLiteral("240 + (23 / 8) * 6 ="), QStringLiteral("257,25")},
                   {QStringLiteral("$4,25 for lychee + $21 for moon cakes ="), QStringLiteral("$25,25")}},
                  QStringLiteral("de_DE"));
}

TEST_F(MathTutorial, TheConversionNoteConvertsUnitsAndCurrencies)
{
    expectResults(note(3, TutorialNotes::Variant::point),
                  {{QStringLiteral("89 miles to km ="), QStringLiteral("143.23 km")},
                   {QStringLiteral("4\" 2' to cm ="), QStringLiteral("127.00 cm")},
                   {QStringLiteral("32 oz to lbs ="), QStringLiteral("2.00 lb")},
                   {QStringLiteral("$32 USD to JPY ="), QStringLiteral("4,800.00 JPY")},
                   // From the primary currency to the secondary one, and from any into the primary.
                   {QStringLiteral("$23 ="), QStringLiteral("31.28 CAD")},
                   {QStringLiteral("$5 BTC ="), QStringLiteral("312,500.00 USD")}},
                  QStringLiteral("en_US"));
}

TEST_F(MathTutorial, TheVariablesNoteFollowsItsDefinitions)
{
    expectResults(note(4, TutorialNotes::Variant::point),
                  {{QStringLiteral("guests * cost per guest ="), QStringLiteral("$170.00")},
                   {QStringLiteral("daily earnings: hourly rate * 8 ="), QStringLiteral("190.00")},
                   {QStringLiteral("monthly salary: daily earnings * 20 ="), QStringLiteral("3,800.00")}},
                  QStringLiteral("en_US"));
    expectResults(note(4, TutorialNotes::Variant::comma),
                  {{QStringLiteral("guests * cost per guest ="), QStringLiteral("$170,00")},
                   {QStringLiteral("daily earnings: hourly rate * 8 ="), QStringLiteral("190,00")},
                   {QStringLiteral("monthly salary: daily earnings * 20 ="), QStringLiteral("3.800,00")}},
                  QStringLiteral("de_DE"));
}

} // namespace
