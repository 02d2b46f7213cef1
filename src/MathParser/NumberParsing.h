#pragma once

#include <QStringView>

#include <array>

namespace scrivlet::math::numberparsing {

// Reads a decimal number in C notation ("1.5", ".5", "1e-3", "−" allowed as the exponent's
// minus) without consulting the process locale. Numbers too large for a double are
// infinity and too small ones zero: an overflow is a value, not a failure.
double decimalValue(QStringView text);

// Plain numbers of up to kExactDigits significant digits, "12", "3.25", are exact as
// integers, and one division by an exact power of ten rounds them correctly: no general
// conversion needed. The value of the digits read as the integer mantissa, with
// fractionDigits of them behind the point.
constexpr int kExactDigits = 15;
inline double exactDecimalValue(quint64 mantissa, int fractionDigits)
{
    static constexpr std::array<double, kExactDigits + 1> kPowersOfTen = {
        1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    return double(mantissa) / kPowersOfTen[std::size_t(fractionDigits)];
}

// Reads digits in base 16 or 8; digits that do not belong to the base are not expected.
double integerValue(QStringView digits, int base);

} // namespace scrivlet::math::numberparsing
