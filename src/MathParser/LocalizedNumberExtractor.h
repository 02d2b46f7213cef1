#pragma once

#include "MathParser/TokenExtractor.h"

#include <QLocale>

namespace scrivlet::math {

// Numbers in the format of a locale, "1.234,5" in German: the longest prefix the locale reads
// as a number.
class LocalizedNumberExtractor final : public TokenExtractor {
public:
    explicit LocalizedNumberExtractor(const QLocale &locale);
    bool matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &configuration) const override;
    Either<RawToken, MathParserError> extract(TokenCharacterBuffer &buffer,
                                              const Configuration &configuration) const override;

private:
    QLocale m_decimalNumberFormatter;
    QString m_decimalPoint;
    QString m_groupSeparator;
};

} // namespace scrivlet::math
