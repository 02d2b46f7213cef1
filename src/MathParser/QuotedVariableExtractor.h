#pragma once

#include "MathParser/TokenExtractor.h"

namespace scrivlet::math {

// Variables written in single or double quotes, so that a name may hold blanks and operator
// characters; a backslash escapes the next character.
class QuotedVariableExtractor final : public TokenExtractor {
public:
    bool matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &configuration) const override;
    Either<RawToken, MathParserError> extract(TokenCharacterBuffer &buffer,
                                              const Configuration &configuration) const override;
};

} // namespace scrivlet::math
