#pragma once

#include "MathParser/Expression.h"
#include "MathParser/ExpressionTree.h"
#include "MathParser/Function.h"
#include "MathParser/FunctionSet.h"
#include "MathParser/MathResult.h"

#include <QHash>
#include <QString>

#include <functional>
#include <optional>

namespace scrivlet::math {

class EvaluationState;

// Values for variables of an expression, by name as written (without "$" or quotes).
using Substitutions = QHash<QString, double>;
// Asked for a variable that has no substitution; no value means unknownVariable.
using VariableResolver = std::function<std::optional<double>(const QString &name)>;
// Asked for a function by name; no value means the next place to look.
using FunctionResolver = std::function<std::optional<Function>(const QString &name)>;

// Walks an expression tree and computes its value. Infinity and NaN are values, not errors:
// it is number formatting that decides what a line shows for them.
class Evaluator {
public:
    enum class AngleMode : quint8 { radians, degrees };

    // The built-in functions, names compared without regard to case, radians.
    Evaluator();
    explicit Evaluator(FunctionSet functionSet);

    // The one evaluator the program uses: built once, only read afterwards.
    static const Evaluator &shared();

    const FunctionSet &functionSet() const { return m_functionSet; }
    FunctionSet &functionSet() { return m_functionSet; }
    AngleMode angleMeasurementMode() const { return m_angleMeasurementMode; }
    void setAngleMeasurementMode(AngleMode mode) { m_angleMeasurementMode = mode; }
    // Consulted before the function set, so a caller can replace a built-in.
    void setFunctionOverrider(FunctionResolver overrider) { m_functionOverrider = std::move(overrider); }
    // Consulted after the function set, for names it does not know.
    void setFunctionResolver(FunctionResolver resolver) { m_functionResolver = std::move(resolver); }
    void setVariableResolver(VariableResolver resolver) { m_variableResolver = std::move(resolver); }

    // variableResolver, when given, is asked before the evaluator's own resolver.
    MathResult<double> evaluate(const Expression &expression, const Substitutions &substitutions = {},
                                const VariableResolver &variableResolver = {}) const;
    // Parses with the shared configuration first.
    MathResult<double> evaluate(const QString &text, const Substitutions &substitutions = {}) const;

    // Engine internals, for a line computed while it is read: the function set whose
    // built-ins of one or two arguments this evaluator calls with their arguments' values,
    // found by their number in BuiltInFunctionTable. Null when it finds functions otherwise:
    // an overrider asks first, a case-sensitive set tells apart names the number does not.
    const FunctionSet *functionsCalledByNumber() const
    {
        return m_functionOverrider || m_functionSet.caseSensitive() ? nullptr : &m_functionSet;
    }

private:
    friend class EvaluationState;

    // What one call of evaluate() carries down the tree. The first error is kept and ends
    // the walk: every node evaluated after it returns at once.
    struct Run {
        const Expression &root;
        const Substitutions &substitutions;
        const VariableResolver &variableResolver;
        std::optional<MathParserError> error;
    };

    double evaluateNode(Run &run, qint32 index) const;
    double evaluateVariable(Run &run, qint32 index) const;
    double evaluateFunction(Run &run, qint32 index) const;
    double call(const Function &function, EvaluationState &state, Run &run, const ExpressionTree::Node &node) const;

    FunctionSet m_functionSet;
    AngleMode m_angleMeasurementMode = AngleMode::radians;
    FunctionResolver m_functionOverrider;
    FunctionResolver m_functionResolver;
    VariableResolver m_variableResolver;
};

} // namespace scrivlet::math
