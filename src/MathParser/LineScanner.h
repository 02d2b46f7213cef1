#pragma once

#include "MathParser/CaseFolding.h"
#include "MathParser/CharacterRange.h"
#include "MathParser/NumberParsing.h"
#include "MathParser/OperatorTokenSet.h"
#include "MathParser/TokenCharacterBuffer.h"

#include <QStringView>

namespace scrivlet::math {

// Cuts a line into tokens for the one-pass parser, one at a time as the parser asks for
// them, so no token list is ever built. It reads what the staged tokenizer reads, in the
// same order of preference (numbers, superscripts, variables, operators, names), but knows
// nothing of what an operator means: the parser resolves a symbol by what stands before it.
//
// What the one-pass parser leaves to the staged parser (vulgar fractions, quoted names,
// signs or parentheses in a superscript, operator characters that form no token, "$" with
// no name) comes back as an unsupported token.
//
// The common tokens are read inline: the scanner runs for every character of every math
// line on every edit.
class LineScanner {
public:
    struct Token {
        enum class Kind : quint8 {
            end,
            number,
            // "$rate"; the range includes the "$".
            variable,
            // A function or constant name, "sqrt", "pi".
            name,
            // Operator characters that form a known token, e.g. "**", "(", "-".
            symbol,
            // A run of superscript digits, "²³", with the value of the digits.
            superscript,
            unsupported,
        };
        Kind kind = Kind::end;
        double value = 0.0;
        CharacterRange range;
    };

    LineScanner(QStringView text, const OperatorTokenSet &operatorTokens)
        : m_characters(text.utf16()), m_size(text.size()), m_operatorTokens(operatorTokens)
    {
    }

    Token next()
    {
        qsizetype i = m_position;
        char16_t c = 0;
        for (;; ++i) {
            if (i >= m_size)
                return {Token::Kind::end, 0.0, {i, i}};
            c = m_characters[i];
            // Every ASCII blank is a control character or the space.
            if (c > u' ' ? c >= 0x80 && TokenCharacterBuffer::isWhitespace(QChar(c))
                         : TokenCharacterBuffer::isWhitespace(QChar(c))) {
                continue;
            }
            break;
        }
        if (isDigit(c) || (c == u'.' && isDigit(at(i + 1))))
            return number(i);
        // Operator characters are ASCII in nearly every line; the ones that are not, and
        // everything else, take the longer way ("$" and quotes before any operator).
        if (c >= 0x80 || c == u'$' || c == u'"' || c == u'\'')
            return other(i);
        const quint8 flags = m_operatorTokens.asciiFlags(c);
        if (!(flags & OperatorTokenSet::operatorCharacter))
            return other(i);
        const char16_t following = at(i + 1);
        if (m_operatorTokens.longestTokenLength() > 2 || following >= 0x80)
            return other(i);
        qsizetype length = 0;
        if ((flags & OperatorTokenSet::startsTwoCharacterToken) && m_operatorTokens.containsAsciiToken(c, following))
            length = 2;
        else if (flags & OperatorTokenSet::singleCharacterToken)
            length = 1;
        else
            return {Token::Kind::unsupported, 0.0, {i, i + 1}};
        m_position = i + length;
        return {Token::Kind::symbol, 0.0, {i, i + length}};
    }

private:
    static bool isDigit(char16_t c) { return char16_t(c - u'0') < 10; }
    static bool isBaseDigit(char16_t c, bool hex)
    {
        if (!hex)
            return c >= u'0' && c <= u'7';
        return isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
    }
    char16_t at(qsizetype index) const { return index < m_size ? m_characters[index] : u'\0'; }
    // Adds the digits from end on to mantissa; where they stop.
    qsizetype readDigits(qsizetype end, quint64 &mantissa) const
    {
        for (; end < m_size; ++end) {
            const char16_t digit = char16_t(m_characters[end] - u'0');
            if (digit >= 10)
                break;
            mantissa = mantissa * 10 + digit;
        }
        return end;
    }

    Token number(qsizetype start)
    {
        // "0x1F", "0o17"; a base mark without digits leaves the 0 a decimal number.
        if (m_characters[start] == u'0') {
            const char16_t mark = casefolding::fold(at(start + 1));
            if ((mark == u'x' || mark == u'o') && isBaseDigit(at(start + 2), mark == u'x'))
                return baseNumber(start, mark == u'x');
        }
        // The value of a plain number is gathered while its digits are read.
        quint64 mantissa = 0;
        qsizetype end = readDigits(start, mantissa);
        qsizetype fractionDigits = 0;
        if (at(end) == u'.') {
            const qsizetype firstFractionDigit = end + 1;
            end = readDigits(firstFractionDigit, mantissa);
            fractionDigits = end - firstFractionDigit;
        }
        const char16_t mark = at(end);
        if (mark == u'e' || mark == u'E')
            return numberWithExponent(start, end);
        m_position = end;
        // Up to kExactDigits significant digits, the digits as an integer are exact, and one
        // division by a power of ten rounds correctly. Twenty digits could have overflowed.
        constexpr quint64 kExactLimit = 1'000'000'000'000'000ull;
        const bool exact = end - start <= 19 && mantissa < kExactLimit && fractionDigits <= numberparsing::kExactDigits;
        return {Token::Kind::number,
                exact ? numberparsing::exactDecimalValue(mantissa, int(fractionDigits))
                      : numberparsing::decimalValue(QStringView(m_characters + start, end - start)),
                {start, end}};
    }

    Token baseNumber(qsizetype start, bool hex);
    Token numberWithExponent(qsizetype start, qsizetype end);
    Token other(qsizetype start);
    Token superscript(qsizetype start);
    Token symbol(qsizetype start);
    bool isNameCharacter(char16_t c) const;

    const char16_t *m_characters;
    qsizetype m_size;
    const OperatorTokenSet &m_operatorTokens;
    qsizetype m_position = 0;
};

} // namespace scrivlet::math
