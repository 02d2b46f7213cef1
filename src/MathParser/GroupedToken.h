#pragma once

#include "MathParser/CharacterRange.h"
#include "MathParser/Operator.h"

#include <QString>

#include <vector>

namespace scrivlet::math {

// A resolved token with parentheses and calls folded in: a number, a variable, an
// operator, a call with one group per argument, or a bracketed group of tokens.
class GroupedToken {
public:
    enum class Kind : quint8 { number, variable, operatorSymbol, function, group };

    static GroupedToken number(double value, CharacterRange range) { return {Kind::number, value, {}, nullptr, range}; }
    static GroupedToken variable(QString name, CharacterRange range)
    {
        return {Kind::variable, 0.0, std::move(name), nullptr, range};
    }
    static GroupedToken operatorToken(const Operator &op, CharacterRange range)
    {
        return {Kind::operatorSymbol, 0.0, {}, &op, range};
    }
    static GroupedToken function(QString name, std::vector<GroupedToken> arguments, CharacterRange range)
    {
        GroupedToken token{Kind::function, 0.0, std::move(name), nullptr, range};
        token.m_children = std::move(arguments);
        return token;
    }
    static GroupedToken group(std::vector<GroupedToken> tokens, CharacterRange range)
    {
        GroupedToken token{Kind::group, 0.0, {}, nullptr, range};
        token.m_children = std::move(tokens);
        return token;
    }

    Kind kind() const { return m_kind; }
    double numberValue() const { return m_numberValue; }
    const QString &name() const { return m_name; }
    const Operator *op() const { return m_operator; }
    // A function's arguments (each a group) or a group's tokens.
    const std::vector<GroupedToken> &children() const { return m_children; }
    CharacterRange range() const { return m_range; }

private:
    GroupedToken(Kind kind, double numberValue, QString name, const Operator *op, CharacterRange range)
        : m_kind(kind), m_numberValue(numberValue), m_name(std::move(name)), m_operator(op), m_range(range)
    {
    }

    Kind m_kind;
    double m_numberValue;
    QString m_name;
    const Operator *m_operator;
    std::vector<GroupedToken> m_children;
    CharacterRange m_range;
};

} // namespace scrivlet::math
