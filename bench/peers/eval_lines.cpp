// eval_lines workload            the math workload's lines on standard output
// eval_lines evaluate FILE        each line's value as a math line computes it ("n/a"
//                                 when it has none), one per line; on standard error the
//                                 median time per line with and without the sanitiser
//
// Numbers are read the American way ("1,200.50"), as the workload writes them.

#include "MathWorkload.h"

#include "MathParser/MathEngine.h"
#include "calculation/SanitizeExpression.h"
#include "calculation/ShortestDecimal.h"

#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

using namespace scrivlet;

namespace {

constexpr int kWarmUpPasses = 12;
constexpr int kTimedPasses = 31;

template <typename Pass> double medianNanosecondsPerLine(qsizetype lineCount, Pass pass)
{
    for (int i = 0; i < kWarmUpPasses; ++i)
        pass();
    std::vector<double> times;
    for (int i = 0; i < kTimedPasses; ++i) {
        const auto start = std::chrono::steady_clock::now();
        pass();
        const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - start;
        times.push_back(elapsed.count() / double(lineCount));
    }
    std::nth_element(times.begin(), times.begin() + kTimedPasses / 2, times.end());
    return times[kTimedPasses / 2];
}

int evaluateFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "eval_lines: cannot read %s\n", qPrintable(path));
        return 2;
    }
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();

    NumberLocale::setCurrent(*NumberLocale::fromName(QStringLiteral("en_US")));
    QStringList sanitised;
    for (const QString &line : lines) {
        sanitised << SanitizeExpression::sanitize(line);
        const math::MathResult<double> result = math::evaluate(sanitised.last());
        std::printf("%s\n", result ? qPrintable(shortestDecimal(result.value())) : "n/a");
    }

    double sink = 0;
    const double full = medianNanosecondsPerLine(lines.size(), [&] {
        for (const QString &line : lines) {
            const math::MathResult<double> result = math::evaluate(SanitizeExpression::sanitize(line));
            sink += result ? 1 : 0;
        }
    });
    const double raw = medianNanosecondsPerLine(lines.size(), [&] {
        for (const QString &line : sanitised) {
            const math::MathResult<double> result = math::evaluate(line);
            sink += result ? 1 : 0;
        }
    });
    std::fprintf(stderr, "lines=%lld full_ns_per_line=%.1f raw_ns_per_line=%.1f checksum=%.0f\n",
                 static_cast<long long>(lines.size()), full, raw, sink);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() == 1 && arguments.first() == u"workload") {
        for (const QString &line : bench::mathWorkload())
            std::printf("%s\n", line.toUtf8().constData());
        return 0;
    }
    if (arguments.size() == 2 && arguments.first() == u"evaluate")
        return evaluateFile(arguments.at(1));
    std::fputs("usage: eval_lines workload | eval_lines evaluate FILE\n", stderr);
    return 2;
}
