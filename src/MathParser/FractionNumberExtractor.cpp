#include "MathParser/FractionNumberExtractor.h"

#include "MathParser/FractionNumberToken.h"

namespace scrivlet::math {

std::optional<double> FractionNumberExtractor::fractionValue(QChar character)
{
    switch (character.unicode()) {
    case u'½':
        return 0.5;
    case u'⅓':
        return 1.0 / 3.0;
    case u'⅔':
        return 2.0 / 3.0;
    case u'¼':
        return 0.25;
    case u'¾':
        return 0.75;
    case u'⅕':
        return 0.2;
    case u'⅖':
        return 0.4;
    case u'⅗':
        return 0.6;
    case u'⅘':
        return 0.8;
    case u'⅙':
        return 1.0 / 6.0;
    case u'⅚':
        return 5.0 / 6.0;
    case u'⅛':
        return 0.125;
    case u'⅜':
        return 0.375;
    case u'⅝':
        return 0.625;
    case u'⅞':
        return 0.875;
    default:
        return std::nullopt;
    }
}

bool FractionNumberExtractor::matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &) const
{
    return fractionValue(buffer.peek()).has_value();
}

Either<RawToken, MathParserError> FractionNumberExtractor::extract(TokenCharacterBuffer &buffer,
                                                                   const Configuration &) const
{
    const qsizetype start = buffer.currentIndex();
    const std::optional<double> value = fractionValue(buffer.peek());
    if (!value)
        return errorFrom(MathParserError::Kind::cannotParseFractionalNumber, start, buffer);
    buffer.consume();
    return FractionNumberToken(buffer.textFrom(start), {start, buffer.currentIndex()}, *value);
}

} // namespace scrivlet::math
