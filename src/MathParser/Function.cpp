#include "MathParser/Function.h"

#include "MathParser/EvaluationState.h"

namespace scrivlet::math {

Function::Function(QStringList names, NativeFunction native)
    : m_names(std::move(names)), m_evaluator([native](EvaluationState &state) { return native(state); }),
      m_native(native)
{
}

double NativeFunction::operator()(EvaluationState &state) const
{
    switch (shape) {
    case Shape::constant:
        if (!state.requireArgumentCount(0, 0))
            return 0.0;
        return constant;
    case Shape::unary: {
        if (!state.requireArgumentCount(1, 1))
            return 0.0;
        const double x = state.evaluateArgument(0);
        return state.failed() ? x : unary(state, x);
    }
    case Shape::binary: {
        if (!state.requireArgumentCount(2, 2))
            return 0.0;
        const double x = state.evaluateArgument(0);
        const double y = state.evaluateArgument(1);
        return state.failed() ? x : binary(state, x, y);
    }
    case Shape::variadic:
        return variadic(state);
    case Shape::none:
        break;
    }
    qFatal("Implementation flaw: a native function without a body");
}

} // namespace scrivlet::math
