#include "calculation/NumberFormat.h"

#include "calculation/NumberLocale.h"

#include <charconv>
#include <cmath>
#include <string>

namespace scrivlet {

namespace {

// The longest fraction a caller can ask for in practice: a variable's 16 decimals plus
// the extra digits that the smallest double needs to show its first digits.
constexpr int kMaxDecimals = 16 + 330;

// The digits of the shortest round-trip form of a finite, non-zero |value| and the
// power of ten of the first one: 0.00125 gives "125" and -3.
void shortestDigits(double magnitude, std::string &digits, int &exponent)
{
    char buffer[64];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific);
    Q_ASSERT(error == std::errc());
    const std::string text(buffer, end);
    const auto e = text.find('e');
    digits.clear();
    for (size_t i = 0; i < e; ++i) {
        if (text[i] != '.')
            digits.push_back(text[i]);
    }
    exponent = std::stoi(text.substr(e + 1));
}

// Writes |value| as whole digits and exactly `decimals` fraction digits, rounding the
// shortest decimal form half to even. Returns the whole part and the fraction.
void fixedDigits(double magnitude, int decimals, std::string &whole, std::string &fraction)
{
    if (magnitude == 0) {
        whole = "0";
        fraction.assign(size_t(decimals), '0');
        return;
    }
    std::string digits;
    int exponent = 0;
    shortestDigits(magnitude, digits, exponent);

    // Lay the digits out on a fixed grid: position 0 is the first whole digit.
    const int wholeCount = exponent >= 0 ? exponent + 1 : 1;
    const int leadingZeros = exponent >= 0 ? 0 : -exponent - 1; // zeros right after the point
    const int keep = wholeCount + decimals;
    // Whole digits, then the fraction; a leading "0" left free for a carry.
    std::string grid;
    grid.reserve(size_t(std::max<int>(keep, wholeCount + leadingZeros + int(digits.size()))) + 2);
    grid.push_back('0');
    if (exponent < 0)
        grid.append(size_t(1 + leadingZeros), '0');
    grid.append(digits);
    if (int(grid.size()) < 1 + wholeCount)
        grid.append(size_t(1 + wholeCount - int(grid.size())), '0');
    const int keepWithCarry = keep + 1;
    if (int(grid.size()) > keepWithCarry) {
        const char next = grid[size_t(keepWithCarry)];
        bool roundUp = false;
        if (next > '5') {
            roundUp = true;
        } else if (next == '5') {
            const bool moreAfter = grid.find_first_not_of('0', size_t(keepWithCarry) + 1) != std::string::npos;
            const bool lastOdd = (grid[size_t(keepWithCarry) - 1] - '0') % 2 == 1;
            roundUp = moreAfter || lastOdd;
        }
        grid.resize(size_t(keepWithCarry));
        if (roundUp) {
            size_t i = size_t(keepWithCarry) - 1;
            while (grid[i] == '9') {
                grid[i] = '0';
                --i;
            }
            ++grid[i];
        }
    } else {
        grid.append(size_t(keepWithCarry - int(grid.size())), '0');
    }
    // The carry digit stays only when a carry reached it: "9.99" to one decimal is "10.0".
    const size_t first = grid.front() == '0' ? 1 : 0;
    const size_t wholeEnd = grid.size() - size_t(decimals);
    whole.assign(grid, first, wholeEnd - first);
    fraction.assign(grid, wholeEnd, std::string::npos);
}

} // namespace

std::optional<QString> formatNumber(double value, int decimals, QStringView symbol, bool useThousandSeparators)
{
    if (decimals < 0)
        return std::nullopt;
    if (std::isnan(value))
        return symbol.toString() + QStringLiteral("NaN");
    if (std::isinf(value))
        return symbol.toString() + (value < 0 ? QStringLiteral("-∞") : QStringLiteral("∞"));

    const double magnitude = std::fabs(value);
    // A tiny result still shows its first digits: 0.001 with 2 decimals is "0.00100".
    if (magnitude != 0 && magnitude < std::pow(10.0, -decimals))
        decimals += int(-std::log10(magnitude));
    decimals = std::min(decimals, kMaxDecimals);

    std::string whole;
    std::string fraction;
    fixedDigits(magnitude, decimals, whole, fraction);

    const NumberLocale &locale = NumberLocale::current();
    const QString decimalSeparator =
        locale.decimalSeparator().isEmpty() ? QStringLiteral(".") : locale.decimalSeparator();
    const QString grouping = useThousandSeparators ? locale.groupingSeparator() : QString();

    QString text;
    text.reserve(qsizetype(whole.size() + fraction.size()) + 8 + symbol.size());
    text += symbol;
    // Negative zero is shown as zero: "-0.00" only confuses.
    const bool allZero =
        whole.find_first_not_of('0') == std::string::npos && fraction.find_first_not_of('0') == std::string::npos;
    if (value < 0 && !allZero)
        text += u'-';
    for (size_t i = 0; i < whole.size(); ++i) {
        if (i > 0 && !grouping.isEmpty() && (whole.size() - i) % 3 == 0)
            text += grouping;
        text += QChar(char16_t(whole[i]));
    }
    if (decimals > 0) {
        text += decimalSeparator;
        text += QLatin1StringView(fraction.data(), qsizetype(fraction.size()));
    }
    return text;
}

} // namespace scrivlet
