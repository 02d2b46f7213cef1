#include "MathParser/LocalizedNumberExtractor.h"

#include "MathParser/LocalizedNumberToken.h"

namespace scrivlet::math {

namespace {

// No number anyone writes is longer; the cap keeps the longest-prefix search short on a
// pathological line of digits.
constexpr qsizetype kLongestLocalizedNumber = 64;

bool isDigit(QChar c)
{
    return c.unicode() >= u'0' && c.unicode() <= u'9';
}

} // namespace

LocalizedNumberExtractor::LocalizedNumberExtractor(const QLocale &locale)
    : m_decimalNumberFormatter(locale), m_decimalPoint(locale.decimalPoint()), m_groupSeparator(locale.groupSeparator())
{
}

bool LocalizedNumberExtractor::matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &) const
{
    if (isDigit(buffer.peek()))
        return true;
    return !m_decimalPoint.isEmpty() && buffer.characters().sliced(buffer.currentIndex()).startsWith(m_decimalPoint) &&
           isDigit(buffer.peek(m_decimalPoint.size()));
}

Either<RawToken, MathParserError> LocalizedNumberExtractor::extract(TokenCharacterBuffer &buffer,
                                                                    const Configuration &) const
{
    const qsizetype start = buffer.currentIndex();
    const QStringView rest = buffer.characters().sliced(start);

    // The stretch of characters a number in this locale can be made of.
    qsizetype candidate = 0;
    while (candidate < rest.size() && candidate < kLongestLocalizedNumber) {
        const QStringView here = rest.sliced(candidate);
        const QChar c = here.front();
        if (isDigit(c)) {
            ++candidate;
        } else if (!m_decimalPoint.isEmpty() && here.startsWith(m_decimalPoint)) {
            candidate += m_decimalPoint.size();
        } else if (!m_groupSeparator.isEmpty() && here.startsWith(m_groupSeparator)) {
            candidate += m_groupSeparator.size();
        } else if ((c == u'e' || c == u'E') && candidate > 0) {
            ++candidate;
            if (candidate < rest.size() && (rest[candidate] == u'-' || rest[candidate] == u'+'))
                ++candidate;
        } else {
            break;
        }
    }
    candidate = qMin(candidate, kLongestLocalizedNumber);

    for (qsizetype length = candidate; length > 0; --length) {
        bool ok = false;
        const double value = m_decimalNumberFormatter.toDouble(rest.first(length), &ok);
        if (ok) {
            buffer.consume(length);
            return LocalizedNumberToken(rest.first(length), {start, start + length}, value);
        }
    }
    return errorFrom(MathParserError::Kind::cannotParseLocalizedNumber, start, buffer);
}

} // namespace scrivlet::math
