#pragma once

#include "MathParser/RawToken.h"

namespace scrivlet::math {

// A run of operator characters that forms a known token.
class OperatorToken final : public RawToken {
public:
    OperatorToken(QStringView string, CharacterRange range) : RawToken(Kind::operatorSymbol, string, range) {}
};

} // namespace scrivlet::math
