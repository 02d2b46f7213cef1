#include "MathParser/IdentifierExtractor.h"

#include "MathParser/IdentifierToken.h"

namespace scrivlet::math {

bool IdentifierExtractor::matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &) const
{
    return !buffer.isAtEnd() && !TokenCharacterBuffer::isWhitespace(buffer.peek()) &&
           !m_operatorTokens.containsCharacter(buffer.peek());
}

Either<RawToken, MathParserError> IdentifierExtractor::extract(TokenCharacterBuffer &buffer,
                                                               const Configuration &) const
{
    const qsizetype start = buffer.currentIndex();
    while (!buffer.isAtEnd() && !TokenCharacterBuffer::isWhitespace(buffer.peek()) &&
           !m_operatorTokens.containsCharacter(buffer.peek())) {
        buffer.consume();
    }
    if (buffer.currentIndex() == start)
        return errorFrom(MathParserError::Kind::cannotParseIdentifier, start, buffer);
    return IdentifierToken(buffer.textFrom(start), {start, buffer.currentIndex()});
}

} // namespace scrivlet::math
