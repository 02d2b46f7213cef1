#include "MathParser/HexNumberExtractor.h"

#include "MathParser/HexNumberToken.h"
#include "MathParser/NumberParsing.h"

namespace scrivlet::math {

namespace {

bool isHexDigit(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= u'0' && u <= u'9') || (u >= u'a' && u <= u'f') || (u >= u'A' && u <= u'F');
}

} // namespace

bool HexNumberExtractor::matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &) const
{
    return buffer.peek() == u'0' && buffer.lowercasePeek(1) == u'x';
}

Either<RawToken, MathParserError> HexNumberExtractor::extract(TokenCharacterBuffer &buffer, const Configuration &) const
{
    const qsizetype start = buffer.currentIndex();
    buffer.consume(2);
    const qsizetype digitsStart = buffer.currentIndex();
    while (isHexDigit(buffer.peek()))
        buffer.consume();
    if (buffer.currentIndex() == digitsStart)
        return errorFrom(MathParserError::Kind::cannotParseHexNumber, start, buffer);
    const QStringView digits = buffer.textFrom(digitsStart);
    return HexNumberToken(buffer.textFrom(start), {start, buffer.currentIndex()},
                          numberparsing::integerValue(digits, 16));
}

} // namespace scrivlet::math
