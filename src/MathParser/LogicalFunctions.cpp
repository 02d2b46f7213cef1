#include "MathParser/BuiltInFunctions.h"

#include "MathParser/EvaluationState.h"

#include <limits>

namespace scrivlet::math::builtins {

namespace {

// Bitwise operators work on whole numbers: the fraction is dropped, and values beyond the
// 64-bit range stick at its ends instead of wrapping.
qint64 toInteger(double x)
{
    constexpr double kLimit = 9223372036854775808.0; // 2^63
    if (x >= kLimit)
        return std::numeric_limits<qint64>::max();
    if (x < -kLimit)
        return std::numeric_limits<qint64>::min();
    return qint64(x);
}

double bitwise(double x, double y, qint64 (*operation)(qint64, qint64))
{
    if (std::isnan(x) || std::isnan(y))
        return std::numeric_limits<double>::quiet_NaN();
    return double(operation(toInteger(x), toInteger(y)));
}

qint64 shiftLeft(qint64 value, qint64 count)
{
    if (count < 0)
        return count <= -64 ? (value < 0 ? -1 : 0) : value >> -count;
    return count >= 64 ? 0 : qint64(quint64(value) << count);
}

qint64 shiftRight(qint64 value, qint64 count)
{
    if (count < 0)
        return shiftLeft(value, count == std::numeric_limits<qint64>::min() ? 64 : -count);
    return count >= 64 ? (value < 0 ? -1 : 0) : value >> count;
}

double truth(bool value)
{
    return value ? 1.0 : 0.0;
}

} // namespace

void registerLogicalFunctions(FunctionSet &set)
{
    using S = EvaluationState;

    addBinary(set, names({u"and"}),
              [](S &, double x, double y) { return bitwise(x, y, [](qint64 a, qint64 b) { return a & b; }); });
    addBinary(set, names({u"or"}),
              [](S &, double x, double y) { return bitwise(x, y, [](qint64 a, qint64 b) { return a | b; }); });
    addBinary(set, names({u"xor"}),
              [](S &, double x, double y) { return bitwise(x, y, [](qint64 a, qint64 b) { return a ^ b; }); });
    addBinary(set, names({u"lshift"}), [](S &, double x, double y) { return bitwise(x, y, shiftLeft); });
    addBinary(set, names({u"rshift"}), [](S &, double x, double y) { return bitwise(x, y, shiftRight); });
    addUnary(set, names({u"not"}), [](S &, double x) { return std::isnan(x) ? x : double(~toInteger(x)); });

    addBinary(set, names({u"l_and"}), [](S &, double x, double y) { return truth(x != 0.0 && y != 0.0); });
    addBinary(set, names({u"l_or"}), [](S &, double x, double y) { return truth(x != 0.0 || y != 0.0); });
    addUnary(set, names({u"l_not"}), [](S &, double x) { return truth(x == 0.0); });
    addBinary(set, names({u"l_eq"}), [](S &, double x, double y) { return truth(x == y); });
    addBinary(set, names({u"l_neq"}), [](S &, double x, double y) { return truth(x != y); });
    addBinary(set, names({u"l_lt"}), [](S &, double x, double y) { return truth(x < y); });
    addBinary(set, names({u"l_gt"}), [](S &, double x, double y) { return truth(x > y); });
    addBinary(set, names({u"l_ltoe"}), [](S &, double x, double y) { return truth(x <= y); });
    addBinary(set, names({u"l_gtoe"}), [](S &, double x, double y) { return truth(x >= y); });

    // Only the branch taken is evaluated, so "if(0, 1/0, 2)" is 2.
    add(set, names({u"l_if", u"if"}), [](S &state) {
        if (!state.requireArgumentCount(2, 3))
            return 0.0;
        const double condition = state.evaluateArgument(0);
        if (state.failed())
            return condition;
        if (condition != 0.0)
            return state.evaluateArgument(1);
        return state.argumentCount() == 3 ? state.evaluateArgument(2) : 0.0;
    });
}

} // namespace scrivlet::math::builtins
