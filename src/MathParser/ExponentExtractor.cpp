#include "MathParser/ExponentExtractor.h"

#include "MathParser/ExponentToken.h"

namespace scrivlet::math {

QChar ExponentExtractor::plainCharacter(QChar superscript)
{
    switch (superscript.unicode()) {
    case u'⁰':
        return u'0';
    case u'¹':
        return u'1';
    case u'²':
        return u'2';
    case u'³':
        return u'3';
    case u'⁴':
        return u'4';
    case u'⁵':
        return u'5';
    case u'⁶':
        return u'6';
    case u'⁷':
        return u'7';
    case u'⁸':
        return u'8';
    case u'⁹':
        return u'9';
    case u'⁺':
        return u'+';
    case u'⁻':
        return u'-';
    case u'⁽':
        return u'(';
    case u'⁾':
        return u')';
    default:
        return QChar();
    }
}

bool ExponentExtractor::matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &) const
{
    return !plainCharacter(buffer.peek()).isNull();
}

Either<RawToken, MathParserError> ExponentExtractor::extract(TokenCharacterBuffer &buffer, const Configuration &) const
{
    const qsizetype start = buffer.currentIndex();
    QString mapped;
    for (QChar plain = plainCharacter(buffer.peek()); !plain.isNull(); plain = plainCharacter(buffer.peek())) {
        mapped.append(plain);
        buffer.consume();
    }
    if (mapped.isEmpty())
        return errorFrom(MathParserError::Kind::cannotParseExponent, start, buffer);
    return ExponentToken(std::move(mapped), {start, buffer.currentIndex()});
}

} // namespace scrivlet::math
