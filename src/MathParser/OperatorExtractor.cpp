#include "MathParser/OperatorExtractor.h"

#include "MathParser/OperatorToken.h"

namespace scrivlet::math {

bool OperatorExtractor::matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &) const
{
    return !buffer.isAtEnd() && m_operatorTokens.containsCharacter(buffer.peek());
}

Either<RawToken, MathParserError> OperatorExtractor::extract(TokenCharacterBuffer &buffer, const Configuration &) const
{
    const qsizetype start = buffer.currentIndex();
    const QStringView text = buffer.characters();
    // Only as far as the longest token: a line of ten thousand minus signs is still read
    // one short look-ahead at a time.
    qsizetype run = 0;
    while (run < m_operatorTokens.longestTokenLength() && start + run < text.size() &&
           m_operatorTokens.containsCharacter(text[start + run])) {
        ++run;
    }
    for (qsizetype length = run; length > 0; --length) {
        const QStringView candidate = text.sliced(start, length);
        if (m_operatorTokens.containsToken(candidate)) {
            buffer.consume(length);
            return OperatorToken(candidate, {start, start + length});
        }
    }
    buffer.consume(qMax<qsizetype>(run, 1));
    return errorFrom(MathParserError::Kind::cannotParseOperator, start, buffer);
}

} // namespace scrivlet::math
