#pragma once

#include "MathParser/CharacterRange.h"
#include "MathParser/Evaluator.h"
#include "MathParser/Expression.h"
#include "MathParser/ExpressionTree.h"
#include "MathParser/MathParserError.h"

#include <optional>
#include <vector>

namespace scrivlet::math {

// What a function sees when it is called: its arguments, still unevaluated, and the means
// to evaluate them and to report failure. After a failure every further evaluation
// returns NaN at once, so a function need not check between its arguments.
class EvaluationState {
public:
    // Inline: the evaluator makes one for every function node.
    EvaluationState(const Evaluator &evaluator, Evaluator::Run &run, qint32 nodeIndex)
        : m_evaluator(evaluator), m_run(&run), m_node(&run.root.tree().node(nodeIndex)), m_nodeIndex(nodeIndex),
          m_error(run.error)
    {
    }
    // For a built-in of one or two arguments called with their values, as a line is computed
    // while it is read: there is no expression, only evaluator(), fail() and failed() apply.
    EvaluationState(const Evaluator &evaluator, std::optional<MathParserError> &error)
        : m_evaluator(evaluator), m_run(nullptr), m_node(nullptr), m_nodeIndex(-1), m_error(error)
    {
    }

    const Evaluator &evaluator() const { return m_evaluator; }
    const Substitutions &substitutions() const;
    // The function expression being evaluated.
    Expression expression() const;
    CharacterRange expressionRange() const;

    qsizetype argumentCount() const;
    Expression argument(qsizetype index) const;
    std::vector<Expression> arguments() const;
    double evaluateArgument(qsizetype index);
    // Evaluates any node of the same tree, e.g. a sibling of this expression.
    double evaluate(const Expression &expression);

    // False, after failing with invalidArguments, when the argument count is outside
    // [minimum, maximum]; a negative maximum means no upper bound.
    bool requireArgumentCount(qsizetype minimum, qsizetype maximum);
    // Records the error (the first one wins) and returns NaN for the caller to return.
    double fail(MathParserError::Kind kind);
    double fail(MathParserError error);
    bool failed() const { return m_error.has_value(); }

private:
    const Evaluator &m_evaluator;
    Evaluator::Run *m_run;
    const ExpressionTree::Node *m_node;
    qint32 m_nodeIndex;
    std::optional<MathParserError> &m_error;
};

} // namespace scrivlet::math
