#include "MathParser/BuiltInFunctions.h"

#include "MathParser/EvaluationState.h"

#include <QVarLengthArray>

#include <algorithm>
#include <limits>

namespace scrivlet::math::builtins {

namespace {

using Values = QVarLengthArray<double, 16>;

// Every argument's value, or nothing when there are fewer than minimum or one failed.
std::optional<Values> evaluateAll(EvaluationState &state, qsizetype minimum)
{
    if (!state.requireArgumentCount(minimum, -1))
        return std::nullopt;
    Values values;
    values.reserve(state.argumentCount());
    for (qsizetype i = 0; i < state.argumentCount(); ++i)
        values.append(state.evaluateArgument(i));
    if (state.failed())
        return std::nullopt;
    return values;
}

double mean(const Values &values)
{
    double sum = 0.0;
    for (double v : values)
        sum += v;
    return sum / double(values.size());
}

bool anyNaN(const Values &values)
{
    return std::any_of(values.begin(), values.end(), [](double v) { return std::isnan(v); });
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

void registerAggregateFunctions(FunctionSet &set)
{
    add(set, names({u"sum", u"∑"}), [](EvaluationState &state) {
        const std::optional<Values> values = evaluateAll(state, 0);
        double sum = 0.0;
        for (double v : values.value_or(Values()))
            sum += v;
        return values ? sum : kNaN;
    });
    add(set, names({u"product", u"∏"}), [](EvaluationState &state) {
        const std::optional<Values> values = evaluateAll(state, 0);
        double product = 1.0;
        for (double v : values.value_or(Values()))
            product *= v;
        return values ? product : kNaN;
    });
    add(set, names({u"count"}), [](EvaluationState &state) {
        const std::optional<Values> values = evaluateAll(state, 0);
        return values ? double(values->size()) : kNaN;
    });
    // A NaN among the values makes the extreme NaN too, rather than being skipped.
    add(set, names({u"min"}), [](EvaluationState &state) {
        const std::optional<Values> values = evaluateAll(state, 1);
        if (!values)
            return kNaN;
        return anyNaN(*values) ? kNaN : *std::min_element(values->begin(), values->end());
    });
    add(set, names({u"max"}), [](EvaluationState &state) {
        const std::optional<Values> values = evaluateAll(state, 1);
        if (!values)
            return kNaN;
        return anyNaN(*values) ? kNaN : *std::max_element(values->begin(), values->end());
    });
    add(set, names({u"average", u"avg", u"mean"}), [](EvaluationState &state) {
        const std::optional<Values> values = evaluateAll(state, 1);
        return values ? mean(*values) : kNaN;
    });
    add(set, names({u"median"}), [](EvaluationState &state) {
        std::optional<Values> values = evaluateAll(state, 1);
        if (!values)
            return kNaN;
        if (anyNaN(*values))
            return kNaN;
        std::sort(values->begin(), values->end());
        const qsizetype middle = values->size() / 2;
        return values->size() % 2 == 1 ? (*values)[middle] : ((*values)[middle - 1] + (*values)[middle]) / 2.0;
    });
    // The sample standard deviation: the values are taken as a sample, which is why one
    // value alone has none.
    add(set, names({u"stddev"}), [](EvaluationState &state) {
        const std::optional<Values> values = evaluateAll(state, 2);
        if (!values)
            return kNaN;
        const double average = mean(*values);
        double squares = 0.0;
        for (double v : *values)
            squares += (v - average) * (v - average);
        return std::sqrt(squares / double(values->size() - 1));
    });
}

} // namespace scrivlet::math::builtins
