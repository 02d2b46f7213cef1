#pragma once

#include "MathParser/CharacterRange.h"
#include "MathParser/Operator.h"

#include <QString>

namespace scrivlet::math {

// A token with its meaning decided: a number with its value, a variable or function name,
// or one particular operator. Operators point into the configuration's operator set, which
// outlives the parse.
class ResolvedToken {
public:
    enum class Kind : quint8 { number, variable, identifier, operatorSymbol };

    static ResolvedToken number(double value, CharacterRange range)
    {
        return {Kind::number, value, {}, nullptr, range};
    }
    static ResolvedToken variable(QString name, CharacterRange range)
    {
        return {Kind::variable, 0.0, std::move(name), nullptr, range};
    }
    static ResolvedToken identifier(QString name, CharacterRange range)
    {
        return {Kind::identifier, 0.0, std::move(name), nullptr, range};
    }
    static ResolvedToken operatorToken(const Operator &op, CharacterRange range)
    {
        return {Kind::operatorSymbol, 0.0, {}, &op, range};
    }

    Kind kind() const { return m_kind; }
    bool isOperator() const { return m_kind == Kind::operatorSymbol; }
    double numberValue() const { return m_numberValue; }
    // The name of a variable or identifier; an operator's first token.
    QString string() const { return m_operator ? m_operator->displayToken() : m_string; }
    const QString &name() const { return m_string; }
    const Operator *op() const { return m_operator; }
    CharacterRange range() const { return m_range; }
    void setRange(CharacterRange range) { m_range = range; }

    bool isOperator(BuiltInOperator which) const { return m_operator && m_operator->builtInOperator() == which; }

private:
    ResolvedToken(Kind kind, double numberValue, QString string, const Operator *op, CharacterRange range)
        : m_kind(kind), m_numberValue(numberValue), m_string(std::move(string)), m_operator(op), m_range(range)
    {
    }

    Kind m_kind;
    double m_numberValue;
    QString m_string;
    const Operator *m_operator;
    CharacterRange m_range;
};

} // namespace scrivlet::math
