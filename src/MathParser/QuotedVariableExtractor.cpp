#include "MathParser/QuotedVariableExtractor.h"

#include "MathParser/Configuration.h"
#include "MathParser/VariableToken.h"

namespace scrivlet::math {

bool QuotedVariableExtractor::matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &) const
{
    return buffer.peek() == u'"' || buffer.peek() == u'\'';
}

Either<RawToken, MathParserError> QuotedVariableExtractor::extract(TokenCharacterBuffer &buffer,
                                                                   const Configuration &configuration) const
{
    const qsizetype start = buffer.currentIndex();
    const QChar quote = buffer.peek();
    buffer.consume();

    QString name;
    bool closed = false;
    while (!buffer.isAtEnd()) {
        const QChar c = buffer.peek();
        buffer.consume();
        if (c == quote) {
            closed = true;
            break;
        }
        if (c != u'\\') {
            name.append(c);
            continue;
        }
        if (buffer.isAtEnd())
            break;
        const QChar escaped = buffer.peek();
        buffer.consume();
        if (!configuration.unescapesQuotedVariables) {
            name.append(c);
            name.append(escaped);
        } else if (escaped == u'n') {
            name.append(u'\n');
        } else if (escaped == u'r') {
            name.append(u'\r');
        } else if (escaped == u't') {
            name.append(u'\t');
        } else if (escaped == u'\\' || escaped == quote) {
            name.append(escaped);
        } else {
            // Not one of the escapes a quoted name knows: the backslash stays in the name.
            name.append(c);
            name.append(escaped);
        }
    }
    if (!closed)
        return errorFrom(MathParserError::Kind::cannotParseQuotedVariable, start, buffer);
    if (name.isEmpty() && !configuration.allowZeroLengthVariables)
        return errorFrom(MathParserError::Kind::zeroLengthVariable, start, buffer);
    return VariableToken(std::move(name), CharacterRange{start, buffer.currentIndex()});
}

} // namespace scrivlet::math
