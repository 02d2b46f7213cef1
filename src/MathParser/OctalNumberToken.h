#pragma once

#include "MathParser/RawToken.h"

namespace scrivlet::math {

// A number written in base 8 after "0o".
class OctalNumberToken final : public RawToken {
public:
    OctalNumberToken(QStringView string, CharacterRange range, double value)
        : RawToken(Kind::octalNumber, string, range, value)
    {
    }
};

} // namespace scrivlet::math
