#include "MathParser/EvaluationState.h"

#include <limits>

namespace scrivlet::math {

const Substitutions &EvaluationState::substitutions() const
{
    Q_ASSERT(m_run);
    return m_run->substitutions;
}

Expression EvaluationState::expression() const
{
    Q_ASSERT(m_run);
    return m_run->root.atNode(m_nodeIndex);
}

CharacterRange EvaluationState::expressionRange() const
{
    return m_node ? m_node->range : CharacterRange();
}

qsizetype EvaluationState::argumentCount() const
{
    Q_ASSERT(m_node);
    return m_node->argumentCount;
}

Expression EvaluationState::argument(qsizetype index) const
{
    return expression().argument(index);
}

std::vector<Expression> EvaluationState::arguments() const
{
    return expression().arguments();
}

double EvaluationState::evaluateArgument(qsizetype index)
{
    Q_ASSERT(m_run && index >= 0 && index < m_node->argumentCount);
    return m_evaluator.evaluateNode(*m_run, m_run->root.tree().argumentIndex(*m_node, index));
}

double EvaluationState::evaluate(const Expression &expression)
{
    Q_ASSERT(m_run && &expression.tree() == &m_run->root.tree());
    return m_evaluator.evaluateNode(*m_run, expression.index());
}

bool EvaluationState::requireArgumentCount(qsizetype minimum, qsizetype maximum)
{
    const qsizetype count = argumentCount();
    if (count < minimum || (maximum >= 0 && count > maximum)) {
        fail(MathParserError::Kind::invalidArguments);
        return false;
    }
    return true;
}

double EvaluationState::fail(MathParserError::Kind kind)
{
    return fail(MathParserError(kind, expressionRange()));
}

double EvaluationState::fail(MathParserError error)
{
    if (!m_error)
        m_error = std::move(error);
    return std::numeric_limits<double>::quiet_NaN();
}

} // namespace scrivlet::math
