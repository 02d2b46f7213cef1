#pragma once

#include "MathParser/CharacterRange.h"
#include "MathParser/Operator.h"

#include <span>
#include <vector>

namespace scrivlet::math {

class ExpressionTree;

// Reduces one sequence of operands and operators to an expression tree node. Operators are
// applied strongest first; at one strength the leftmost goes first when they associate to
// the left, the rightmost when to the right. A binary operator first lets a prefix operator
// on its right and a postfix one on its left take their operands, so "2 ** -3" and "3! * 2"
// mean what they say whatever the strengths involved.
//
// Elements form a linked list so that taking operands out is constant time, and operators
// are visited strongest first in one sorted pass, which keeps a line of thousands of
// operators linear-logarithmic instead of quadratic.
class OperatorReduction {
public:
    // An operator still waiting for its operands, or an expression already built.
    struct Element {
        const Operator *op = nullptr;
        qint32 node = -1;
        CharacterRange range;
        qint32 previous = -1;
        qint32 next = -1;
    };
    // An operator to apply, with its strength and direction read before reduction turns its
    // element into an expression.
    struct Pending {
        qint32 index;
        int precedence;
        Operator::Associativity associativity;
    };

    // pending is scratch storage, kept by the caller so a parse of many sequences reuses it.
    OperatorReduction(ExpressionTree &tree, std::span<Element> elements, std::vector<Pending> &pending)
        : m_tree(tree), m_elements(elements), m_operators(pending)
    {
    }

    // The root node of the sequence. Throws MathParserError; range is the sequence's, for
    // the error of an empty one.
    qint32 run(CharacterRange range);

private:
    Element &at(qint32 index) { return m_elements[std::size_t(index)]; }
    bool isPrefix(qint32 index) { return index >= 0 && at(index).op && at(index).op->isPrefix(); }
    bool isPostfix(qint32 index) { return index >= 0 && at(index).op && at(index).op->isPostfix(); }
    bool isOperand(qint32 index) { return index >= 0 && !at(index).op; }

    qint32 fold();
    void reduceBinaryInLine(qint32 index, qint32 left, qint32 right, qint32 carry);
    void sortOperators();
    void reduce(qint32 index);
    // A binary operator whose neighbours are its operands by now.
    void reduceBinary(qint32 index);
    void reducePrefixChain(qint32 index);
    void reducePostfixChain(qint32 index);
    void replace(qint32 index, const Operator &op, std::span<const qint32> operands, CharacterRange range);
    void unlink(qint32 index)
    {
        const Element &element = at(index);
        if (element.previous >= 0)
            at(element.previous).next = element.next;
        if (element.next >= 0)
            at(element.next).previous = element.previous;
    }

    ExpressionTree &m_tree;
    std::span<Element> m_elements;
    std::vector<Pending> &m_operators;
    qint32 m_lastReduced = -1;
};

} // namespace scrivlet::math
