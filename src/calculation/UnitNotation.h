#pragma once

#include <QString>

#include <vector>

namespace scrivlet {

// How converted amounts of some units are written: kitchen measures as fractions a cook
// can measure ("4 1/4 cup"), lengths in feet and inches to the sixteenth
// ("5' 3 1/2\""), body weights in stones and pounds ("15 st 10.46 lb").
class UnitNotation final {
public:
    UnitNotation() = delete;

    struct Fraction {
        double whole;
        int numerator;
        int denominator;
        friend bool operator==(const Fraction &, const Fraction &) = default;
    };

    // `value` as a whole number and a fraction rounded to 1/`denominator`, reduced. With
    // `preferred` denominators, the fraction becomes the nearest with one of them, the
    // earliest among equally near ones; a fraction that rounds to nothing or to one
    // whole leaves only the whole number.
    static Fraction toFraction(double value, int denominator, const std::vector<int> &preferred = {});

    // Twelfths shown as halves, thirds or quarters: "1/4", "4 1/4", "3".
    static QString formatFraction(double value);
    // `feet` in feet and inches to the sixteenth of an inch: "10'", "5' 3\"", "5' 3 1/2\"",
    // "4 1/2\"" under one foot. With `inchesOnly`, all in inches: "120\"".
    static QString formatFeetInches(double feet, bool inchesOnly);
    // `stones` in stones and pounds from one stone up ("15 st 10.46 lb", "2 st"), in
    // pounds below that; with `poundsOnly`, always in pounds ("2.00 lb").
    static QString formatStones(double stones, bool poundsOnly);
};

} // namespace scrivlet
