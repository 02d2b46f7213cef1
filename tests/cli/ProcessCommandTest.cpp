#include <QProcess>
#include <gtest/gtest.h>

namespace {

struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

CliRun runCli(const QStringList &arguments, const QByteArray &input)
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

const QStringList kProcess{QStringLiteral("process")};

} // namespace

TEST(ScrivletCliProcess, APlainNoteComesBackByteForByte)
{
    const QList<QByteArray> inputs = {
        QByteArray("hello\n"),
        QByteArray("no newline at the end"),
        QByteArray("windows\r\nline ends\r\n"),
        QByteArray("nul\0inside", 10),
        QByteArray("summary of the day\n12 + 30 =\n"), // "summary" is no keyword
        QByteArray("caf\xc3\xa9 \xf0\x9f\x93\x9d notes\n\n\n"),
        QByteArray(),
    };
    for (const QByteArray &input : inputs) {
        const CliRun run = runCli(kProcess, input);
        EXPECT_EQ(run.exitCode, 0) << run.err.constData();
        EXPECT_EQ(run.out, input);
    }
}

TEST(ScrivletCliProcess, KeywordNotesKeepTheirTextWhereTheEngineWritesNothing)
{
    // The keyword itself and a disabled engine leave the text as typed.
    const CliRun disabled = runCli({QStringLiteral("process"), QStringLiteral("--set"),
                                 QStringLiteral("disableAllKeywords=true")},
                                "math\n1+1=");
    EXPECT_EQ(disabled.exitCode, 0);
    EXPECT_EQ(disabled.out, QByteArray("math\n1+1="));

    const CliRun timer = runCli(kProcess, "timer 5:30 : laundry\n");
    EXPECT_EQ(timer.exitCode, 0);
    EXPECT_EQ(timer.out, QByteArray("timer 5:30 : laundry\n"));
}

TEST(ScrivletCliProcess, BadOptionsAreRefusedWithExitTwoAndTheKeyNamed)
{
    const CliRun wrongType =
        runCli({QStringLiteral("process"), QStringLiteral("--set"), QStringLiteral("numberOfDecimalPoints=abc")},
               "hello");
    EXPECT_EQ(wrongType.exitCode, 2);
    EXPECT_TRUE(wrongType.out.isEmpty());
    EXPECT_TRUE(wrongType.err.contains("numberOfDecimalPoints")) << wrongType.err.constData();

    const CliRun unknown = runCli({QStringLiteral("process"), QStringLiteral("--set=noSuchSetting=1")}, "hello");
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_TRUE(unknown.err.contains("noSuchSetting"));

    const CliRun noPair = runCli({QStringLiteral("process"), QStringLiteral("--set"), QStringLiteral("fontSize")}, "x");
    EXPECT_EQ(noPair.exitCode, 2);
    EXPECT_EQ(runCli({QStringLiteral("process"), QStringLiteral("--set")}, "x").exitCode, 2);
    EXPECT_EQ(runCli({QStringLiteral("process"), QStringLiteral("--frobnicate")}, "x").exitCode, 2);
    EXPECT_EQ(runCli({QStringLiteral("export")}, "x").exitCode, 2);
    EXPECT_EQ(runCli({}, "x").exitCode, 2);

    // Every typed kind of key takes a good value.
    for (const char *good : {"numberOfDecimalPoints=0", "fontSize=large", "timerSoundVolume=0.8",
                             "syncWithICloud=false", "primaryCurrency=EUR"}) {
        const CliRun ok = runCli({QStringLiteral("process"), QStringLiteral("--set"), QString::fromLatin1(good)}, "x");
        EXPECT_EQ(ok.exitCode, 0) << good << ": " << ok.err.constData();
        EXPECT_EQ(ok.out, QByteArray("x"));
    }

    const CliRun help = runCli({QStringLiteral("--help")}, {});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("process"));
}

TEST(ScrivletCliProcess, InputThatIsNotTextIsRefusedAndLargeNotesPassWhole)
{
    const CliRun binary = runCli(kProcess, QByteArray("ok\xff\xfe", 4));
    EXPECT_EQ(binary.exitCode, 2);
    EXPECT_TRUE(binary.out.isEmpty());
    EXPECT_TRUE(binary.err.contains("UTF-8"));

    QByteArray large;
    large.reserve(5 * 1024 * 1024 + 64);
    for (int i = 0; large.size() < 5 * 1024 * 1024; ++i)
        large += "line " + QByteArray::number(i) + " of a very long note\n";
    const CliRun run = runCli(kProcess, "sum\n" + large);
    EXPECT_EQ(run.exitCode, 0);
    // The whole note comes back, with its total below it.
    EXPECT_TRUE(run.out.startsWith(QByteArray("sum\n" + large)));
    EXPECT_TRUE(run.out.mid(large.size() + 4).startsWith("\n\nTotal: ")) << run.out.right(40).constData();
}
