#include "MathParser/ExpressionTree.h"

#include "MathParser/BuiltInFunctionTable.h"
#include "MathParser/Operator.h"

#include <QLocale>

#include <type_traits>

namespace scrivlet::math {

static_assert(std::is_trivially_destructible_v<ExpressionTree::Node>,
              "clearing the tree for the next line must not visit its nodes");

void ExpressionTree::reserve(qsizetype nodeCount)
{
    m_nodes.reserve(std::size_t(nodeCount));
    m_argumentIndices.reserve(std::size_t(nodeCount));
}

void ExpressionTree::clear()
{
    m_nodes.clear();
    m_argumentIndices.clear();
    m_names.clear();
    // The operators of the last line are those of the next; a tree that has seen many
    // operator sets forgets them.
    constexpr std::size_t kOperatorsKept = 64;
    if (m_operators.size() > kOperatorsKept) {
        m_operators.clear();
        m_recentOperators.fill(-1);
    }
}

const QString &ExpressionTree::noName()
{
    static const QString none;
    return none;
}

namespace {

const QString &printedToken(const Operator &op)
{
    return op.tokens().isEmpty() ? op.function() : op.tokens().front();
}

} // namespace

qint32 ExpressionTree::findOperatorEntry(const Operator &op)
{
    // A tree meets a handful of distinct operators, so a short search beats a hash.
    for (std::size_t i = 0; i < m_operators.size(); ++i) {
        if (isEntryOf(m_operators[i], op))
            return qint32(i);
    }
    return addOperatorEntry(&op, op.function(), printedToken(op));
}

qint32 ExpressionTree::addOperatorEntry(const Operator *op, const QString &name, const QString &operatorToken)
{
    m_operators.push_back({op, name, operatorToken});
    return qint32(m_operators.size() - 1);
}

qint32 ExpressionTree::addVariable(QString name, CharacterRange range)
{
    const qint32 nameIndex = qint32(m_names.size());
    m_names.push_back(std::move(name));
    Node &node = m_nodes.emplace_back();
    node.kind = Expression::Kind::variable;
    node.name = nameIndex;
    node.range = range;
    return qint32(m_nodes.size() - 1);
}

qint32 ExpressionTree::addFunction(QString name, std::span<const qint32> arguments, CharacterRange range)
{
    const qint16 builtInFunction = BuiltInFunctionTable::instance().find(name);
    return addFunction(std::move(name), builtInFunction, arguments, range);
}

qint32 ExpressionTree::addFunction(QString name, qint16 builtInFunction, std::span<const qint32> arguments,
                                   CharacterRange range)
{
    const qint32 nameIndex = qint32(m_names.size());
    m_names.push_back(std::move(name));
    Node &node = appendFunctionNode(arguments, Notation::call);
    node.name = nameIndex;
    node.builtInFunction = builtInFunction;
    node.range = range;
    return qint32(m_nodes.size() - 1);
}

qint32 ExpressionTree::addOperator(const Operator &op, std::span<const qint32> operands, CharacterRange range)
{
    const Notation notation =
        op.isBinary() ? Notation::infix : (op.isPrefix() ? Notation::prefix : Notation::postfix);
    const qint32 entry = operatorEntry(op);
    Node &node = appendFunctionNode(operands, notation);
    node.name = entry;
    node.builtInFunction = op.builtInFunction();
    node.range = range;
    return qint32(m_nodes.size() - 1);
}

ExpressionTree::Node &ExpressionTree::appendFunctionNode(std::span<const qint32> arguments, Notation notation)
{
    const qint32 index = qint32(m_nodes.size());
    const qint32 firstArgument = qint32(m_argumentIndices.size());
    qint32 height = 0;
    for (const qint32 argument : arguments) {
        m_argumentIndices.push_back(argument);
        Node &child = m_nodes[std::size_t(argument)];
        child.parent = index;
        height = qMax(height, child.height);
    }
    Node &node = m_nodes.emplace_back();
    node.kind = Expression::Kind::function;
    node.notation = notation;
    node.firstArgument = firstArgument;
    node.argumentCount = qint32(arguments.size());
    node.height = height + 1;
    return node;
}

qint32 ExpressionTree::addCopy(const ExpressionTree &other, qint32 index)
{
    const Node &source = other.node(index);
    if (source.kind != Expression::Kind::function) {
        Node copy = source;
        copy.parent = -1;
        if (source.name != kNoName) {
            copy.name = qint32(m_names.size());
            m_names.push_back(other.name(source));
        }
        m_nodes.push_back(copy);
        return qint32(m_nodes.size() - 1);
    }
    std::vector<qint32> arguments;
    arguments.reserve(std::size_t(source.argumentCount));
    for (qint32 i = 0; i < source.argumentCount; ++i)
        arguments.push_back(addCopy(other, other.argumentIndex(source, i)));
    const Node &copied = other.node(index);
    qint32 name = kNoName;
    if (isOperator(copied)) {
        name = addOperatorEntry(nullptr, other.name(copied), other.operatorToken(copied));
    } else if (copied.name != kNoName) {
        name = qint32(m_names.size());
        m_names.push_back(other.name(copied));
    }
    Node &copy = appendFunctionNode(arguments, copied.notation);
    copy.name = name;
    copy.number = copied.number;
    copy.builtInFunction = copied.builtInFunction;
    copy.range = copied.range;
    return qint32(m_nodes.size() - 1);
}

QString ExpressionTree::toString(qint32 index) const
{
    const Node &n = node(index);
    switch (n.kind) {
    case Expression::Kind::number:
        return QLocale::c().toString(n.number, 'g', QLocale::FloatingPointShortest);
    case Expression::Kind::variable:
        return u'$' + name(n);
    case Expression::Kind::function:
        break;
    }

    // An operand that is itself an operator is bracketed, so the printed text shows the
    // tree's shape and not merely the order of the tokens.
    const auto operand = [this](qint32 child) {
        const Node &c = node(child);
        const QString text = toString(child);
        return c.notation == Notation::call ? text : u'(' + text + u')';
    };
    switch (n.notation) {
    case Notation::prefix:
        return operatorToken(n) + operand(argumentIndex(n, 0));
    case Notation::postfix:
        return operand(argumentIndex(n, 0)) + operatorToken(n);
    case Notation::infix:
        return operand(argumentIndex(n, 0)) + u' ' + operatorToken(n) + u' ' + operand(argumentIndex(n, 1));
    case Notation::call:
        break;
    }
    QString text = name(n) + u'(';
    for (qint32 i = 0; i < n.argumentCount; ++i) {
        if (i > 0)
            text += QStringLiteral(", ");
        text += toString(argumentIndex(n, i));
    }
    return text + u')';
}

} // namespace scrivlet::math
