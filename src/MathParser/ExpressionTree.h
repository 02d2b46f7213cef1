#pragma once

#include "MathParser/CharacterRange.h"
#include "MathParser/Expression.h"
#include "MathParser/Operator.h"

#include <QString>

#include <array>
#include <span>
#include <vector>

namespace scrivlet::math {

// The storage behind Expression handles: all nodes of one parse in one array, the
// argument lists of all function nodes in a second one, and the names in a third. Nodes
// are appended children first, so a node's arguments always have smaller indices than the
// node itself.
//
// Nodes are plain data that refer to their names by number, so clearing the tree for the
// next line never visits them. An operator's two names are kept once however often it is
// used, and stay from line to line while the operator does.
class ExpressionTree {
public:
    // How a function node was written, so that printing can put operators back.
    enum class Notation : quint8 { call, prefix, postfix, infix };

    static constexpr qint32 kNoName = -1;

    struct Node {
        Expression::Kind kind = Expression::Kind::number;
        Notation notation = Notation::call;
        double number = 0.0;
        // For an operator, its entry among the tree's operators; otherwise the position of
        // the variable's or function's name among its names. kNoName for a number.
        qint32 name = kNoName;
        qint32 firstArgument = 0;
        qint32 argumentCount = 0;
        qint32 parent = -1;
        qint32 height = 1;
        // The function's number in BuiltInFunctionTable, or BuiltInFunctionTable::kNone.
        qint16 builtInFunction = -1;
        CharacterRange range;
    };

    void reserve(qsizetype nodeCount);
    // Empties the tree and keeps its storage for the next line.
    void clear();
    qint32 addNumber(double value, CharacterRange range)
    {
        Node node;
        node.number = value;
        node.range = range;
        m_nodes.push_back(node);
        return qint32(m_nodes.size() - 1);
    }
    qint32 addVariable(QString name, CharacterRange range);
    qint32 addFunction(QString name, std::span<const qint32> arguments, CharacterRange range);
    // For a parser that has looked the name up already.
    qint32 addFunction(QString name, qint16 builtInFunction, std::span<const qint32> arguments, CharacterRange range);
    qint32 addOperator(const Operator &op, std::span<const qint32> operands, CharacterRange range);
    // The same for the one or two operands every operator has; second is -1 for a unary one.
    // Inline: the parser makes one of these for every operator of every line.
    qint32 addOperator(const Operator &op, qint32 first, qint32 second, CharacterRange range)
    {
        const qint32 index = qint32(m_nodes.size());
        Node node;
        node.kind = Expression::Kind::function;
        node.notation = op.isBinary() ? Notation::infix : (op.isPrefix() ? Notation::prefix : Notation::postfix);
        node.name = operatorEntry(op);
        node.builtInFunction = op.builtInFunction();
        node.range = range;
        node.firstArgument = qint32(m_argumentIndices.size());
        node.argumentCount = second >= 0 ? 2 : 1;
        Node &left = m_nodes[std::size_t(first)];
        left.parent = index;
        node.height = left.height + 1;
        m_argumentIndices.push_back(first);
        if (second >= 0) {
            Node &right = m_nodes[std::size_t(second)];
            right.parent = index;
            node.height = qMax(node.height, right.height + 1);
            m_argumentIndices.push_back(second);
        }
        m_nodes.push_back(node);
        return index;
    }
    // Copies the subtree of another tree rooted at index into this one.
    qint32 addCopy(const ExpressionTree &other, qint32 index);

    const Node &node(qint32 index) const { return m_nodes[std::size_t(index)]; }
    qint32 argumentIndex(const Node &node, qsizetype position) const
    {
        return m_argumentIndices[std::size_t(node.firstArgument + position)];
    }
    qsizetype nodeCount() const { return qsizetype(m_nodes.size()); }
    // The variable's or the function's name; empty for a number.
    const QString &name(const Node &node) const
    {
        if (node.name == kNoName)
            return noName();
        return isOperator(node) ? m_operators[std::size_t(node.name)].name : m_names[std::size_t(node.name)];
    }
    // How an operator node prints; empty for the other nodes.
    const QString &operatorToken(const Node &node) const
    {
        return isOperator(node) ? m_operators[std::size_t(node.name)].operatorToken : noName();
    }

    QString toString(qint32 index) const;

private:
    // An operator met before, with its names. The operator's address only finds the entry
    // again; the names' shared text confirms that it is still the same operator.
    struct OperatorEntry {
        const Operator *op;
        QString name;
        QString operatorToken;
    };

    static bool isOperator(const Node &node) { return node.notation != Notation::call; }
    static const QString &noName();
    qint32 operatorEntry(const Operator &op)
    {
        // A line mixes a few operators ("1 + 2 * 3 - 4"): each is remembered in a slot
        // chosen by its address, which differs between the operators of one set.
        const std::size_t slot = (reinterpret_cast<quintptr>(&op) / sizeof(Operator)) % m_recentOperators.size();
        const qint32 entry = m_recentOperators[slot];
        if (entry >= 0 && isEntryOf(m_operators[std::size_t(entry)], op))
            return entry;
        return m_recentOperators[slot] = findOperatorEntry(op);
    }
    static bool isEntryOf(const OperatorEntry &entry, const Operator &op)
    {
        const QString &token = op.tokens().isEmpty() ? op.function() : op.tokens().front();
        return entry.op == &op && sameText(entry.name, op.function()) && sameText(entry.operatorToken, token);
    }
    static bool sameText(const QString &a, const QString &b)
    {
        return a.constData() == b.constData() && a.size() == b.size();
    }
    qint32 findOperatorEntry(const Operator &op);
    qint32 addOperatorEntry(const Operator *op, const QString &name, const QString &operatorToken);
    // A function node over arguments, its name, range and built-in still to be filled in.
    Node &appendFunctionNode(std::span<const qint32> arguments, Notation notation);

    std::vector<Node> m_nodes;
    std::vector<qint32> m_argumentIndices;
    std::vector<QString> m_names;
    std::vector<OperatorEntry> m_operators;
    // Indices into m_operators, -1 for none.
    std::array<qint32, 8> m_recentOperators = {-1, -1, -1, -1, -1, -1, -1, -1};
};

} // namespace scrivlet::math
