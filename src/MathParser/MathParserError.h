#pragma once

#include "MathParser/CharacterRange.h"
#include "MathParser/Operator.h"

#include <QString>

#include <optional>

namespace scrivlet::math {

// Why an expression could not be parsed or evaluated, and where. Errors carry no wording:
// every caller turns them into "n/a" on the line, so the kind and range are all there is.
class MathParserError {
public:
    enum class Kind : quint8 {
        missingLeftOperand,
        missingRightOperand,
        unknownFunction,
        unknownVariable,
        cannotParseNumber,
        cannotParseHexNumber,
        cannotParseOctalNumber,
        cannotParseFractionalNumber,
        cannotParseExponent,
        cannotParseIdentifier,
        cannotParseVariable,
        cannotParseQuotedVariable,
        cannotParseOperator,
        zeroLengthVariable,
        cannotParseLocalizedNumber,
        unknownOperator,
        ambiguousOperator,
        missingOpenParenthesis,
        missingCloseParenthesis,
        emptyFunctionArgument,
        emptyGroup,
        invalidFormat,
        divideByZero,
        invalidArguments,
    };

    MathParserError(Kind kind, CharacterRange range) : m_kind(kind), m_range(range) {}
    // missingLeftOperand and missingRightOperand name the operator that lacks its operand.
    MathParserError(Kind kind, CharacterRange range, const Operator &op) : m_kind(kind), m_range(range), m_operator(op)
    {
    }
    // unknownFunction and unknownVariable name what could not be found.
    MathParserError(Kind kind, CharacterRange range, QString name)
        : m_kind(kind), m_range(range), m_name(std::move(name))
    {
    }

    Kind kind() const { return m_kind; }
    CharacterRange range() const { return m_range; }
    const std::optional<Operator> &op() const { return m_operator; }
    const QString &name() const { return m_name; }

    // The kind as it is spelled in code, e.g. "divideByZero", for logs and the command line.
    static QString kindName(Kind kind);

private:
    Kind m_kind;
    CharacterRange m_range;
    std::optional<Operator> m_operator;
    QString m_name;
};

} // namespace scrivlet::math
