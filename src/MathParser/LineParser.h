#pragma once

#include "MathParser/CharacterRange.h"
#include "MathParser/Operator.h"

#include <QStringView>

#include <optional>
#include <span>
#include <vector>

namespace scrivlet::math {

struct Configuration;
class EvaluationState;
class Evaluator;
class ExpressionTree;
class FunctionSet;
class LineScanner;
class OperatorSet;

// Parses the lines people actually type in one pass: it reads a token, decides what it is
// by what stood before it, and applies an operator as soon as the one after it binds less
// tightly, keeping only a stack of operands and one of operators that still wait for
// theirs. There is no token list and no allocation once its stacks have grown, since every
// edit of a note evaluates its math lines again.
//
// It either builds the tree the staged parser (Tokenizer, TokenResolver, TokenGrouper,
// Expressionizer) builds, node for node, or, for a line that is only evaluated, applies
// each operator and function to its operands' values right away and builds no tree at all.
//
// The staged parser applies the strongest operators first, and an operator next to a prefix
// or postfix one lets that one take its operand first whatever their strengths. Here a
// prefix or postfix operator beside a stronger operator binds as tightly as that one,
// which comes to the same tree.
//
// It does not name errors: a line with a mistake anywhere, or with syntax it leaves to the
// staged parser (quoted names, vulgar fractions, superscript signs, a locale's number
// format, nesting beyond the limits, operator sets that mix directions at one strength),
// gives no result, and the staged parser reads it again to tell what is wrong.
class LineParser {
public:
    // The root node of text's expression, added to tree; none when the staged parser must
    // read the line. Whatever was added to tree before a failure is left behind.
    static std::optional<qint32> parse(QStringView text, const Configuration &configuration, ExpressionTree &tree);
    // The value of text, computed with evaluator's built-ins while it is read; none when the
    // line needs its tree (variables, functions that evaluate their own arguments, anything
    // that fails) or the staged parser.
    static std::optional<double> evaluate(QStringView text, const Configuration &configuration,
                                          const Evaluator &evaluator);

private:
    // An operand read or built: its node, or its value when the line is computed as it is
    // read; the height of its tree; the text it spans, parentheses included.
    struct Operand {
        qint32 node;
        qint32 height;
        double value;
        CharacterRange range;
    };
    // An operator still waiting for its operands, or an open parenthesis or call that the
    // operators after it are not applied beyond.
    struct Waiting {
        enum class Kind : quint8 { binary, prefix, group, call };
        Kind kind;
        // How tightly it binds here: its precedence, or more for a prefix operator behind a
        // stronger one.
        int strength;
        const Operator *op;
        // The operator's token; the "(" of a group; the name of a call.
        CharacterRange range;
        // Of a group or call: the one it stands in, -1 at the top level. Of a call: where its
        // arguments begin in m_arguments.
        qint32 enclosing;
        qint32 firstArgument;
    };
    // A postfix operator, applied once the token after it shows how tightly it binds.
    struct Postfix {
        const Operator *op;
        CharacterRange range;
        int strength;
        Operator::Associativity associativity;
    };

    LineParser() = default;

    static std::optional<Operand> runOnThisThread(QStringView text, const Configuration &configuration,
                                                  ExpressionTree *tree, const Evaluator *evaluator);
    // The operand the line comes to, a node of tree or a value computed with evaluator;
    // none when the staged parser must read it.
    std::optional<Operand> run(QStringView text, const Configuration &configuration, ExpressionTree *tree,
                               const Evaluator *evaluator);
    bool read(LineScanner &scanner);
    bool readSymbol(QStringView token, CharacterRange range);
    bool finish();

    bool pushOperand(Operand operand);
    bool pushNumber(double value, CharacterRange range);
    // Called before a token that starts an operand: behind another operand it multiplies.
    bool startOperand(qsizetype at);
    bool pushBinary(const Operator &op, CharacterRange range);
    bool pushPrefix(const Operator &op, CharacterRange range);
    bool open(Waiting::Kind kind, CharacterRange range);
    bool close(CharacterRange range);
    bool separateArgument();
    // A name not followed by "(" is a call without arguments, "pi" as "pi()".
    bool callWithoutParentheses();
    // Applies the postfix operators read last, the next operator's strength being known.
    bool settlePostfix(const Operator *next);
    bool applyPostfix(const Operator *next);
    // Applies the waiting operators that bind at least as tightly as strength.
    bool reduceWhileStronger(int strength, Operator::Associativity associativity);
    bool reduce();
    // Makes first the operator applied to first and second (none for a unary operator).
    bool apply(const Operator &op, Operand &first, const Operand *second, CharacterRange range);
    bool call(CharacterRange name, std::span<const Operand> arguments, CharacterRange range, Operand &result);
    // The value of a built-in applied to the values x and y, either of them absent.
    bool callDirectly(qint16 builtIn, const double *x, const double *y, double &value);
    void releaseLargeBuffers();
    QStringView textOf(CharacterRange range) const { return m_text.sliced(range.start, range.length()); }

    QStringView m_text;
    const OperatorSet *m_operatorSet = nullptr;
    // Reading a line now.
    bool m_busy = false;
    // Where the line goes: nodes of a tree, or values computed with an evaluator.
    ExpressionTree *m_tree = nullptr;
    const Evaluator *m_evaluator = nullptr;
    const FunctionSet *m_functions = nullptr;
    EvaluationState *m_state = nullptr;
    bool m_argumentlessFunctions = false;
    bool m_implicitMultiplication = false;
    const Operator *m_implicitMultiply = nullptr;

    // Where the reading stands: an operand is due (at the start, behind "(" or an operator),
    // or one was read; then whether it ended in a postfix operator or ")", which decides what
    // a "-" or "!" after it is.
    bool m_expectingOperand = true;
    bool m_behindPostfix = false;
    // Right behind the "(" of a call, where ")" closes a call without arguments.
    bool m_callJustOpened = false;
    // A name waiting to see whether "(" follows.
    bool m_namePending = false;
    CharacterRange m_name;
    qint32 m_innermost = -1;
    int m_depth = 0;

    // Kept from line to line so that parsing allocates nothing once they have grown.
    std::vector<Operand> m_operands;
    std::vector<Waiting> m_waiting;
    std::vector<Postfix> m_postfix;
    std::vector<Operand> m_arguments;
    std::vector<qint32> m_argumentNodes;
};

} // namespace scrivlet::math
