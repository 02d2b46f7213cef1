// What a math line costs the engine, per line of a long workload of typed calculator
// lines. Budgets: 1.7 µs per line from the typed text (sanitise, parse, evaluate), and
// 0.4 µs per line for parse and evaluate of text already in the parser's form. The
// "per_line" counter is the figure to hold against them; run with
// --benchmark_repetitions to get the median.

#include "MathWorkload.h"

#include "MathParser/MathEngine.h"
#include "calculation/SanitizeExpression.h"

#include <benchmark/benchmark.h>

namespace scrivlet {
namespace {

// The numbers are written the American way in the workload.
const NumberLocale &workloadLocale()
{
    static const NumberLocale locale = *NumberLocale::fromName(QStringLiteral("en_US"));
    return locale;
}

const QStringList &typedLines()
{
    static const QStringList lines = bench::mathWorkload();
    return lines;
}

const QStringList &sanitisedLines()
{
    static const QStringList lines = [] {
        QStringList out;
        for (const QString &line : typedLines())
            out << SanitizeExpression::sanitize(line, workloadLocale());
        return out;
    }();
    return lines;
}

void countPerLine(benchmark::State &state, qsizetype lines)
{
    state.SetItemsProcessed(state.iterations() * lines);
    state.counters["per_line"] =
        benchmark::Counter(double(lines), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_SanitiseParseEvaluate(benchmark::State &state)
{
    const QStringList &lines = typedLines();
    const NumberLocale &locale = workloadLocale();
    for (auto _ : state) {
        for (const QString &line : lines) {
            const math::MathResult<double> result = math::evaluate(SanitizeExpression::sanitize(line, locale));
            benchmark::DoNotOptimize(result);
        }
    }
    countPerLine(state, lines.size());
}
BENCHMARK(BM_SanitiseParseEvaluate)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly(true);

void BM_ParseEvaluate(benchmark::State &state)
{
    const QStringList &lines = sanitisedLines();
    for (auto _ : state) {
        for (const QString &line : lines) {
            const math::MathResult<double> result = math::evaluate(line);
            benchmark::DoNotOptimize(result);
        }
    }
    countPerLine(state, lines.size());
}
BENCHMARK(BM_ParseEvaluate)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly(true);

// The parts on their own, to see where the time of a line goes.
void BM_Sanitise(benchmark::State &state)
{
    const QStringList &lines = typedLines();
    const NumberLocale &locale = workloadLocale();
    for (auto _ : state) {
        for (const QString &line : lines)
            benchmark::DoNotOptimize(SanitizeExpression::sanitize(line, locale));
    }
    countPerLine(state, lines.size());
}
BENCHMARK(BM_Sanitise)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly(true);

void BM_ParseOnly(benchmark::State &state)
{
    const QStringList &lines = sanitisedLines();
    for (auto _ : state) {
        for (const QString &line : lines) {
            const math::MathResult<math::Expression> expression = math::parse(line);
            benchmark::DoNotOptimize(expression);
        }
    }
    countPerLine(state, lines.size());
}
BENCHMARK(BM_ParseOnly)->Unit(benchmark::kMillisecond)->Repetitions(7)->ReportAggregatesOnly(true);

} // namespace
} // namespace scrivlet

BENCHMARK_MAIN();
