#include "MathParser/BuiltInFunctions.h"

#include "MathParser/EvaluationState.h"

#include <numbers>

namespace scrivlet::math::builtins {

namespace {

bool inDegrees(const EvaluationState &state)
{
    return state.evaluator().angleMeasurementMode() == Evaluator::AngleMode::degrees;
}

// An angle argument in the evaluator's angle mode, in radians.
double angleIn(const EvaluationState &state, double x)
{
    return inDegrees(state) ? x / 180.0 * std::numbers::pi : x;
}

// An angle result in radians, in the evaluator's angle mode.
double angleOut(const EvaluationState &state, double radians)
{
    return inDegrees(state) ? radians / std::numbers::pi * 180.0 : radians;
}

double reciprocal(EvaluationState &state, double denominator)
{
    if (denominator == 0.0)
        return state.fail(MathParserError::Kind::divideByZero);
    return 1.0 / denominator;
}

} // namespace

void registerTrigonometricFunctions(FunctionSet &set)
{
    using S = EvaluationState;

    addUnary(set, names({u"sin"}), [](S &s, double x) { return std::sin(angleIn(s, x)); });
    addUnary(set, names({u"cos"}), [](S &s, double x) { return std::cos(angleIn(s, x)); });
    addUnary(set, names({u"tan"}), [](S &s, double x) { return std::tan(angleIn(s, x)); });
    addUnary(set, names({u"asin", u"sin⁻¹"}), [](S &s, double x) { return angleOut(s, std::asin(x)); });
    addUnary(set, names({u"acos", u"cos⁻¹"}), [](S &s, double x) { return angleOut(s, std::acos(x)); });
    addUnary(set, names({u"atan", u"tan⁻¹"}), [](S &s, double x) { return angleOut(s, std::atan(x)); });
    addBinary(set, names({u"atan2"}), [](S &s, double y, double x) { return angleOut(s, std::atan2(y, x)); });

    addUnary(set, names({u"csc"}), [](S &s, double x) { return reciprocal(s, std::sin(angleIn(s, x))); });
    addUnary(set, names({u"sec"}), [](S &s, double x) { return reciprocal(s, std::cos(angleIn(s, x))); });
    addUnary(set, names({u"cotan"}), [](S &s, double x) { return reciprocal(s, std::tan(angleIn(s, x))); });
    addUnary(set, names({u"acsc", u"csc⁻¹"}), [](S &s, double x) { return angleOut(s, std::asin(1.0 / x)); });
    addUnary(set, names({u"asec", u"sec⁻¹"}), [](S &s, double x) { return angleOut(s, std::acos(1.0 / x)); });
    addUnary(set, names({u"acotan", u"cotan⁻¹"}), [](S &s, double x) { return angleOut(s, std::atan(1.0 / x)); });

    // Hyperbolic functions take no angle: the angle mode leaves them alone.
    addUnary(set, names({u"sinh"}), [](S &, double x) { return std::sinh(x); });
    addUnary(set, names({u"cosh"}), [](S &, double x) { return std::cosh(x); });
    addUnary(set, names({u"tanh"}), [](S &, double x) { return std::tanh(x); });
    addUnary(set, names({u"asinh", u"sinh⁻¹"}), [](S &, double x) { return std::asinh(x); });
    addUnary(set, names({u"acosh", u"cosh⁻¹"}), [](S &, double x) { return std::acosh(x); });
    addUnary(set, names({u"atanh", u"tanh⁻¹"}), [](S &, double x) { return std::atanh(x); });
    addUnary(set, names({u"csch"}), [](S &s, double x) { return reciprocal(s, std::sinh(x)); });
    addUnary(set, names({u"sech"}), [](S &s, double x) { return reciprocal(s, std::cosh(x)); });
    addUnary(set, names({u"cotanh"}), [](S &s, double x) { return reciprocal(s, std::tanh(x)); });
    addUnary(set, names({u"acsch", u"csch⁻¹"}), [](S &, double x) { return std::asinh(1.0 / x); });
    addUnary(set, names({u"asech", u"sech⁻¹"}), [](S &, double x) { return std::acosh(1.0 / x); });
    addUnary(set, names({u"acotanh", u"cotanh⁻¹"}), [](S &, double x) { return std::atanh(1.0 / x); });

    // The versed functions of navigation tables, all of an angle.
    addUnary(set, names({u"versin", u"vers", u"ver"}), [](S &s, double x) { return 1.0 - std::cos(angleIn(s, x)); });
    addUnary(set, names({u"vercosin", u"vercos"}), [](S &s, double x) { return 1.0 + std::cos(angleIn(s, x)); });
    addUnary(set, names({u"coversin", u"cvs"}), [](S &s, double x) { return 1.0 - std::sin(angleIn(s, x)); });
    addUnary(set, names({u"covercosin"}), [](S &s, double x) { return 1.0 + std::sin(angleIn(s, x)); });
    addUnary(set, names({u"haversin"}), [](S &s, double x) { return (1.0 - std::cos(angleIn(s, x))) / 2.0; });
    addUnary(set, names({u"havercosin"}), [](S &s, double x) { return (1.0 + std::cos(angleIn(s, x))) / 2.0; });
    addUnary(set, names({u"hacoversin"}), [](S &s, double x) { return (1.0 - std::sin(angleIn(s, x))) / 2.0; });
    addUnary(set, names({u"hacovercosin"}), [](S &s, double x) { return (1.0 + std::sin(angleIn(s, x))) / 2.0; });
    addUnary(set, names({u"exsec"}), [](S &s, double x) {
        const double secant = reciprocal(s, std::cos(angleIn(s, x)));
        return s.failed() ? secant : secant - 1.0;
    });
    addUnary(set, names({u"excsc"}), [](S &s, double x) {
        const double cosecant = reciprocal(s, std::sin(angleIn(s, x)));
        return s.failed() ? cosecant : cosecant - 1.0;
    });
    addUnary(set, names({u"crd", u"chord"}), [](S &s, double x) { return 2.0 * std::sin(angleIn(s, x) / 2.0); });

    // "90°" is a right angle in either mode: in degrees the conversion is the identity.
    addUnary(set, names({u"dtor"}), [](S &s, double x) { return inDegrees(s) ? x : x / 180.0 * std::numbers::pi; });
    addUnary(set, names({u"rtod"}), [](S &, double x) { return x / std::numbers::pi * 180.0; });
}

} // namespace scrivlet::math::builtins
