#include "MathParser/VariableExtractor.h"

#include "MathParser/Configuration.h"
#include "MathParser/VariableToken.h"

namespace scrivlet::math {

bool VariableExtractor::matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &) const
{
    return buffer.peek() == u'$';
}

Either<RawToken, MathParserError> VariableExtractor::extract(TokenCharacterBuffer &buffer,
                                                             const Configuration &configuration) const
{
    const qsizetype start = buffer.currentIndex();
    if (buffer.peek() != u'$')
        return errorFrom(MathParserError::Kind::cannotParseVariable, start, buffer);
    buffer.consume();
    const qsizetype nameStart = buffer.currentIndex();
    while (!buffer.isAtEnd() && !TokenCharacterBuffer::isWhitespace(buffer.peek()) &&
           !m_operatorTokens.containsCharacter(buffer.peek())) {
        buffer.consume();
    }
    if (buffer.currentIndex() == nameStart && !configuration.allowZeroLengthVariables)
        return errorFrom(MathParserError::Kind::zeroLengthVariable, start, buffer);
    return VariableToken(buffer.textFrom(nameStart), {start, buffer.currentIndex()});
}

} // namespace scrivlet::math
