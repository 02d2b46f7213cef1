#include "MathParser/Expression.h"

#include "MathParser/ExpressionTree.h"

namespace scrivlet::math {

Expression::Expression(std::shared_ptr<const ExpressionTree> tree, qint32 index)
    : m_tree(std::move(tree)), m_index(index)
{
}

Expression Expression::makeNumber(double value, CharacterRange range)
{
    auto tree = std::make_shared<ExpressionTree>();
    const qint32 index = tree->addNumber(value, range);
    return Expression(std::move(tree), index);
}

Expression Expression::makeVariable(const QString &name, CharacterRange range)
{
    auto tree = std::make_shared<ExpressionTree>();
    const qint32 index = tree->addVariable(name, range);
    return Expression(std::move(tree), index);
}

Expression Expression::makeFunction(const QString &name, const std::vector<Expression> &arguments, CharacterRange range)
{
    auto tree = std::make_shared<ExpressionTree>();
    std::vector<qint32> indices;
    indices.reserve(arguments.size());
    for (const Expression &argument : arguments)
        indices.push_back(tree->addCopy(argument.tree(), argument.index()));
    const qint32 index = tree->addFunction(name, indices, range);
    return Expression(std::move(tree), index);
}

Expression::Kind Expression::kind() const
{
    return m_tree->node(m_index).kind;
}

double Expression::numberValue() const
{
    return m_tree->node(m_index).number;
}

const QString &Expression::name() const
{
    return m_tree->name(m_tree->node(m_index));
}

qsizetype Expression::argumentCount() const
{
    return m_tree->node(m_index).argumentCount;
}

Expression Expression::argument(qsizetype index) const
{
    const ExpressionTree::Node &node = m_tree->node(m_index);
    Q_ASSERT(index >= 0 && index < node.argumentCount);
    return Expression(m_tree, m_tree->argumentIndex(node, index));
}

std::vector<Expression> Expression::arguments() const
{
    std::vector<Expression> result;
    const qsizetype count = argumentCount();
    result.reserve(std::size_t(count));
    for (qsizetype i = 0; i < count; ++i)
        result.push_back(argument(i));
    return result;
}

CharacterRange Expression::range() const
{
    return m_tree->node(m_index).range;
}

std::optional<Expression> Expression::parent() const
{
    const qint32 parent = m_tree->node(m_index).parent;
    if (parent < 0)
        return std::nullopt;
    return Expression(m_tree, parent);
}

int Expression::height() const
{
    return m_tree->node(m_index).height;
}

QString Expression::toString() const
{
    return m_tree->toString(m_index);
}

} // namespace scrivlet::math
