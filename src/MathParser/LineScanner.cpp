#include "MathParser/LineScanner.h"

#include "MathParser/ExponentExtractor.h"
#include "MathParser/FractionNumberExtractor.h"

namespace scrivlet::math {

using Kind = LineScanner::Token::Kind;

LineScanner::Token LineScanner::baseNumber(qsizetype start, bool hex)
{
    qsizetype end = start + 2;
    while (isBaseDigit(at(end), hex))
        ++end;
    m_position = end;
    return {Kind::number,
            numberparsing::integerValue(QStringView(m_characters + start + 2, end - start - 2), hex ? 16 : 8),
            {start, end}};
}

// An exponent needs a digit: "2e3" is 2000, but in "2e" and "2e-x" the "e" is a name.
LineScanner::Token LineScanner::numberWithExponent(qsizetype start, qsizetype end)
{
    qsizetype exponent = end + 1;
    const char16_t sign = at(exponent);
    if (sign == u'-' || sign == u'+' || sign == 0x2212)
        ++exponent;
    if (isDigit(at(exponent))) {
        while (isDigit(at(exponent)))
            ++exponent;
        end = exponent;
    }
    m_position = end;
    return {Kind::number, numberparsing::decimalValue(QStringView(m_characters + start, end - start)), {start, end}};
}

LineScanner::Token LineScanner::other(qsizetype start)
{
    const char16_t c = m_characters[start];
    if (c >= 0x80) {
        if (FractionNumberExtractor::fractionValue(QChar(c)))
            return {Kind::unsupported, 0.0, {start, start + 1}};
        if (!ExponentExtractor::plainCharacter(QChar(c)).isNull())
            return superscript(start);
    }
    if (c == u'$') {
        qsizetype end = start + 1;
        while (end < m_size && isNameCharacter(m_characters[end]))
            ++end;
        if (end == start + 1)
            return {Kind::unsupported, 0.0, {start, end}};
        m_position = end;
        return {Kind::variable, 0.0, {start, end}};
    }
    if (c == u'"' || c == u'\'')
        return {Kind::unsupported, 0.0, {start, start + 1}};
    if (m_operatorTokens.containsCharacter(QChar(c)))
        return symbol(start);

    qsizetype end = start + 1;
    while (end < m_size && isNameCharacter(m_characters[end]))
        ++end;
    m_position = end;
    return {Kind::name, 0.0, {start, end}};
}

bool LineScanner::isNameCharacter(char16_t c) const
{
    return !TokenCharacterBuffer::isWhitespace(QChar(c)) && !m_operatorTokens.containsCharacter(QChar(c));
}

// "2³" is "2 ** (3)". Only superscript digits are read here.
LineScanner::Token LineScanner::superscript(qsizetype start)
{
    // Longer runs are no power anyone types; the staged parser reads them all the same.
    constexpr qsizetype kLongestRun = 15;
    char16_t digits[kLongestRun];
    qsizetype length = 0;
    qsizetype end = start;
    for (;; ++end) {
        const QChar plain = ExponentExtractor::plainCharacter(QChar(at(end)));
        if (plain.isNull())
            break;
        if (!isDigit(plain.unicode()) || length == kLongestRun)
            return {Kind::unsupported, 0.0, {start, end}};
        digits[length++] = plain.unicode();
    }
    m_position = end;
    return {Kind::superscript, numberparsing::decimalValue(QStringView(digits, length)), {start, end}};
}

// The longest run of operator characters that is a token, so "**" wins over "*".
LineScanner::Token LineScanner::symbol(qsizetype start)
{
    const QStringView text(m_characters, m_size);
    qsizetype length = 0;
    while (length < m_operatorTokens.longestTokenLength() && start + length < m_size &&
           m_operatorTokens.containsCharacter(QChar(m_characters[start + length]))) {
        ++length;
    }
    while (length > 0 && !m_operatorTokens.containsToken(text.sliced(start, length)))
        --length;
    if (length == 0)
        return {Kind::unsupported, 0.0, {start, start + 1}};
    m_position = start + length;
    return {Kind::symbol, 0.0, {start, start + length}};
}

} // namespace scrivlet::math
