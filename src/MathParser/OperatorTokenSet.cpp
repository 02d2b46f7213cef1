#include "MathParser/OperatorTokenSet.h"

#include "MathParser/CaseFolding.h"

#include <algorithm>

namespace scrivlet::math {

OperatorTokenSet::OperatorTokenSet(const QStringList &tokens) : m_tokens(tokens)
{
    for (const QString &token : tokens) {
        QString folded;
        folded.reserve(token.size());
        for (QChar c : token) {
            const char16_t f = casefolding::fold(c.unicode());
            folded.append(QChar(f));
            m_characters.push_back(f);
        }
        m_foldedTokens.push_back(folded);
        if (folded.size() == 1 && folded.front().unicode() < 0x80)
            m_asciiSingleCharacterTokens.set(folded.front().unicode());
        if (folded.size() == 2 && folded[0].unicode() < 0x80 && folded[1].unicode() < 0x80)
            m_asciiPairTokens.set(folded[0].unicode() * 128u + folded[1].unicode());
        m_longestTokenLength = qMax(m_longestTokenLength, token.size());
    }
    std::sort(m_foldedTokens.begin(), m_foldedTokens.end());
    m_foldedTokens.erase(std::unique(m_foldedTokens.begin(), m_foldedTokens.end()), m_foldedTokens.end());
    for (char16_t c : m_characters) {
        if (c < 0x80)
            m_asciiCharacters.set(c);
    }
    for (char16_t c = 0; c < 0x80; ++c) {
        const char16_t folded = asciiFolded(c);
        quint8 flags = 0;
        if (m_asciiCharacters.test(folded))
            flags |= operatorCharacter;
        if (m_asciiSingleCharacterTokens.test(folded))
            flags |= singleCharacterToken;
        for (char16_t second = 0; second < 0x80; ++second) {
            if (m_asciiPairTokens.test(folded * 128u + second))
                flags |= startsTwoCharacterToken;
        }
        m_asciiFlags[c] = flags;
    }
    std::sort(m_characters.begin(), m_characters.end());
    m_characters.erase(std::unique(m_characters.begin(), m_characters.end()), m_characters.end());
}

bool OperatorTokenSet::containsNonAsciiCharacter(char16_t character) const
{
    const char16_t folded = casefolding::fold(character);
    if (folded < 0x80)
        return m_asciiCharacters.test(folded);
    return std::binary_search(m_characters.begin(), m_characters.end(), folded);
}

bool OperatorTokenSet::containsToken(QStringView token) const
{
    if (token.size() == 1) {
        const char16_t folded = casefolding::fold(token.front().unicode());
        if (folded < 0x80)
            return m_asciiSingleCharacterTokens.test(folded);
    }
    const auto it = std::lower_bound(m_foldedTokens.begin(), m_foldedTokens.end(), token,
                                     [](const QString &a, QStringView b) { return casefolding::compare(a, b) < 0; });
    return it != m_foldedTokens.end() && casefolding::equal(*it, token);
}

} // namespace scrivlet::math
