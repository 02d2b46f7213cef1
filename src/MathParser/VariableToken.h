#pragma once

#include "MathParser/RawToken.h"

namespace scrivlet::math {

// A variable name, written after "$" or in quotes; its text is the bare name.
class VariableToken final : public RawToken {
public:
    VariableToken(QStringView name, CharacterRange range) : RawToken(Kind::variable, name, range) {}
    VariableToken(QString unescapedName, CharacterRange range)
        : RawToken(Kind::variable, std::move(unescapedName), range)
    {
    }
};

} // namespace scrivlet::math
