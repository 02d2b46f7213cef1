#pragma once

#include "MathParser/RawToken.h"

namespace scrivlet::math {

// One vulgar fraction character such as "½".
class FractionNumberToken final : public RawToken {
public:
    FractionNumberToken(QStringView string, CharacterRange range, double value)
        : RawToken(Kind::fractionNumber, string, range, value)
    {
    }
};

} // namespace scrivlet::math
