#include <QProcess>
#include <QProcessEnvironment>
#include <gtest/gtest.h>

namespace {

struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

CliRun runCli(const QStringList &arguments, const QString &lcAll = QStringLiteral("C.UTF-8"))
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), lcAll);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(SCRIVLET_CLI_PATH), arguments);
    EXPECT_TRUE(process.waitForStarted());
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(60000));
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

QStringList eval(std::initializer_list<const char *> arguments)
{
    QStringList list{QStringLiteral("eval")};
    for (const char *argument : arguments)
        list << QString::fromUtf8(argument);
    return list;
}

struct Case {
    std::initializer_list<const char *> arguments;
    const char *value;
};

TEST(ScrivletCliEval, PrintsTheValueAMathLineWouldHave)
{
    const Case cases[] = {
        {{"2 + 3 * 4"}, "14"},
        {{"5 x 3"}, "15"},
        {{"2^3"}, "8"},
        {{"50%"}, "0.5"},
        {{"50% of 200"}, "100"},
        {{"200 - 25%"}, "150"},
        {{"7 % 2"}, "0.072"}, // "7%" is 0.07 and the "2" is its next digit: never a modulo
        {{"sqrt(16)"}, "4"},
        {{"2²"}, "4"},
        {{"5 apples + 3 pears"}, "8"},
        {{"$1,200 + 300"}, "1500"},
        {{"--locale", "de_DE", "1,5 + 1"}, "2.5"},
        {{"--locale=de_DE", "1.200,5 €"}, "1200.5"},
        {{"--locale", "en_US", "1,5 + 1"}, "16"},
        {{"--locale", "en_US", "1.200,5"}, "1.2005"},
        {{"-2^2"}, "-4"},
        {{"--", "-3 x -3"}, "9"},
        {{"1 / 8"}, "0.125"},
        {{"10^15"}, "1000000000000000"},
        {{"10^21"}, "1e+21"},
        {{"10^400"}, "inf"},
    };
    for (const Case &c : cases) {
        const CliRun run = runCli(eval(c.arguments));
        EXPECT_EQ(run.exitCode, 0) << *c.arguments.begin() << ": " << run.err.constData();
        EXPECT_EQ(run.out, QByteArray(c.value) + '\n') << *c.arguments.begin();
        EXPECT_TRUE(run.err.isEmpty()) << run.err.constData();
    }
}

TEST(ScrivletCliEval, RawExpressionsGoToTheParserAsTyped)
{
    const Case cases[] = {
        {{"--raw", "7 % 2"}, "1"},     // the parser's modulo
        {{"--raw", "2^3"}, "1"},       // and its exclusive or
        {{"--raw", "2 ** 3"}, "8"},
        {{"--raw", "0x1F"}, "31"},     // hex survives only without the rewrites
        {{"--raw", "3 % 0"}, "nan"},   // no error: a value that is not a number
        {{"--raw", "--", "--2"}, "2"},
        {{"--raw", "--locale", "de_DE", "1.5 + 1"}, "2.5"},
    };
    for (const Case &c : cases) {
        const CliRun run = runCli(eval(c.arguments));
        EXPECT_EQ(run.exitCode, 0) << *(c.arguments.begin() + 1) << ": " << run.err.constData();
        EXPECT_EQ(run.out, QByteArray(c.value) + '\n') << *(c.arguments.begin() + 1);
    }
}

TEST(ScrivletCliEval, NoValueIsNaOnStandardOutputAndTheReasonOnStandardError)
{
    const struct {
        std::initializer_list<const char *> arguments;
        const char *kind;
    } cases[] = {
        {{"1/0"}, "divideByZero"},
        {{"max(1,2)"}, "unknownFunction"}, // the blind "x" rewrite leaves "ma*(12)"
        {{"10 20"}, "invalidFormat"},      // two numbers side by side
        {{"(1 + 2"}, "missingCloseParenthesis"},
        {{"--raw", "5 x 3"}, "unknownFunction"},
        {{"--raw", "1 +"}, "missingRightOperand"},
        {{""}, "invalidFormat"},
    };
    for (const auto &c : cases) {
        const CliRun run = runCli(eval(c.arguments));
        EXPECT_EQ(run.exitCode, 1) << *c.arguments.begin();
        EXPECT_EQ(run.out, QByteArray("n/a\n")) << *c.arguments.begin();
        EXPECT_EQ(run.err, QByteArray(c.kind) + '\n') << *c.arguments.begin();
    }
}

TEST(ScrivletCliEval, WithoutLocaleOptionTheSystemLocaleReadsTheNumbers)
{
    EXPECT_EQ(runCli(eval({"1,5 + 1"}), QStringLiteral("de_DE.UTF-8")).out, QByteArray("2.5\n"));
    EXPECT_EQ(runCli(eval({"1,5 + 1"}), QStringLiteral("en_US.UTF-8")).out, QByteArray("16\n"));
    // The option wins over the environment.
    EXPECT_EQ(runCli(eval({"--locale", "en_US", "1,5 + 1"}), QStringLiteral("de_DE.UTF-8")).out, QByteArray("16\n"));
}

TEST(ScrivletCliEval, BadOptionsAreRefusedWithExitTwo)
{
    const std::initializer_list<const char *> bad[] = {
        {},                                   // no expression
        {"--raw"},                            // still none
        {"1", "2"},                           // two expressions
        {"--locale", "xx_YY", "1"},           // a locale Qt does not know
        {"1", "--locale"},                    // a locale without name
        {"--set", "numberOfDecimalPoints=0", "1"},
        {"--frobnicate", "1"},
        {"-x", "1"},
    };
    for (const auto &arguments : bad) {
        const CliRun run = runCli(eval(arguments));
        EXPECT_EQ(run.exitCode, 2) << (arguments.size() ? *arguments.begin() : "(none)");
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_TRUE(run.err.startsWith("scrivlet-cli: ")) << run.err.constData();
    }
    EXPECT_TRUE(runCli(eval({"--locale", "xx_YY", "1"})).err.contains("xx_YY"));

    // --raw belongs to eval, and process takes the locale like eval does.
    EXPECT_EQ(runCli({QStringLiteral("process"), QStringLiteral("--raw")}).exitCode, 2);
    const CliRun process = runCli({QStringLiteral("process"), QStringLiteral("--locale"), QStringLiteral("de_DE")});
    EXPECT_EQ(process.exitCode, 0) << process.err.constData();

    const CliRun help = runCli({QStringLiteral("--help")});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("eval [--locale NAME] [--raw] EXPR"));
}

} // namespace
