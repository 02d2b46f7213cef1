#pragma once

#include "MathParser/NativeFunction.h"

#include <QStringList>

#include <functional>
#include <utility>

namespace scrivlet::math {

class EvaluationState;

// Computes a function's value. It evaluates its own arguments through the state, so a
// function such as "if" can leave the branch it does not take alone; it reports failure
// through the state as well.
using FunctionEvaluator = std::function<double(EvaluationState &state)>;

// A named function of the evaluator; all names are aliases of one another.
class Function {
public:
    Function(QStringList names, FunctionEvaluator evaluator)
        : m_names(std::move(names)), m_evaluator(std::move(evaluator))
    {
    }
    // A built-in: callable directly, and still available as a FunctionEvaluator for code
    // that wraps it.
    Function(QStringList names, NativeFunction native);

    const QStringList &names() const { return m_names; }
    const FunctionEvaluator &evaluator() const { return m_evaluator; }
    // The direct form of a built-in; Shape::none for functions given as a FunctionEvaluator.
    const NativeFunction &native() const { return m_native; }
    double operator()(EvaluationState &state) const
    {
        return m_native.shape != NativeFunction::Shape::none ? m_native(state) : m_evaluator(state);
    }

private:
    QStringList m_names;
    FunctionEvaluator m_evaluator;
    NativeFunction m_native;
};

} // namespace scrivlet::math
