#pragma once

#include <QLocale>
#include <QString>

#include <optional>

namespace scrivlet {

// The number format of the user's locale, as far as calculation cares: the grouping
// separator ("1,200" in an American locale, "1.200" in a German one) and the decimal
// separator. Math lines, sums and the command line read the same process-wide value,
// which the program sets once at start-up from the settings or the command line; until
// then it follows the system locale.
class NumberLocale final {
public:
    // The system's locale (QLocale()).
    NumberLocale();
    explicit NumberLocale(const QLocale &locale);
    // Separators given directly; an empty text means the locale has none.
    NumberLocale(QString groupingSeparator, QString decimalSeparator);

    // A locale by its name ("de_DE", "en_US", "C"); nothing when Qt knows no such locale.
    static std::optional<NumberLocale> fromName(const QString &name);

    // May be empty: a locale without grouping. Callers pick their own fallback.
    const QString &groupingSeparator() const { return m_groupingSeparator; }
    const QString &decimalSeparator() const { return m_decimalSeparator; }
    // True when the decimal separator is "," (or the doubled ",,").
    bool usesDecimalComma() const;

    // Reads a number written with this locale's decimal separator and no grouping:
    // ASCII digits with at most one decimal separator, "12", "0,5" (German) or ".5".
    std::optional<double> readNumber(QStringView text) const;

    static const NumberLocale &current();
    static void setCurrent(const NumberLocale &locale);

    friend bool operator==(const NumberLocale &, const NumberLocale &) = default;

private:
    QString m_groupingSeparator;
    QString m_decimalSeparator;
};

} // namespace scrivlet
