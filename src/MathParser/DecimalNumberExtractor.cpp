#include "MathParser/DecimalNumberExtractor.h"

#include "MathParser/DecimalNumberToken.h"
#include "MathParser/NumberParsing.h"

namespace scrivlet::math {

namespace {

bool isDigit(QChar c)
{
    return c.unicode() >= u'0' && c.unicode() <= u'9';
}

} // namespace

bool DecimalNumberExtractor::matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &) const
{
    return isDigit(buffer.peek()) || (buffer.peek() == u'.' && isDigit(buffer.peek(1)));
}

Either<RawToken, MathParserError> DecimalNumberExtractor::extract(TokenCharacterBuffer &buffer,
                                                                  const Configuration &) const
{
    const qsizetype start = buffer.currentIndex();
    bool seenPoint = false;
    qsizetype digitCount = 0;
    for (;;) {
        const QChar c = buffer.peek();
        if (isDigit(c)) {
            ++digitCount;
        } else if (c == u'.' && !seenPoint) {
            seenPoint = true;
        } else {
            break;
        }
        buffer.consume();
    }
    if (digitCount == 0)
        return errorFrom(MathParserError::Kind::cannotParseNumber, start, buffer);

    const QChar mark = buffer.peek();
    if (mark == u'e' || mark == u'E') {
        const qsizetype beforeMark = buffer.currentIndex();
        buffer.consume();
        const QChar sign = buffer.peek();
        if (sign == u'-' || sign == u'+' || sign.unicode() == 0x2212)
            buffer.consume();
        if (isDigit(buffer.peek())) {
            while (isDigit(buffer.peek()))
                buffer.consume();
        } else {
            buffer.setCurrentIndex(beforeMark);
        }
    }
    const QStringView text = buffer.textFrom(start);
    return DecimalNumberToken(text, {start, buffer.currentIndex()}, numberparsing::decimalValue(text));
}

} // namespace scrivlet::math
