#include "MathParser/TokenCharacterBuffer.h"

#include "MathParser/CaseFolding.h"

namespace scrivlet::math {

char16_t TokenCharacterBuffer::lowercasePeek(qsizetype offset) const
{
    return casefolding::fold(peek(offset).unicode());
}

bool TokenCharacterBuffer::hasPrefixIgnoringCase(QStringView prefix) const
{
    if (m_characters.size() - m_currentIndex < prefix.size())
        return false;
    return casefolding::equal(m_characters.sliced(m_currentIndex, prefix.size()), prefix);
}

void TokenCharacterBuffer::skipWhitespace()
{
    while (!isAtEnd() && isWhitespace(m_characters[m_currentIndex]))
        ++m_currentIndex;
}

bool TokenCharacterBuffer::isNonAsciiWhitespace(char16_t c)
{
    return c == 0x0085 || c == 0x00A0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200B) || c == 0x2028 || c == 0x2029 ||
           c == 0x202F || c == 0x205F || c == 0x3000;
}

} // namespace scrivlet::math
