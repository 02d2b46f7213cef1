#pragma once

#include "MathParser/RawToken.h"

namespace scrivlet::math {

// A number written in base 16 after "0x".
class HexNumberToken final : public RawToken {
public:
    HexNumberToken(QStringView string, CharacterRange range, double value)
        : RawToken(Kind::hexNumber, string, range, value)
    {
    }
};

} // namespace scrivlet::math
