#pragma once

#include "MathParser/TokenExtractor.h"

namespace scrivlet::math {

// Numbers in "." decimal notation: "12", ".5", "1.5e3", "2e-3". An "e" without digits behind
// it is not part of the number, so "2e" is 2 followed by the name "e".
class DecimalNumberExtractor final : public TokenExtractor {
public:
    bool matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &configuration) const override;
    Either<RawToken, MathParserError> extract(TokenCharacterBuffer &buffer,
                                              const Configuration &configuration) const override;
};

} // namespace scrivlet::math
