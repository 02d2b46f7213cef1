#include "MathParser/Operator.h"

#include "MathParser/BuiltInFunctionTable.h"

namespace scrivlet::math {

Operator::Operator(QString function, Arity arity, Associativity associativity, QStringList tokens,
                   std::optional<int> precedence, std::optional<BuiltInOperator> builtInOperator)
    : m_function(std::move(function)), m_arity(arity), m_associativity(associativity), m_tokens(std::move(tokens)),
      m_precedence(precedence), m_builtInOperator(builtInOperator),
      m_builtInFunction(BuiltInFunctionTable::instance().find(m_function))
{
}

QString Operator::displayToken() const
{
    return m_tokens.isEmpty() ? m_function : m_tokens.first();
}

void Operator::addTokens(const QStringList &tokens)
{
    for (const QString &token : tokens) {
        if (!m_tokens.contains(token))
            m_tokens.append(token);
    }
}

} // namespace scrivlet::math
