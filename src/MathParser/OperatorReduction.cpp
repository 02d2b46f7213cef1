#include "MathParser/OperatorReduction.h"

#include "MathParser/ExpressionTree.h"
#include "MathParser/MathParserError.h"
#include "MathParser/ParserLimits.h"

#include <algorithm>

namespace scrivlet::math {

namespace {

// Strongest first, and in line order within one strength.
bool comesBefore(const OperatorReduction::Pending &a, const OperatorReduction::Pending &b)
{
    return a.precedence != b.precedence ? a.precedence > b.precedence : a.index < b.index;
}

// Below this many operators an insertion sort wins, and a typed line is nearly in order
// already: a sum of forty terms is one strength from left to right.
constexpr std::size_t kInsertionSortLimit = 32;

} // namespace

qint32 OperatorReduction::run(CharacterRange range)
{
    if (m_elements.empty())
        throw MathParserError(MathParserError::Kind::invalidFormat, range);

    m_operators.clear();
    bool binaryOnly = true;
    bool alternating = true;
    bool oneStrength = true;
    for (qint32 i = 0; i < qint32(m_elements.size()); ++i) {
        Element &element = m_elements[std::size_t(i)];
        element.previous = i - 1;
        element.next = i + 1 < qint32(m_elements.size()) ? i + 1 : -1;
        if (element.op) {
            if (!element.op->precedence())
                qFatal("Operator with unknown precedence");
            m_operators.push_back({i, *element.op->precedence(), element.op->associativity()});
            binaryOnly = binaryOnly && element.op->isBinary();
            alternating = alternating && i % 2 == 1;
            oneStrength = oneStrength && m_operators.back().precedence == m_operators.front().precedence;
        }
    }
    // "1 + 2 - 3 + ...": operands and binary operators of one strength taking turns are
    // reduced in line order (or against it), a fold needing neither sort nor list.
    if (binaryOnly && alternating && oneStrength && m_elements.size() == m_operators.size() * 2 + 1)
        return fold();
    sortOperators();
    // Without prefix or postfix operators there are no chains to take first.
    const auto apply = [&](qint32 index) { binaryOnly ? reduceBinary(index) : reduce(index); };

    for (std::size_t levelStart = 0; levelStart < m_operators.size();) {
        const int level = m_operators[levelStart].precedence;
        std::size_t levelEnd = levelStart;
        while (levelEnd < m_operators.size() && m_operators[levelEnd].precedence == level)
            ++levelEnd;
        // Within a strength the operators are in line order; the first of them decides
        // the direction for all.
        if (m_operators[levelStart].associativity == Operator::Associativity::left) {
            for (std::size_t i = levelStart; i < levelEnd; ++i)
                apply(m_operators[i].index);
        } else {
            for (std::size_t i = levelEnd; i > levelStart; --i)
                apply(m_operators[i - 1].index);
        }
        levelStart = levelEnd;
    }

    // The element reduced last is still in the list (an operand taken out is never
    // reduced again); with no operators at all the list is untouched.
    qint32 first = m_lastReduced >= 0 ? m_lastReduced : 0;
    while (at(first).previous >= 0)
        first = at(first).previous;
    // Two operands with nothing between them, as "2 3" would be without implicit
    // multiplication.
    if (at(first).next >= 0)
        throw MathParserError(MathParserError::Kind::invalidFormat, at(at(first).next).range);
    return at(first).node;
}

qint32 OperatorReduction::fold()
{
    const qint32 last = qint32(m_elements.size()) - 1;
    if (m_operators.empty())
        return at(0).node;
    // The first operator's direction holds for the whole strength.
    if (m_operators.front().associativity == Operator::Associativity::left) {
        for (qint32 index = 1; index < last; index += 2)
            reduceBinaryInLine(index, index - 1, index + 1, index + 1);
        return at(last).node;
    }
    for (qint32 index = last - 1; index > 0; index -= 2)
        reduceBinaryInLine(index, index - 1, index + 1, index - 1);
    return at(0).node;
}

// What reduceBinary does with neighbours known in advance; the result also goes into the
// operand element the next operator of the fold takes as its operand.
void OperatorReduction::reduceBinaryInLine(qint32 index, qint32 left, qint32 right, qint32 carry)
{
    Element &element = at(index);
    const qint32 operands[] = {at(left).node, at(right).node};
    const CharacterRange range = at(left).range.united(element.range).united(at(right).range);
    const qint32 node = m_tree.addOperator(*element.op, operands, range);
    if (m_tree.node(node).height > limits::kMaxExpressionHeight)
        throw MathParserError(MathParserError::Kind::invalidFormat, range);
    element.node = node;
    element.range = range;
    at(carry).node = node;
    at(carry).range = range;
}

void OperatorReduction::sortOperators()
{
    if (m_operators.size() > kInsertionSortLimit) {
        std::sort(m_operators.begin(), m_operators.end(), comesBefore);
        return;
    }
    for (std::size_t i = 1; i < m_operators.size(); ++i) {
        const Pending pending = m_operators[i];
        std::size_t j = i;
        for (; j > 0 && comesBefore(pending, m_operators[j - 1]); --j)
            m_operators[j] = m_operators[j - 1];
        m_operators[j] = pending;
    }
}

void OperatorReduction::reduce(qint32 index)
{
    Element &element = at(index);
    if (!element.op)
        return; // Already taken as the operand chain of an earlier operator.
    const Operator &op = *element.op;
    if (op.isPrefix()) {
        reducePrefixChain(index);
    } else if (op.isPostfix()) {
        reducePostfixChain(index);
    } else {
        if (isPrefix(element.next))
            reducePrefixChain(element.next);
        if (isPostfix(element.previous))
            reducePostfixChain(element.previous);
        reduceBinary(index);
    }
}

void OperatorReduction::reduceBinary(qint32 index)
{
    const Element &element = at(index);
    const Operator &op = *element.op;
    const qint32 left = element.previous;
    const qint32 right = element.next;
    if (!isOperand(left))
        throw MathParserError(MathParserError::Kind::missingLeftOperand, element.range, op);
    if (!isOperand(right))
        throw MathParserError(MathParserError::Kind::missingRightOperand, element.range, op);
    const qint32 operands[] = {at(left).node, at(right).node};
    replace(index, op, operands, at(left).range.united(element.range).united(at(right).range));
    unlink(left);
    unlink(right);
}

// "--2", "-√4": the prefix operators in a row take their operands from the innermost out.
void OperatorReduction::reducePrefixChain(qint32 index)
{
    qint32 innermost = index;
    while (isPrefix(at(innermost).next))
        innermost = at(innermost).next;
    for (qint32 current = innermost;; current = at(current).previous) {
        const Operator &op = *at(current).op;
        const qint32 operand = at(current).next;
        if (!isOperand(operand))
            throw MathParserError(MathParserError::Kind::missingRightOperand, at(current).range, op);
        const qint32 operands[] = {at(operand).node};
        replace(current, op, operands, at(current).range.united(at(operand).range));
        unlink(operand);
        if (current == index)
            break;
    }
}

// "3!°": the postfix operators in a row apply from the innermost out.
void OperatorReduction::reducePostfixChain(qint32 index)
{
    qint32 innermost = index;
    while (isPostfix(at(innermost).previous))
        innermost = at(innermost).previous;
    for (qint32 current = innermost;; current = at(current).next) {
        const Operator &op = *at(current).op;
        const qint32 operand = at(current).previous;
        if (!isOperand(operand))
            throw MathParserError(MathParserError::Kind::missingLeftOperand, at(current).range, op);
        const qint32 operands[] = {at(operand).node};
        replace(current, op, operands, at(operand).range.united(at(current).range));
        unlink(operand);
        if (current == index)
            break;
    }
}

void OperatorReduction::replace(qint32 index, const Operator &op, std::span<const qint32> operands,
                                CharacterRange range)
{
    const qint32 node = m_tree.addOperator(op, operands, range);
    if (m_tree.node(node).height > limits::kMaxExpressionHeight)
        throw MathParserError(MathParserError::Kind::invalidFormat, range);
    Element &element = at(index);
    element.op = nullptr;
    element.node = node;
    element.range = range;
    m_lastReduced = index;
}


} // namespace scrivlet::math
