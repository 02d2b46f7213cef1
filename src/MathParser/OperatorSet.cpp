#include "MathParser/OperatorSet.h"

#include "MathParser/CaseFolding.h"

#include <algorithm>

namespace scrivlet::math {

namespace {

using Arity = Operator::Arity;
using Associativity = Operator::Associativity;

QStringList tokens(std::initializer_list<const char16_t *> list)
{
    QStringList result;
    // The tokens are literals: their text is used in place, never copied or counted.
    for (const char16_t *token : list)
        result.append(QString::fromRawData(reinterpret_cast<const QChar *>(token),
                                           qsizetype(std::char_traits<char16_t>::length(token))));
    return result;
}

QString foldedToken(QStringView token)
{
    QString folded;
    folded.reserve(token.size());
    for (QChar c : token)
        folded.append(QChar(casefolding::fold(c.unicode())));
    return folded;
}

} // namespace

OperatorSet::OperatorSet(bool interpretsPercentSignAsModulo)
    : m_interpretsPercentSignAsModulo(interpretsPercentSignAsModulo)
{
    // Weakest binding first; a larger precedence binds tighter. The gaps in the numbers are
    // where operators added relative to others land.
    m_operators = {
        {QStringLiteral("l_or"), Arity::binary, Associativity::left, tokens({u"||", u"∨"}), 1,
         BuiltInOperator::logicalOr},
        {QStringLiteral("l_and"), Arity::binary, Associativity::left, tokens({u"&&", u"∧"}), 2,
         BuiltInOperator::logicalAnd},
        {QStringLiteral("l_eq"), Arity::binary, Associativity::left, tokens({u"==", u"="}), 3,
         BuiltInOperator::logicalEqual},
        {QStringLiteral("l_neq"), Arity::binary, Associativity::left, tokens({u"!=", u"≠"}), 3,
         BuiltInOperator::logicalNotEqual},
        {QStringLiteral("l_lt"), Arity::binary, Associativity::left, tokens({u"<"}), 3,
         BuiltInOperator::logicalLessThan},
        {QStringLiteral("l_gt"), Arity::binary, Associativity::left, tokens({u">"}), 3,
         BuiltInOperator::logicalGreaterThan},
        {QStringLiteral("l_ltoe"), Arity::binary, Associativity::left, tokens({u"<=", u"=<", u"≤", u"≯"}), 3,
         BuiltInOperator::logicalLessThanOrEqual},
        {QStringLiteral("l_gtoe"), Arity::binary, Associativity::left, tokens({u">=", u"=>", u"≥", u"≮"}), 3,
         BuiltInOperator::logicalGreaterThanOrEqual},
        {QStringLiteral("add"), Arity::binary, Associativity::left, tokens({u"+"}), 6, BuiltInOperator::add},
        {QStringLiteral("subtract"), Arity::binary, Associativity::left, tokens({u"-", u"−"}), 6,
         BuiltInOperator::minus},
        {QStringLiteral("or"), Arity::binary, Associativity::left, tokens({u"|"}), 6, BuiltInOperator::bitwiseOr},
        // "^" is exclusive or here; math lines have it rewritten to "**" before they arrive.
        {QStringLiteral("xor"), Arity::binary, Associativity::left, tokens({u"^"}), 6, BuiltInOperator::bitwiseXor},
        {QStringLiteral("multiply"), Arity::binary, Associativity::left, tokens({u"*", u"×"}), 7,
         BuiltInOperator::multiply},
        {QStringLiteral("divide"), Arity::binary, Associativity::left, tokens({u"/", u"÷"}), 7,
         BuiltInOperator::divide},
        {QStringLiteral("and"), Arity::binary, Associativity::left, tokens({u"&"}), 7, BuiltInOperator::bitwiseAnd},
        {QStringLiteral("implicitMultiply"), Arity::binary, Associativity::left, tokens({u"*", u"×"}), 8,
         BuiltInOperator::implicitMultiply},
        {QStringLiteral("lshift"), Arity::binary, Associativity::left, tokens({u"<<"}), 9, BuiltInOperator::leftShift},
        {QStringLiteral("rshift"), Arity::binary, Associativity::left, tokens({u">>"}), 9, BuiltInOperator::rightShift},
        {QStringLiteral("not"), Arity::unary, Associativity::right, tokens({u"~"}), 10, BuiltInOperator::bitwiseNot},
        {QStringLiteral("negate"), Arity::unary, Associativity::right, tokens({u"-", u"−"}), 10,
         BuiltInOperator::unaryMinus},
        {QStringLiteral("positive"), Arity::unary, Associativity::right, tokens({u"+"}), 10,
         BuiltInOperator::unaryPlus},
        {QStringLiteral("sqrt"), Arity::unary, Associativity::right, tokens({u"√"}), 10, BuiltInOperator::squareRoot},
        {QStringLiteral("cuberoot"), Arity::unary, Associativity::right, tokens({u"∛"}), 10, BuiltInOperator::cubeRoot},
        {QStringLiteral("l_not"), Arity::unary, Associativity::right, tokens({u"!", u"¬"}), 10,
         BuiltInOperator::logicalNot},
        {QStringLiteral("factorial2"), Arity::unary, Associativity::left, tokens({u"!!"}), 11,
         BuiltInOperator::doubleFactorial},
        {QStringLiteral("factorial"), Arity::unary, Associativity::left, tokens({u"!"}), 11,
         BuiltInOperator::factorial},
        {QStringLiteral("dtor"), Arity::unary, Associativity::left, tokens({u"º", u"°", u"∘"}), 11,
         BuiltInOperator::degree},
        // Right-associative, fixed here once for every use: a tower of powers is read from
        // the top down as it is on paper and in the languages people copy formulas from, so
        // "2 ** 3 ** 2" is 2 ** 9 = 512, and "2^3^2" typed in a note means the same.
        {QStringLiteral("pow"), Arity::binary, Associativity::right, tokens({u"**"}), 12, BuiltInOperator::power},
        // The "+" between a whole number and a vulgar fraction ("1½"): binds tighter than
        // everything, so "-1½" is -(1 + ½) and "1½²" is (1 + ½)².
        {QStringLiteral("add"), Arity::binary, Associativity::left, tokens({u"+"}), 13, std::nullopt},
        {QStringLiteral("open_paren"), Arity::unary, Associativity::right, tokens({u"("}), 14,
         BuiltInOperator::parenthesisOpen},
        {QStringLiteral("close_paren"), Arity::unary, Associativity::left, tokens({u")"}), 14,
         BuiltInOperator::parenthesisClose},
        {QStringLiteral("comma"), Arity::binary, Associativity::left, tokens({u","}), 15, BuiltInOperator::comma},
    };
    m_addFractionIndex = 28;
    m_multiplyIndex = 12;
    m_implicitMultiplyIndex = 15;
    m_powerIndex = 27;
    Q_ASSERT(m_operators[m_addFractionIndex].precedence() == 13);
    Q_ASSERT(m_operators[m_implicitMultiplyIndex].function() == QLatin1String("implicitMultiply"));
    Q_ASSERT(m_operators[m_powerIndex].function() == QLatin1String("pow"));

    if (interpretsPercentSignAsModulo) {
        const Operator multiply = m_operators[m_multiplyIndex];
        addOperator({QStringLiteral("mod"), Arity::binary, Associativity::left, tokens({u"%"}), std::nullopt,
                     BuiltInOperator::modulo},
                    Relation::equalTo, multiply);
    } else {
        const Operator factorial = *builtIn(BuiltInOperator::factorial);
        addOperator({QStringLiteral("percent"), Arity::unary, Associativity::left, tokens({u"%"}), std::nullopt,
                     BuiltInOperator::percent},
                    Relation::equalTo, factorial);
    }
    rebuildLookups();
}

OperatorSet::OperatorSet(const OperatorSet &other)
    : m_interpretsPercentSignAsModulo(other.m_interpretsPercentSignAsModulo), m_operators(other.m_operators),
      m_addFractionIndex(other.m_addFractionIndex), m_multiplyIndex(other.m_multiplyIndex),
      m_implicitMultiplyIndex(other.m_implicitMultiplyIndex), m_powerIndex(other.m_powerIndex)
{
    rebuildLookups();
}

OperatorSet &OperatorSet::operator=(const OperatorSet &other)
{
    if (this != &other) {
        m_interpretsPercentSignAsModulo = other.m_interpretsPercentSignAsModulo;
        m_operators = other.m_operators;
        m_addFractionIndex = other.m_addFractionIndex;
        m_multiplyIndex = other.m_multiplyIndex;
        m_implicitMultiplyIndex = other.m_implicitMultiplyIndex;
        m_powerIndex = other.m_powerIndex;
        rebuildLookups();
    }
    return *this;
}

std::shared_ptr<const OperatorSet> OperatorSet::shared()
{
    static const std::shared_ptr<const OperatorSet> set = std::make_shared<const OperatorSet>(true);
    return set;
}

const Operator *OperatorSet::builtIn(BuiltInOperator which) const
{
    for (const Operator &op : m_operators) {
        if (op.builtInOperator() == which)
            return &op;
    }
    return nullptr;
}

std::span<const Operator *const> OperatorSet::operatorsForToken(QStringView token) const
{
    const TokenEntry *entry = findEntry(token);
    return entry ? std::span<const Operator *const>(entry->operators) : std::span<const Operator *const>();
}

const OperatorSet::TokenEntry *OperatorSet::findEntrySlowly(QStringView token) const
{
    if (token.size() == 1) {
        const char16_t folded = casefolding::fold(token.front().unicode());
        if (folded < 0x80) {
            const qint16 entry = m_asciiTokenEntry[folded];
            return entry < 0 ? nullptr : &m_tokenEntries[std::size_t(entry)];
        }
    }
    const auto it = std::lower_bound(
        m_tokenEntries.begin(), m_tokenEntries.end(), token,
        [](const TokenEntry &entry, QStringView t) { return casefolding::compare(entry.foldedToken, t) < 0; });
    if (it == m_tokenEntries.end() || !casefolding::equal(it->foldedToken, token))
        return nullptr;
    return &*it;
}

const Operator *OperatorSet::choose(const std::vector<const Operator *> &candidates, TokenPosition position)
{
    if (candidates.size() == 1)
        return candidates.front();

    const auto firstOf = [&](auto predicate) -> const Operator * {
        const auto it = std::find_if(candidates.begin(), candidates.end(), predicate);
        return it == candidates.end() ? nullptr : *it;
    };
    const auto prefix = [](const Operator *op) { return op->isPrefix(); };
    const auto postfix = [](const Operator *op) { return op->isPostfix(); };
    const auto binary = [](const Operator *op) { return op->isBinary(); };

    switch (position) {
    case TokenPosition::noOperand:
        return firstOf(prefix);
    case TokenPosition::behindPostfix: {
        // "3! - 1", "(2) - 1".
        const Operator *chosen = firstOf(postfix);
        return chosen ? chosen : firstOf(binary);
    }
    case TokenPosition::behindOperand: {
        // "3!" is factorial, "2 - 3" subtraction.
        const Operator *chosen = firstOf(postfix);
        if (!chosen)
            chosen = firstOf(binary);
        return chosen ? chosen : firstOf(prefix);
    }
    }
    Q_UNREACHABLE();
    return nullptr;
}

std::size_t OperatorSet::indexOf(const Operator &op) const
{
    // The fraction "+" equals the ordinary one; an exact precedence match tells them apart.
    for (std::size_t i = 0; i < m_operators.size(); ++i) {
        if (m_operators[i] == op && m_operators[i].precedence() == op.precedence())
            return i;
    }
    for (std::size_t i = 0; i < m_operators.size(); ++i) {
        if (m_operators[i] == op)
            return i;
    }
    return m_operators.size();
}

void OperatorSet::addOperator(Operator op, Relation relation, const Operator &existing)
{
    const std::size_t existingIndex = indexOf(existing);
    Q_ASSERT(existingIndex < m_operators.size());
    if (existingIndex >= m_operators.size())
        return;
    const int level = m_operators[existingIndex].precedence().value_or(0);

    std::size_t insertAt = existingIndex + 1;
    switch (relation) {
    case Relation::equalTo:
        op.setPrecedence(level);
        break;
    case Relation::lessThan:
        for (Operator &other : m_operators) {
            if (other.precedence() && *other.precedence() >= level)
                other.setPrecedence(*other.precedence() + 1);
        }
        op.setPrecedence(level);
        insertAt = existingIndex;
        break;
    case Relation::greaterThan:
        for (Operator &other : m_operators) {
            if (other.precedence() && *other.precedence() > level)
                other.setPrecedence(*other.precedence() + 1);
        }
        op.setPrecedence(level + 1);
        break;
    }
    m_operators.insert(m_operators.begin() + std::ptrdiff_t(insertAt), std::move(op));
    for (std::size_t *index : {&m_addFractionIndex, &m_multiplyIndex, &m_implicitMultiplyIndex, &m_powerIndex}) {
        if (*index >= insertAt)
            ++*index;
    }
    rebuildLookups();
}

void OperatorSet::addTokens(const QStringList &tokens, const Operator &existing)
{
    const std::size_t index = indexOf(existing);
    Q_ASSERT(index < m_operators.size());
    if (index >= m_operators.size())
        return;
    m_operators[index].addTokens(tokens);
    rebuildLookups();
}

void OperatorSet::rebuildLookups()
{
    m_knownTokens.clear();
    m_tokenEntries.clear();
    QStringList allTokens;
    for (std::size_t index = 0; index < m_operators.size(); ++index) {
        const Operator &op = m_operators[index];
        // The implicit product and the fraction "+" are put in by the resolver and never
        // read from the text: a written "*" is the ordinary product, so "* 2" lacks its left
        // operand instead of being ambiguous.
        const bool insertedOnly = index == m_implicitMultiplyIndex || index == m_addFractionIndex;
        for (const QString &token : op.tokens()) {
            if (!m_knownTokens.contains(token)) {
                m_knownTokens.insert(token);
                allTokens.append(token);
            }
            if (insertedOnly)
                continue;
            const QString folded = foldedToken(token);
            auto it = std::find_if(m_tokenEntries.begin(), m_tokenEntries.end(),
                                   [&](const TokenEntry &entry) { return entry.foldedToken == folded; });
            if (it == m_tokenEntries.end()) {
                m_tokenEntries.push_back({folded, {}});
                it = std::prev(m_tokenEntries.end());
            }
            // Operators that are the same thing count once.
            const bool known = std::any_of(it->operators.begin(), it->operators.end(),
                                           [&](const Operator *candidate) { return *candidate == op; });
            if (!known)
                it->operators.push_back(&op);
        }
    }
    std::sort(m_tokenEntries.begin(), m_tokenEntries.end(),
              [](const TokenEntry &a, const TokenEntry &b) { return a.foldedToken < b.foldedToken; });
    m_asciiTokenEntry.fill(-1);
    for (TokenEntry &entry : m_tokenEntries) {
        for (const TokenPosition position :
             {TokenPosition::noOperand, TokenPosition::behindOperand, TokenPosition::behindPostfix}) {
            entry.chosen[std::size_t(position)] = choose(entry.operators, position);
        }
        entry.opensParenthesis = std::any_of(entry.operators.begin(), entry.operators.end(), [](const Operator *op) {
            return op->builtInOperator() == BuiltInOperator::parenthesisOpen;
        });
    }
    m_asciiPairEntries.fill({});
    std::size_t pairs = 0;
    for (std::size_t entry = 0; entry < m_tokenEntries.size(); ++entry) {
        const QString &token = m_tokenEntries[entry].foldedToken;
        if (token.size() == 1 && token.front().unicode() < 0x80)
            m_asciiTokenEntry[token.front().unicode()] = qint16(entry);
        if (token.size() == 2 && token[0].unicode() < 0x80 && token[1].unicode() < 0x80 &&
            ++pairs < m_asciiPairEntries.size()) {
            const quint16 key = quint16(token[0].unicode() * 128u + token[1].unicode());
            std::size_t slot = asciiPairSlot(key);
            while (m_asciiPairEntries[slot].entry >= 0)
                slot = (slot + 1) % m_asciiPairEntries.size();
            m_asciiPairEntries[slot] = {key, qint16(entry)};
        }
    }
    // A full table would leave no empty slot to end a search for an unknown token.
    m_asciiPairsIndexed = pairs < m_asciiPairEntries.size();
    m_operatorTokenSet = OperatorTokenSet(allTokens);
    m_openParenthesis = builtIn(BuiltInOperator::parenthesisOpen);
    m_closeParenthesis = builtIn(BuiltInOperator::parenthesisClose);

    m_uniformAssociativity = true;
    for (const Operator &op : m_operators) {
        if (&op == m_openParenthesis || &op == m_closeParenthesis || !op.precedence())
            continue;
        for (const Operator &other : m_operators) {
            if (&other != m_openParenthesis && &other != m_closeParenthesis && other.precedence() == op.precedence() &&
                other.associativity() != op.associativity()) {
                m_uniformAssociativity = false;
            }
        }
    }
}

} // namespace scrivlet::math
