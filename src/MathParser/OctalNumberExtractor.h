#pragma once

#include "MathParser/TokenExtractor.h"

namespace scrivlet::math {

// Numbers written "0o17": the digits 0 to 7.
class OctalNumberExtractor final : public TokenExtractor {
public:
    bool matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &configuration) const override;
    Either<RawToken, MathParserError> extract(TokenCharacterBuffer &buffer,
                                              const Configuration &configuration) const override;
};

} // namespace scrivlet::math
