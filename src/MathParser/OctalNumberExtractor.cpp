#include "MathParser/OctalNumberExtractor.h"

#include "MathParser/NumberParsing.h"
#include "MathParser/OctalNumberToken.h"

namespace scrivlet::math {

bool OctalNumberExtractor::matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &) const
{
    return buffer.peek() == u'0' && buffer.lowercasePeek(1) == u'o';
}

Either<RawToken, MathParserError> OctalNumberExtractor::extract(TokenCharacterBuffer &buffer,
                                                                const Configuration &) const
{
    const qsizetype start = buffer.currentIndex();
    buffer.consume(2);
    const qsizetype digitsStart = buffer.currentIndex();
    while (buffer.peek() >= u'0' && buffer.peek() <= u'7')
        buffer.consume();
    if (buffer.currentIndex() == digitsStart)
        return errorFrom(MathParserError::Kind::cannotParseOctalNumber, start, buffer);
    const QStringView digits = buffer.textFrom(digitsStart);
    return OctalNumberToken(buffer.textFrom(start), {start, buffer.currentIndex()},
                            numberparsing::integerValue(digits, 8));
}

} // namespace scrivlet::math
