#pragma once

namespace scrivlet::math::limits {

// The parser and evaluator recurse once per level of nesting. These bounds keep a
// pathological line (a paste of ten thousand "(" or "-") from exhausting the stack: past
// them the line is invalidFormat, which shows as "n/a" like any other bad line.

// Parentheses and function calls inside one another.
constexpr int kMaxNestingDepth = 200;
// Operators and calls applied to one another, e.g. the terms of a long "1+1+1+..." chain.
constexpr int kMaxExpressionHeight = 1000;

} // namespace scrivlet::math::limits
