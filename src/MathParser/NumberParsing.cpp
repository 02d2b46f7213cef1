#include "MathParser/NumberParsing.h"

#include <array>
#include <charconv>
#include <limits>
#include <string>

namespace scrivlet::math::numberparsing {

namespace {

// The decimal exponent of the first significant digit, e.g. 2 for "123.4", -3 for "0.001",
// 5 for "1e5"; used only to tell an overflow from an underflow.
long long magnitude(const char *begin, const char *end)
{
    long long integerDigits = 0;
    long long zerosAfterPoint = 0;
    bool seenPoint = false;
    bool seenSignificant = false;
    const char *p = begin;
    for (; p != end && *p != 'e' && *p != 'E'; ++p) {
        if (*p == '.') {
            seenPoint = true;
        } else if (!seenSignificant && *p == '0') {
            if (seenPoint)
                ++zerosAfterPoint;
        } else {
            seenSignificant = true;
            if (!seenPoint)
                ++integerDigits;
        }
    }
    long long exponent = 0;
    if (p != end) {
        ++p;
        const bool negative = p != end && *p == '-';
        if (p != end && (*p == '-' || *p == '+'))
            ++p;
        for (; p != end; ++p)
            exponent = qMin(exponent * 10 + (*p - '0'), 1000000000LL);
        if (negative)
            exponent = -exponent;
    }
    const long long mantissa = integerDigits > 0 ? integerDigits - 1 : -zerosAfterPoint - 1;
    return mantissa + exponent;
}

double fromAscii(const char *begin, const char *end)
{
    double value = 0.0;
    const auto [ptr, ec] = std::from_chars(begin, end, value);
    Q_UNUSED(ptr);
    if (ec == std::errc::result_out_of_range) {
        // from_chars leaves the value alone when it does not fit a double.
        return magnitude(begin, end) > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    }
    return value;
}

} // namespace

bool fastDecimalValue(QStringView text, double &value)
{
    quint64 mantissa = 0;
    int digits = 0;
    int fractionDigits = 0;
    bool seenPoint = false;
    for (QChar c : text) {
        const char16_t u = c.unicode();
        if (u >= u'0' && u <= u'9') {
            if (mantissa != 0 || u != u'0')
                ++digits;
            if (digits > kExactDigits)
                return false;
            mantissa = mantissa * 10 + (u - u'0');
            if (seenPoint)
                ++fractionDigits;
        } else if (u == u'.' && !seenPoint) {
            seenPoint = true;
        } else {
            return false;
        }
    }
    if (fractionDigits > kExactDigits)
        return false;
    value = exactDecimalValue(mantissa, fractionDigits);
    return true;
}

double decimalValue(QStringView text)
{
    double fast = 0.0;
    if (fastDecimalValue(text, fast))
        return fast;
    // Short numbers, nearly all of them, convert on the stack.
    std::array<char, 64> small;
    std::string large;
    char *out = small.data();
    if (text.size() > qsizetype(small.size())) {
        large.resize(std::size_t(text.size()));
        out = large.data();
    }
    qsizetype length = 0;
    for (QChar c : text)
        out[length++] = c.unicode() == 0x2212 ? '-' : char(c.unicode());
    return fromAscii(out, out + length);
}

double integerValue(QStringView digits, int base)
{
    double value = 0.0;
    for (QChar c : digits) {
        const char16_t u = c.unicode();
        int digit = 0;
        if (u >= u'0' && u <= u'9')
            digit = u - u'0';
        else if (u >= u'a' && u <= u'f')
            digit = u - u'a' + 10;
        else if (u >= u'A' && u <= u'F')
            digit = u - u'A' + 10;
        value = value * base + digit;
    }
    return value;
}

} // namespace scrivlet::math::numberparsing
