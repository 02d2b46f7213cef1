#pragma once

#include "MathParser/RawToken.h"

namespace scrivlet::math {

// A number in plain "." decimal notation, with an optional exponent.
class DecimalNumberToken final : public RawToken {
public:
    DecimalNumberToken(QStringView string, CharacterRange range, double value)
        : RawToken(Kind::decimalNumber, string, range, value)
    {
    }
};

} // namespace scrivlet::math
