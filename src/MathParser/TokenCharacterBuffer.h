#pragma once

#include <QChar>
#include <QStringView>

namespace scrivlet::math {

// The text a tokenizer scans, with its read position. Case-insensitive matches fold one
// character at a time instead of keeping a lower-cased copy of the whole line.
class TokenCharacterBuffer {
public:
    explicit TokenCharacterBuffer(QStringView characters) : m_characters(characters) {}

    QStringView characters() const { return m_characters; }
    qsizetype currentIndex() const { return m_currentIndex; }
    void setCurrentIndex(qsizetype index) { m_currentIndex = index; }

    bool isAtEnd() const { return m_currentIndex >= m_characters.size(); }
    // The character at an offset from the read position; a null character past either end.
    QChar peek(qsizetype offset = 0) const
    {
        const qsizetype at = m_currentIndex + offset;
        return at >= 0 && at < m_characters.size() ? m_characters[at] : QChar();
    }
    char16_t lowercasePeek(qsizetype offset = 0) const;
    void consume(qsizetype count = 1) { m_currentIndex += count; }
    // Whether the text at the read position starts with prefix, ignoring case.
    bool hasPrefixIgnoringCase(QStringView prefix) const;
    QStringView textFrom(qsizetype start) const { return m_characters.sliced(start, m_currentIndex - start); }

    void skipWhitespace();
    static bool isWhitespace(QChar character)
    {
        const char16_t c = character.unicode();
        if (c < 0x80)
            return c == u' ' || c == u'\t' || (c >= 0x000A && c <= 0x000D);
        return isNonAsciiWhitespace(c);
    }

private:
    static bool isNonAsciiWhitespace(char16_t character);

    QStringView m_characters;
    qsizetype m_currentIndex = 0;
};

} // namespace scrivlet::math
