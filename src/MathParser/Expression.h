#pragma once

#include "MathParser/CharacterRange.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace scrivlet::math {

class ExpressionTree;

// A parsed expression: a number, a variable, or a function applied to argument
// expressions (operators are functions too, "2 + 3" is add(2, 3)).
//
// An Expression is a cheap handle onto one node of an immutable tree that the parser lays
// out in a single block, so a parse costs a couple of allocations rather than one per node,
// and every node knows its parent (the evaluator's percent rule looks at it). Copies share
// the tree.
class Expression {
public:
    enum class Kind : quint8 { number, variable, function };

    // Trees built by hand, e.g. by an extension or a test; the arguments are copied in.
    static Expression makeNumber(double value, CharacterRange range = {});
    static Expression makeVariable(const QString &name, CharacterRange range = {});
    static Expression makeFunction(const QString &name, const std::vector<Expression> &arguments,
                                   CharacterRange range = {});

    Kind kind() const;
    bool isNumber() const { return kind() == Kind::number; }
    bool isVariable() const { return kind() == Kind::variable; }
    bool isFunction() const { return kind() == Kind::function; }

    // The value of a number expression; 0 for the other kinds.
    double numberValue() const;
    // The variable's or the function's name; empty for a number.
    const QString &name() const;
    qsizetype argumentCount() const;
    Expression argument(qsizetype index) const;
    std::vector<Expression> arguments() const;
    CharacterRange range() const;
    // The function expression this one is an argument of; none for the root.
    std::optional<Expression> parent() const;
    // The length of the longest path from here down to a leaf, counting this node.
    int height() const;

    // Functions print as "name(a, b)", operators by their first token, e.g. "2 + (3 * 4)".
    QString toString() const;

    // Engine internals: the evaluator walks the tree by node index.
    Expression(std::shared_ptr<const ExpressionTree> tree, qint32 index);
    const ExpressionTree &tree() const { return *m_tree; }
    qint32 index() const { return m_index; }
    // Another node of the same tree.
    Expression atNode(qint32 index) const { return Expression(m_tree, index); }

private:
    std::shared_ptr<const ExpressionTree> m_tree;
    qint32 m_index;
};

} // namespace scrivlet::math
