#pragma once

#include "MathParser/TokenExtractor.h"

namespace scrivlet::math {

// Numbers written "0x1F": the digits 0 to 9 and a to f in either case.
class HexNumberExtractor final : public TokenExtractor {
public:
    bool matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &configuration) const override;
    Either<RawToken, MathParserError> extract(TokenCharacterBuffer &buffer,
                                              const Configuration &configuration) const override;
};

} // namespace scrivlet::math
