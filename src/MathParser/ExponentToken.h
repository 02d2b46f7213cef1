#pragma once

#include "MathParser/RawToken.h"

namespace scrivlet::math {

// A run of superscript characters; its text is the run mapped to ordinary characters.
class ExponentToken final : public RawToken {
public:
    ExponentToken(QString mappedString, CharacterRange range) : RawToken(Kind::exponent, std::move(mappedString), range)
    {
    }
};

} // namespace scrivlet::math
