#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

CliRun runCli(const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(SCRIVLET_CLI_PATH), arguments);
    EXPECT_TRUE(process.waitForStarted());
    process.write(input);
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60000));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

class ScrivletCliConvert : public ::testing::Test {
protected:
    // A file in the rates server's reply format.
    QString ratesFile(const QByteArray &json)
    {
        const QString path = m_dir.filePath(QStringLiteral("rates-%1.json").arg(++m_files));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(json);
        return path;
    }

    QString goodRates()
    {
        return ratesFile(R"({"rates": {"USD": 1.0, "CAD": 1.35, "JPY": 150.0, "EUR": 0.9}, "time": 1767225600})");
    }

private:
    QTemporaryDir m_dir;
    int m_files = 0;
};

TEST_F(ScrivletCliConvert, PrintsWhatAMathLineShowsBehindItsEquals)
{
    struct Case {
        QStringList arguments;
        const char *shown;
        int exitCode;
    };
    const Case cases[] = {
        {{QStringLiteral("89 miles to km")}, "143.23 km\n", 0},
        {{QStringLiteral("89 miles to km =")}, "143.23 km\n", 0},
        {{QStringLiteral("--set"), QStringLiteral("numberOfDecimalPoints=0"), QStringLiteral("89 miles to km")},
         "143 km\n",
         0},
        {{QStringLiteral("--locale"), QStringLiteral("de_DE"), QStringLiteral("1.200 m to km")}, "1,20 km\n", 0},
        {{QStringLiteral("100 kg to st")}, "15 st 10.46 lb\n", 0},
        {{QStringLiteral("1 L to cups")}, "4 1/4 cup\n", 0},
        {{QStringLiteral("--"), QStringLiteral("-40 F to C")}, "-40.00 °C\n", 0},
        {{QStringLiteral("24")}, "Not a conversion request.\n", 1},
        // No rates file, no manual rates: no currency converts.
        {{QStringLiteral("$24")}, "N/A\n", 1},
        {{QStringLiteral("--set"), QStringLiteral("manualCurrencyRates=CAD:2"), QStringLiteral("$24")},
         "48.00 CAD\n",
         0},
    };
    for (const Case &c : cases) {
        const CliRun run = runCli(QStringList{QStringLiteral("convert")} + c.arguments);
        EXPECT_EQ(run.out, c.shown) << qPrintable(c.arguments.join(u' '));
        EXPECT_EQ(run.exitCode, c.exitCode) << qPrintable(c.arguments.join(u' '));
    }
}

TEST_F(ScrivletCliConvert, CurrenciesUseTheRatesFileUnderTheManualRates)
{
    const QString rates = goodRates();
    EXPECT_EQ(runCli({QStringLiteral("convert"), QStringLiteral("--rates"), rates, QStringLiteral("$24")}).out,
              "32.40 CAD\n");
    EXPECT_EQ(
        runCli({QStringLiteral("convert"), QStringLiteral("--rates=") + rates, QStringLiteral("$32 USD to JPY")}).out,
        "4,800.00 JPY\n");
    EXPECT_EQ(runCli({QStringLiteral("convert"), QStringLiteral("--rates"), rates, QStringLiteral("--set"),
                      QStringLiteral("manualCurrencyRates=CAD:2"), QStringLiteral("$24")})
                  .out,
              "48.00 CAD\n");

    // A math note takes the same table.
    const CliRun processed =
        runCli({QStringLiteral("process"), QStringLiteral("--rates"), rates}, "math\n$24 =\n100 EUR to JPY =\n");
    EXPECT_EQ(processed.exitCode, 0) << processed.err.constData();
    EXPECT_EQ(processed.out, "math\n$24 = 32.40 CAD\n100 EUR to JPY = 16,666.67 JPY\n");
}

TEST_F(ScrivletCliConvert, RefusesRatesFilesAndOptionsItCannotUse)
{
    const QString missing = QStringLiteral("/nonexistent/rates.json");
    const struct {
        QStringList arguments;
        const char *message;
    } cases[] = {
        {{QStringLiteral("convert"), QStringLiteral("--rates"), missing, QStringLiteral("$24")},
         "cannot read the rates file"},
        {{QStringLiteral("convert"), QStringLiteral("--rates"), ratesFile("not json"), QStringLiteral("$24")},
         "holds no rate table"},
        {{QStringLiteral("convert"), QStringLiteral("--rates"), ratesFile(R"({"rates": {"CAD": 0}})"),
          QStringLiteral("$24")},
         "not a positive number"},
        {{QStringLiteral("process"), QStringLiteral("--rates"), ratesFile(R"({"base": "USD"})")}, "no \"rates\""},
        {{QStringLiteral("convert")}, "convert needs a text"},
        {{QStringLiteral("convert"), QStringLiteral("--rates")}, "--rates needs a file"},
        {{QStringLiteral("eval"), QStringLiteral("--rates"), goodRates(), QStringLiteral("1+1")},
         "--rates applies to process and convert only"},
    };
    for (const auto &c : cases) {
        const CliRun run = runCli(c.arguments);
        EXPECT_EQ(run.exitCode, 2) << qPrintable(c.arguments.join(u' '));
        EXPECT_TRUE(run.out.isEmpty()) << qPrintable(c.arguments.join(u' '));
        EXPECT_TRUE(run.err.contains(c.message)) << run.err.constData();
    }
}

} // namespace
