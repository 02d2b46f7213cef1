#pragma once

#include "MathParser/TokenExtractor.h"

namespace scrivlet::math {

// A run of superscript characters, "²" or "⁻¹", which the resolver turns into a power.
class ExponentExtractor final : public TokenExtractor {
public:
    // The ordinary character a superscript stands for; a null character for any other.
    static QChar plainCharacter(QChar superscript);
    bool matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &configuration) const override;
    Either<RawToken, MathParserError> extract(TokenCharacterBuffer &buffer,
                                              const Configuration &configuration) const override;
};

} // namespace scrivlet::math
