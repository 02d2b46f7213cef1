#include "MathParser/MathEngine.h"

#include "MathParser/ExpressionTree.h"
#include "MathParser/Expressionizer.h"
#include "MathParser/LineParser.h"

namespace scrivlet::math {

MathResult<Expression> parse(const QString &text, const Configuration &configuration)
{
    auto tree = std::make_shared<ExpressionTree>();
    if (const std::optional<qint32> root = LineParser::parse(text, configuration, *tree))
        return Expression(std::move(tree), *root);
    // A mistake or rare syntax: the staged parser reads the line and names the error.
    return Expressionizer::parse(text, configuration);
}

MathResult<double> evaluate(const Expression &expression, const Substitutions &substitutions,
                            const VariableResolver &variableResolver)
{
    return Evaluator::shared().evaluate(expression, substitutions, variableResolver);
}

MathResult<double> evaluate(const QString &text)
{
    return Evaluator::shared().evaluate(text);
}

QString errorKindName(MathParserError::Kind kind)
{
    return MathParserError::kindName(kind);
}

} // namespace scrivlet::math
