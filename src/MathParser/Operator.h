#pragma once

#include "MathParser/BuiltInOperator.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace scrivlet::math {

// One operator of an expression: the evaluator function it stands for, how many operands
// it takes, on which side, and how tightly it binds. A unary operator with left
// associativity stands behind its operand (postfix, "3!"); with right associativity before
// it (prefix, "-3").
class Operator {
public:
    enum class Arity : quint8 { unary, binary };
    enum class Associativity : quint8 { left, right };

    Operator(QString function, Arity arity, Associativity associativity, QStringList tokens,
             std::optional<int> precedence = std::nullopt,
             std::optional<BuiltInOperator> builtInOperator = std::nullopt);

    const QString &function() const { return m_function; }
    Arity arity() const { return m_arity; }
    Associativity associativity() const { return m_associativity; }
    const QStringList &tokens() const { return m_tokens; }
    std::optional<int> precedence() const { return m_precedence; }
    std::optional<BuiltInOperator> builtInOperator() const { return m_builtInOperator; }

    bool isBinary() const { return m_arity == Arity::binary; }
    bool isPrefix() const { return m_arity == Arity::unary && m_associativity == Associativity::right; }
    bool isPostfix() const { return m_arity == Arity::unary && m_associativity == Associativity::left; }
    // How the operator prints in an expression tree.
    QString displayToken() const;
    // The function's number in BuiltInFunctionTable, looked up once here rather than for
    // every operator node evaluated; BuiltInFunctionTable::kNone when it is no built-in.
    qint16 builtInFunction() const { return m_builtInFunction; }

    void setPrecedence(std::optional<int> precedence) { m_precedence = precedence; }
    void addTokens(const QStringList &tokens);
    void removeAllTokens() { m_tokens.clear(); }

    // Operators are the same thing when they call the same function in the same way; the
    // fraction "+" and the ordinary "+" are one operator at two strengths.
    bool operator==(const Operator &other) const
    {
        return m_function == other.m_function && m_arity == other.m_arity && m_associativity == other.m_associativity;
    }

private:
    QString m_function;
    Arity m_arity;
    Associativity m_associativity;
    QStringList m_tokens;
    std::optional<int> m_precedence;
    std::optional<BuiltInOperator> m_builtInOperator;
    qint16 m_builtInFunction;
};

} // namespace scrivlet::math
