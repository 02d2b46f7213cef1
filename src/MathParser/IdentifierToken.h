#pragma once

#include "MathParser/RawToken.h"

namespace scrivlet::math {

// A function or constant name.
class IdentifierToken final : public RawToken {
public:
    IdentifierToken(QStringView string, CharacterRange range) : RawToken(Kind::identifier, string, range) {}
};

} // namespace scrivlet::math
