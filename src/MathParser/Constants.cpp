#include "MathParser/BuiltInFunctions.h"

#include <numbers>

namespace scrivlet::math::builtins {

// Constants are functions without arguments, so "pi" and "pi()" are the same.
void registerConstants(FunctionSet &set)
{
    addConstant(set, names({u"true", u"yes"}), 1.0);
    addConstant(set, names({u"false", u"no"}), 0.0);
    addConstant(set, names({u"phi", u"ϕ"}), 1.6180339887498948);
    addConstant(set, names({u"pi", u"π", u"tau_2"}), std::numbers::pi);
    addConstant(set, names({u"pi_2", u"tau_4"}), std::numbers::pi / 2);
    addConstant(set, names({u"pi_4", u"tau_8"}), std::numbers::pi / 4);
    addConstant(set, names({u"tau", u"τ"}), 2 * std::numbers::pi);
    addConstant(set, names({u"sqrt2"}), std::numbers::sqrt2);
    addConstant(set, names({u"e"}), std::numbers::e);
    addConstant(set, names({u"log2e"}), std::numbers::log2e);
    addConstant(set, names({u"log10e"}), std::numbers::log10e);
    addConstant(set, names({u"ln2"}), std::numbers::ln2);
    addConstant(set, names({u"ln10"}), std::numbers::ln10);
}

} // namespace scrivlet::math::builtins
