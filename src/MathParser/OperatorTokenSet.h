#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <array>
#include <bitset>
#include <vector>

namespace scrivlet::math {

// The tokens of an operator set, in the shape the tokenizer asks for them: is this
// character part of any operator, and is this run of characters a whole token. Both tests
// ignore case.
class OperatorTokenSet {
public:
    OperatorTokenSet() = default;
    explicit OperatorTokenSet(const QStringList &tokens);

    bool containsCharacter(QChar character) const
    {
        // Inline for ASCII: the tokenizer asks for every character of every line.
        const char16_t c = character.unicode();
        if (c < 0x80)
            return m_asciiCharacters.test(c >= u'A' && c <= u'Z' ? c + (u'a' - u'A') : c);
        return containsNonAsciiCharacter(c);
    }
    bool containsToken(QStringView token) const;
    // containsToken() for one or two ASCII characters, without a search.
    bool containsAsciiToken(char16_t c) const { return c < 0x80 && m_asciiSingleCharacterTokens.test(asciiFolded(c)); }
    bool containsAsciiToken(char16_t first, char16_t second) const
    {
        return first < 0x80 && second < 0x80 && m_asciiPairTokens.test(asciiFolded(first) * 128u + asciiFolded(second));
    }
    qsizetype longestTokenLength() const { return m_longestTokenLength; }

    // What an ASCII character can be in a token, ignoring case, looked up in one step: the
    // scanner asks for every token of every line.
    enum AsciiFlag : quint8 {
        operatorCharacter = 1,
        singleCharacterToken = 2,
        startsTwoCharacterToken = 4,
    };
    quint8 asciiFlags(char16_t c) const { return m_asciiFlags[c]; }
    const QStringList &tokens() const { return m_tokens; }

private:
    static char16_t asciiFolded(char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + (u'a' - u'A')) : c; }
    bool containsNonAsciiCharacter(char16_t character) const;

    QStringList m_tokens;
    // Case-folded, sorted, for binary search: 1 or 2 characters long in the default set.
    std::vector<QString> m_foldedTokens;
    // Case-folded characters, sorted.
    std::vector<char16_t> m_characters;
    qsizetype m_longestTokenLength = 0;
    // ASCII answers without a search: the characters of "2 + 3 * 4" are all ASCII.
    std::bitset<128> m_asciiCharacters;
    std::bitset<128> m_asciiSingleCharacterTokens;
    // Two-character tokens such as "**" and "<=", by first * 128 + second.
    std::bitset<128 * 128> m_asciiPairTokens;
    std::array<quint8, 128> m_asciiFlags{};
};

} // namespace scrivlet::math
