#pragma once

#include "MathParser/Either.h"
#include "MathParser/MathParserError.h"

namespace scrivlet::math {

template <typename T> using MathResult = Either<T, MathParserError>;

} // namespace scrivlet::math
