#include "calculation/UnitNotation.h"

#include <cmath>
#include <limits>
#include <numeric>

namespace scrivlet {

namespace {

QString wholeText(double whole)
{
    return QString::number(whole, 'f', 0);
}

QString twoDecimals(double value)
{
    // Pounds are always written with a decimal point, whatever the number locale says.
    return QString::asprintf("%.2f", value);
}

// The notations work on the amount without its sign, which then goes in front once:
// "-5' 3\"" rather than "-5' -3\"".
QString withSign(double value, QString (*format)(double, bool), bool flag)
{
    if (value < 0.0) {
        const QString text = format(-value, flag);
        return text == u"0" || text == u"0'" || text == u"0\"" ? text : u'-' + text;
    }
    return format(value, flag);
}

QString feetInches(double feet, bool inchesOnly)
{
    const UnitNotation::Fraction inches = UnitNotation::toFraction(feet * 12.0, 16);
    const double whole = inches.whole;
    const double wholeFeet = std::trunc(whole / 12.0);
    const double rest = whole - wholeFeet * 12.0;
    if (inches.numerator == 0) {
        if (inchesOnly)
            return wholeText(whole) + u'"';
        if (rest == 0.0)
            return wholeText(wholeFeet) + u'\'';
        // Under one foot the feet would only be a "0'": the inches say it all.
        if (wholeFeet == 0.0)
            return wholeText(rest) + u'"';
        return wholeText(wholeFeet) + u"' " + wholeText(rest) + u'"';
    }
    const QString fraction = QString::number(inches.numerator) + u'/' + QString::number(inches.denominator);
    if (inchesOnly || whole <= 11.0)
        return (whole == 0.0 ? fraction : wholeText(whole) + u' ' + fraction) + u'"';
    if (rest == 0.0)
        return wholeText(wholeFeet) + u"' " + fraction + u'"';
    return wholeText(wholeFeet) + u"' " + wholeText(rest) + u' ' + fraction + u'"';
}

QString stonesPounds(double stones, bool poundsOnly)
{
    const double pounds = stones * 14.0;
    const double wholePounds = std::trunc(pounds);
    if (poundsOnly || wholePounds < 14.0)
        return twoDecimals(pounds) + QStringLiteral(" lb");
    const double wholeStones = std::trunc(wholePounds / 14.0);
    const double rest = std::fmod(wholePounds, 14.0) + (pounds - wholePounds);
    if (rest == 0.0)
        return wholeText(wholeStones) + QStringLiteral(" st");
    return wholeText(wholeStones) + QStringLiteral(" st ") + twoDecimals(rest) + QStringLiteral(" lb");
}

QString fractionOnly(double value, bool)
{
    const UnitNotation::Fraction fraction = UnitNotation::toFraction(value, 12, {2, 3, 4});
    if (fraction.numerator < 1)
        return wholeText(fraction.whole);
    const QString part = QString::number(fraction.numerator) + u'/' + QString::number(fraction.denominator);
    return fraction.whole == 0.0 ? part : wholeText(fraction.whole) + u' ' + part;
}

} // namespace

UnitNotation::Fraction UnitNotation::toFraction(double value, int denominator, const std::vector<int> &preferred)
{
    const double whole = std::trunc(value);
    const double part = std::round((value - whole) * denominator) / denominator;
    if (part == 0.0)
        return {whole, 0, 1};
    if (std::fabs(part) == 1.0)
        return {whole + part, 0, 1};

    int numerator = int(std::lround(part * denominator));
    const int divisor = std::gcd(numerator, denominator);
    numerator /= divisor;
    denominator /= divisor;
    if (preferred.empty())
        return {whole, numerator, denominator};

    const double exact = double(numerator) / double(denominator);
    double bestError = std::numeric_limits<double>::infinity();
    for (const int candidate : preferred) {
        const double n = std::round(exact * candidate);
        const double error = std::fabs(n / candidate - exact);
        if (error < bestError) {
            bestError = error;
            numerator = int(n);
            denominator = candidate;
        }
    }
    // Eleven twelfths are nearest to two halves: that is one more whole, not "2/2".
    if (numerator == 0)
        return {whole, 0, 1};
    if (std::abs(numerator) == denominator)
        return {whole + (numerator > 0 ? 1.0 : -1.0), 0, 1};
    return {whole, numerator, denominator};
}

QString UnitNotation::formatFraction(double value)
{
    return withSign(value, fractionOnly, false);
}

QString UnitNotation::formatFeetInches(double feet, bool inchesOnly)
{
    return withSign(feet, feetInches, inchesOnly);
}

QString UnitNotation::formatStones(double stones, bool poundsOnly)
{
    if (stones < 0.0) {
        const QString text = stonesPounds(-stones, poundsOnly);
        return text.startsWith(QStringLiteral("0.00 ")) ? text : u'-' + text;
    }
    return stonesPounds(stones, poundsOnly);
}

} // namespace scrivlet
