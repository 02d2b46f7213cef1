#pragma once

#include "MathParser/CharacterRange.h"
#include "MathParser/OperatorReduction.h"

#include <QStringView>

#include <optional>
#include <vector>

namespace scrivlet::math {

struct Configuration;
class ExpressionTree;
class Operator;
class OperatorSet;

// Parses the lines people actually type in one pass: it cuts, resolves and groups tokens
// into one flat array and builds the tree straight from it, with no intermediate token
// lists and no allocation beyond the tree's own, since every edit of a note evaluates
// its math lines again.
//
// It reads what the staged parser (Tokenizer, TokenResolver, TokenGrouper, Expressionizer)
// reads and builds the same tree for it, node for node. It does not name errors: a line
// with a mistake anywhere, or with syntax it leaves to the staged parser (quoted names,
// vulgar fractions, superscript signs, a locale's number format, nesting beyond the
// limits), gives no result, and the staged parser reads it again to tell what is wrong.
class LineParser {
public:
    // The root node of text's expression, added to tree; none when the staged parser must
    // read the line. Whatever was added to tree before a failure is left behind.
    static std::optional<qint32> parse(QStringView text, const Configuration &configuration, ExpressionTree &tree);

private:
    // A resolved token. Names are not copied: a token's range is where its text stands.
    struct Token {
        enum class Kind : quint8 { number, variable, identifier, operatorSymbol };
        // How the grouping treats an operator token.
        enum class Role : quint8 { none, open, close, comma };
        Kind kind;
        Role role;
        const Operator *op;
        double value;
        CharacterRange range;
    };
    enum class Context : quint8 { topLevel, group, argument };

    LineParser() = default;

    std::optional<qint32> run(QStringView text, const Configuration &configuration, ExpressionTree &tree);
    bool tokenize();
    bool readSuperscript(qsizetype start, qsizetype &end);
    void append(const Token &token);
    void appendOperator(const Operator &op, CharacterRange range);
    // "pi" without parentheses is the call "pi()".
    void appendEmptyCall(qsizetype at);
    // The node of the sequence at the read position; -1 when the staged parser must read it.
    qint32 buildSequence(Context context, int depth);
    qint32 buildCall(int depth);
    void releaseLargeBuffers();

    QStringView m_text;
    const OperatorSet *m_operatorSet = nullptr;
    ExpressionTree *m_tree = nullptr;
    bool m_argumentlessFunctions = false;
    bool m_implicitMultiplication = false;
    const Operator *m_implicitMultiply = nullptr;
    const Operator *m_open = nullptr;
    const Operator *m_close = nullptr;
    std::size_t m_position = 0;

    // Kept from line to line so that parsing allocates nothing once they have grown.
    std::vector<Token> m_tokens;
    std::vector<OperatorReduction::Element> m_elements;
    std::vector<OperatorReduction::Pending> m_pending;
    std::vector<qint32> m_arguments;
};

} // namespace scrivlet::math
