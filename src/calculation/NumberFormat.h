#pragma once

#include <QString>

#include <optional>

namespace scrivlet {

// The one number format of the program: every result behind a math line's "=", every
// total of a sum or average note and every value substituted for a variable.
//
// `decimals` fraction digits are always written, "137.00" rather than "137"; a value too
// small to show any digit with that many decimals gets as many more as it needs to show
// its first digits ("0.00100" for 0.001 with 2 decimals). `symbol` goes in front. The
// grouping and decimal separators are those of NumberLocale::current(); grouping is left
// out when `useThousandSeparators` is false.
//
// Rounding works on the shortest decimal text that reads back as `value`, and an exact
// tie goes to the even digit: 0.125 and 1.005 both give "x.x2"/"1.00" with 2 decimals,
// 0.375 gives "0.38". Not-a-number and the infinities are written "NaN", "∞" and "-∞".
// Nothing comes back only when `decimals` is negative.
std::optional<QString> formatNumber(double value, int decimals, QStringView symbol, bool useThousandSeparators = true);

} // namespace scrivlet
