#pragma once

#include "MathParser/RawToken.h"

namespace scrivlet::math {

// A number in the format of the configured locale.
class LocalizedNumberToken final : public RawToken {
public:
    LocalizedNumberToken(QStringView string, CharacterRange range, double value)
        : RawToken(Kind::localizedNumber, string, range, value)
    {
    }
};

} // namespace scrivlet::math
