#include "MathParser/BuiltInFunctions.h"

#include "MathParser/CaseFolding.h"
#include "MathParser/EvaluationState.h"

#include <limits>
#include <random>

namespace scrivlet::math::builtins {

namespace {

bool isInteger(double x)
{
    return std::isfinite(x) && std::trunc(x) == x;
}

double doubleFactorial(EvaluationState &state, double x)
{
    if (!isInteger(x) || x < 1)
        return state.fail(MathParserError::Kind::invalidArguments);
    if (std::fmod(x, 2.0) == 0.0)
        return std::pow(2.0, x / 2) * std::tgamma(x / 2 + 1);
    const double h = (x + 1) / 2;
    const double divisor = std::pow(2.0, h) * std::tgamma(h + 1);
    if (divisor == 0.0)
        return state.fail(MathParserError::Kind::divideByZero);
    return std::tgamma(2 * h + 1) / divisor;
}

// "100 + 10%" is 110: a percentage added to or taken from a number is a share of it.
double percent(EvaluationState &state)
{
    if (!state.requireArgumentCount(1, 1))
        return 0.0;
    const double x = state.evaluateArgument(0);
    const Expression self = state.expression();
    if (const std::optional<Expression> parent = self.parent()) {
        const bool addsOrSubtracts =
            casefolding::equal(parent->name(), u"add") || casefolding::equal(parent->name(), u"subtract");
        if (addsOrSubtracts && parent->argumentCount() == 2 && parent->argument(1).index() == self.index()) {
            const double base = state.evaluate(parent->argument(0));
            return base * x / 100;
        }
    }
    return x / 100;
}

double uniformRandom()
{
    thread_local std::mt19937_64 generator{std::random_device{}()};
    return std::uniform_real_distribution<double>(0.0, 1.0)(generator);
}

double random(EvaluationState &state)
{
    if (!state.requireArgumentCount(0, 2))
        return 0.0;
    // The bounds default to the smallest positive and the largest finite double.
    double lower = std::numeric_limits<double>::min();
    double upper = std::numeric_limits<double>::max();
    if (state.argumentCount() >= 1)
        lower = state.evaluateArgument(0);
    if (state.argumentCount() == 2)
        upper = state.evaluateArgument(1);
    if (state.failed())
        return lower;
    if (!(upper > lower))
        return state.fail(MathParserError::Kind::invalidArguments);
    return lower + std::fmod(uniformRandom(), upper - lower);
}

} // namespace

void registerArithmeticFunctions(FunctionSet &set)
{
    addBinary(set, names({u"add"}), [](EvaluationState &, double x, double y) { return x + y; });
    addBinary(set, names({u"subtract"}), [](EvaluationState &, double x, double y) { return x - y; });
    addBinary(set, names({u"multiply", u"implicitMultiply"}),
              [](EvaluationState &, double x, double y) { return x * y; });
    addBinary(set, names({u"divide"}), [](EvaluationState &state, double x, double y) {
        if (y == 0.0)
            return state.fail(MathParserError::Kind::divideByZero);
        return x / y;
    });
    // fmod, not a check: "3 % 0" is NaN, a value like any other.
    addBinary(set, names({u"mod", u"modulo"}), [](EvaluationState &, double x, double y) { return std::fmod(x, y); });
    addUnary(set, names({u"negate"}), [](EvaluationState &, double x) { return -x; });
    // The prefix "+" of "+5" is an operator like "-" and needs its function too.
    addUnary(set, names({u"positive"}), [](EvaluationState &, double x) { return x; });
    addUnary(set, names({u"factorial"}), [](EvaluationState &, double x) { return std::tgamma(x + 1); });
    addUnary(set, names({u"factorial2"}), doubleFactorial);
    addBinary(set, names({u"pow"}), [](EvaluationState &, double x, double y) { return std::pow(x, y); });
    addUnary(set, names({u"sqrt"}), [](EvaluationState &, double x) { return std::sqrt(x); });
    addUnary(set, names({u"cuberoot"}), [](EvaluationState &, double x) { return std::pow(x, 1.0 / 3.0); });
    addBinary(set, names({u"nthroot"}), [](EvaluationState &, double x, double y) {
        // An odd root of a negative number is real: nthroot(-8, 3) is -2.
        if (x < 0 && isInteger(y) && std::fmod(y, 2.0) != 0.0)
            return -std::pow(-x, 1.0 / y);
        return std::pow(x, 1.0 / y);
    });
    add(set, names({u"random"}), random);
    addUnary(set, names({u"abs"}), [](EvaluationState &, double x) { return std::fabs(x); });
    add(set, names({u"percent"}), percent);
    addUnary(set, names({u"ceil"}), [](EvaluationState &, double x) { return std::ceil(x); });
    // Both names round down, towards minus infinity.
    addUnary(set, names({u"floor", u"trunc"}), [](EvaluationState &, double x) { return std::floor(x); });
}

void registerExponentialFunctions(FunctionSet &set)
{
    addUnary(set, names({u"log"}), [](EvaluationState &, double x) { return std::log10(x); });
    addUnary(set, names({u"ln"}), [](EvaluationState &, double x) { return std::log(x); });
    addUnary(set, names({u"log2"}), [](EvaluationState &, double x) { return std::log2(x); });
    addUnary(set, names({u"exp"}), [](EvaluationState &, double x) { return std::exp(x); });
}

} // namespace scrivlet::math::builtins
