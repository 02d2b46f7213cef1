#pragma once

#include "MathParser/BuiltInOperator.h"
#include "MathParser/Operator.h"
#include "MathParser/OperatorTokenSet.h"

#include <QSet>
#include <QString>
#include <QStringView>

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace scrivlet::math {

// The operators an expression may use, with their precedence, associativity and tokens.
// The shared default set is built once; a set changed after that would be a different set.
class OperatorSet {
public:
    enum class Relation : quint8 { lessThan, equalTo, greaterThan };

    // The default table. With interpretsPercentSignAsModulo, "%" is the remainder at the
    // strength of "*"; otherwise it is the postfix percent at the strength of "!".
    explicit OperatorSet(bool interpretsPercentSignAsModulo = true);
    // The token lookup points into the operator array, so copies rebuild it.
    OperatorSet(const OperatorSet &other);
    OperatorSet &operator=(const OperatorSet &other);

    static std::shared_ptr<const OperatorSet> shared();

    bool interpretsPercentSignAsModulo() const { return m_interpretsPercentSignAsModulo; }
    const std::vector<Operator> &operators() const { return m_operators; }
    const Operator &addFractionOperator() const { return m_operators[m_addFractionIndex]; }
    const Operator &multiplyOperator() const { return m_operators[m_multiplyIndex]; }
    const Operator &implicitMultiplyOperator() const { return m_operators[m_implicitMultiplyIndex]; }
    const Operator &powerOperator() const { return m_operators[m_powerIndex]; }
    const QSet<QString> &knownTokens() const { return m_knownTokens; }
    const OperatorTokenSet &operatorTokenSet() const { return m_operatorTokenSet; }
    const Operator *builtIn(BuiltInOperator which) const;
    // builtIn() of the parentheses, which the parser inserts for every "pi" and "2³".
    const Operator *openParenthesis() const { return m_openParenthesis; }
    const Operator *closeParenthesis() const { return m_closeParenthesis; }

    // The distinct operators written with this token, ignoring case, in table order.
    std::span<const Operator *const> operatorsForToken(QStringView token) const;
    // What stands before a token decides which of its operators it is.
    enum class TokenPosition : quint8 {
        // Nothing, or a binary or prefix operator: "-3", "2 * -3".
        noOperand,
        behindOperand,
        behindPostfix,
    };
    static TokenPosition positionBehind(bool first, const Operator *before)
    {
        if (first || (before && !before->isPostfix()))
            return TokenPosition::noOperand;
        return before ? TokenPosition::behindPostfix : TokenPosition::behindOperand;
    }
    // The one of a token's operators that fits at its position, chosen when the set is
    // built. Null when the token names no operator (unknown) or none of its forms fits
    // there (ambiguous).
    const Operator *operatorForToken(QStringView token, TokenPosition position, bool &unknown) const
    {
        const TokenEntry *entry = findEntry(token);
        unknown = !entry;
        return entry ? entry->chosen[std::size_t(position)] : nullptr;
    }
    // Whether all operators of one strength associate the same way, the parentheses aside.
    // Then an expression can be read from left to right, an operator waiting until the
    // next one shows whether it binds first; the default set is such a set.
    bool hasUniformAssociativity() const { return m_uniformAssociativity; }
    // Whether the token can be an opening parenthesis.
    bool isOpenParenthesisToken(QStringView token) const
    {
        const TokenEntry *entry = findEntry(token);
        return entry && entry->opensParenthesis;
    }

    // Adds an operator that binds more loosely than, as tightly as, or more tightly than an
    // existing one; the operators above it move up to make room.
    void addOperator(Operator op, Relation relation, const Operator &existing);
    void addTokens(const QStringList &tokens, const Operator &existing);

private:
    void rebuildLookups();

    bool m_interpretsPercentSignAsModulo;
    // Built with the set rather than on first use, so the shared set is never written
    // after it is published.
    OperatorTokenSet m_operatorTokenSet;
    std::vector<Operator> m_operators;
    std::size_t indexOf(const Operator &op) const;

    std::size_t m_addFractionIndex = 0;
    std::size_t m_multiplyIndex = 0;
    std::size_t m_implicitMultiplyIndex = 0;
    std::size_t m_powerIndex = 0;
    QSet<QString> m_knownTokens;
    const Operator *m_openParenthesis = nullptr;
    const Operator *m_closeParenthesis = nullptr;
    bool m_uniformAssociativity = false;

    struct TokenEntry {
        QString foldedToken;
        std::vector<const Operator *> operators;
        // The operator chosen at each TokenPosition.
        std::array<const Operator *, 3> chosen{};
        bool opensParenthesis = false;
    };
    // Inline for the one- and two-character ASCII tokens nearly every operator is written with.
    const TokenEntry *findEntry(QStringView token) const
    {
        if (token.size() == 1 && token.front().unicode() < 0x80) {
            const qint16 entry = m_asciiTokenEntry[asciiFolded(token.front().unicode())];
            return entry < 0 ? nullptr : &m_tokenEntries[std::size_t(entry)];
        }
        if (token.size() == 2 && token[0].unicode() < 0x80 && token[1].unicode() < 0x80 && m_asciiPairsIndexed) {
            const quint16 key = quint16(asciiFolded(token[0].unicode()) * 128u + asciiFolded(token[1].unicode()));
            for (std::size_t slot = asciiPairSlot(key);; slot = (slot + 1) % m_asciiPairEntries.size()) {
                const AsciiPairEntry &pair = m_asciiPairEntries[slot];
                if (pair.key == key)
                    return &m_tokenEntries[std::size_t(pair.entry)];
                if (pair.entry < 0)
                    return nullptr;
            }
        }
        return findEntrySlowly(token);
    }
    static char16_t asciiFolded(char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + (u'a' - u'A')) : c; }
    static std::size_t asciiPairSlot(quint16 key) { return (key * 40503u >> 7) % 64; }
    const TokenEntry *findEntrySlowly(QStringView token) const;
    static const Operator *choose(const std::vector<const Operator *> &candidates, TokenPosition position);

    // Sorted by folded token for binary search.
    std::vector<TokenEntry> m_tokenEntries;
    // The entry of each one-character ASCII token, -1 for none: most tokens are such.
    std::array<qint16, 128> m_asciiTokenEntry;
    // The entry of each two-character ASCII token ("**", "<="), by its folded characters,
    // open addressing; unused while the set has too many such tokens for the table.
    struct AsciiPairEntry {
        quint16 key = 0;
        qint16 entry = -1;
    };
    std::array<AsciiPairEntry, 64> m_asciiPairEntries;
    bool m_asciiPairsIndexed = false;
};

} // namespace scrivlet::math
