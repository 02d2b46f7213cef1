#pragma once

#include "MathParser/Expression.h"
#include "MathParser/GroupedToken.h"
#include "MathParser/MathResult.h"

#include <memory>
#include <vector>

namespace scrivlet::math {

struct Configuration;
class ExpressionTree;
class TokenGrouper;

// Reduces grouped tokens to an expression tree, one OperatorReduction per sequence.
class Expressionizer {
public:
    explicit Expressionizer(const TokenGrouper &grouper) : m_grouper(grouper) {}

    // The staged parser: tokenize, resolve, group and build, each stage over the whole line,
    // so that the error a line reports is the one its earliest stage finds. LineParser reads
    // well-formed lines faster; this reads every line.
    static MathResult<Expression> parse(const QString &text, const Configuration &configuration);

    // Throws MathParserError.
    Expression expression() const;

private:
    qint32 build(ExpressionTree &tree, const std::vector<GroupedToken> &sequence, CharacterRange range) const;
    qint32 buildElement(ExpressionTree &tree, const GroupedToken &token) const;

    const TokenGrouper &m_grouper;
};

} // namespace scrivlet::math
