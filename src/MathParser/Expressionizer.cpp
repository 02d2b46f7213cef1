#include "MathParser/Expressionizer.h"

#include "MathParser/ExpressionTree.h"
#include "MathParser/MathParserError.h"
#include "MathParser/OperatorReduction.h"
#include "MathParser/ParserLimits.h"
#include "MathParser/TokenGrouper.h"
#include "MathParser/TokenResolver.h"
#include "MathParser/Tokenizer.h"

#include <QtGlobal>

namespace scrivlet::math {

MathResult<Expression> Expressionizer::parse(const QString &text, const Configuration &configuration)
{
    // The stages throw inside the engine; nothing of a failed parse survives it.
    try {
        const Tokenizer tokenizer(text, configuration);
        const TokenResolver resolver(tokenizer, TokenResolverOptions::fromConfiguration(configuration));
        const TokenGrouper grouper(resolver);
        return Expressionizer(grouper).expression();
    } catch (MathParserError &error) {
        return std::move(error);
    }
}

Expression Expressionizer::expression() const
{
    const GroupedToken root = m_grouper.group();
    auto tree = std::make_shared<ExpressionTree>();
    tree->reserve(qsizetype(root.children().size()) * 2);
    const qint32 index = build(*tree, root.children(), root.range());
    return Expression(std::move(tree), index);
}

qint32 Expressionizer::build(ExpressionTree &tree, const std::vector<GroupedToken> &sequence,
                             CharacterRange range) const
{
    // A lone operand, the common case inside calls, needs no reduction.
    if (sequence.size() == 1 && sequence.front().kind() != GroupedToken::Kind::operatorSymbol)
        return buildElement(tree, sequence.front());

    std::vector<OperatorReduction::Element> elements;
    elements.reserve(sequence.size());
    for (const GroupedToken &token : sequence) {
        OperatorReduction::Element element;
        element.range = token.range();
        if (token.kind() == GroupedToken::Kind::operatorSymbol)
            element.op = token.op();
        else
            element.node = buildElement(tree, token);
        elements.push_back(element);
    }
    std::vector<OperatorReduction::Pending> pending;
    pending.reserve(elements.size() / 2 + 1);
    return OperatorReduction(tree, elements, pending).run(range);
}

qint32 Expressionizer::buildElement(ExpressionTree &tree, const GroupedToken &token) const
{
    switch (token.kind()) {
    case GroupedToken::Kind::number:
        return tree.addNumber(token.numberValue(), token.range());
    case GroupedToken::Kind::variable:
        return tree.addVariable(token.name(), token.range());
    case GroupedToken::Kind::group:
        return build(tree, token.children(), token.range());
    case GroupedToken::Kind::function: {
        std::vector<qint32> arguments;
        arguments.reserve(token.children().size());
        for (const GroupedToken &argument : token.children())
            arguments.push_back(build(tree, argument.children(), argument.range()));
        const qint32 node = tree.addFunction(token.name(), arguments, token.range());
        if (tree.node(node).height > limits::kMaxExpressionHeight)
            throw MathParserError(MathParserError::Kind::invalidFormat, token.range());
        return node;
    }
    case GroupedToken::Kind::operatorSymbol:
        break;
    }
    qFatal("Implementation flaw: an operator is not an operand");
}

} // namespace scrivlet::math
