#pragma once

#include "MathParser/TokenExtractor.h"

#include <optional>

namespace scrivlet::math {

// One of the fifteen vulgar fraction characters, "½" to "⅞".
class FractionNumberExtractor final : public TokenExtractor {
public:
    // The value of a vulgar fraction character; none for any other character.
    static std::optional<double> fractionValue(QChar character);
    bool matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &configuration) const override;
    Either<RawToken, MathParserError> extract(TokenCharacterBuffer &buffer,
                                              const Configuration &configuration) const override;
};

} // namespace scrivlet::math
