#pragma once

#include "MathParser/Either.h"
#include "MathParser/MathParserError.h"
#include "MathParser/RawToken.h"
#include "MathParser/TokenCharacterBuffer.h"

namespace scrivlet::math {

struct Configuration;

// One kind of token the tokenizer can cut. The tokenizer asks each extractor in a fixed
// order whether the text at the read position could start its kind of token, and lets the
// first that says yes try.
class TokenExtractor {
public:
    virtual ~TokenExtractor() = default;

    virtual bool matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &configuration) const = 0;
    // Reads the token at the read position and leaves the position behind it.
    virtual Either<RawToken, MathParserError> extract(TokenCharacterBuffer &buffer,
                                                      const Configuration &configuration) const = 0;

protected:
    static MathParserError errorFrom(MathParserError::Kind kind, qsizetype start, const TokenCharacterBuffer &buffer)
    {
        return MathParserError(kind, CharacterRange{start, qMax(start + 1, buffer.currentIndex())});
    }
};

} // namespace scrivlet::math
