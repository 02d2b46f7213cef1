#pragma once

#include "calculation/ConversionService.h"
#include "calculation/Unit.h"
#include "shell/preferences/MathPreferences.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace scrivlet {

class CurrencyRates;
class SettingsStore;

// Unit and currency conversion on a math line: "89 miles to km", "4\" 2' to cm",
// "$32 USD to JPY", or a bare "$24", which converts between the user's primary and
// secondary currencies. It decides whether a line is a conversion at all, reads the
// amount and the two units, converts, and writes the result in the target's own
// notation: feet and inches, stones and pounds, kitchen fractions, or a number with
// the unit's symbol. Nothing here fails loudly: a line that can't be converted shows
// "N/A".
class UnitConverter final : public ConversionService {
public:
    struct ConversionRequest {
        double value;
        Unit source;
        Unit target;
    };

    // Reads the user's currencies and number preferences from `store` on every call,
    // and currency rates from `rates`; both must outlive the converter.
    UnitConverter(SettingsStore &store, const CurrencyRates &rates);

    bool isConversionRequest(const QString &text, bool allowUnitless) const override;
    QString processConversion(const QString &text, int decimals) const override;
    std::optional<double> convertedValue(const QString &text) const override;

    std::optional<ConversionRequest> parseConversionRequest(const QString &text) const;
    // Within one family only; a currency missing from the rate table has no result.
    std::optional<double> convert(double value, const Unit &source, const Unit &target) const;
    // The unit called `name`, compared case-insensitively, walking the families in
    // lookup order; the primary currency's symbol stands for `fallback` when one is given.
    std::optional<Unit> unitNamed(const QString &name, const std::optional<Unit> &fallback = std::nullopt) const;

    // Whether the one-currency test accepts `text`: exactly one currency name in it,
    // longer than one character or one of the common currency signs.
    static bool mentionsOneCurrency(const QString &text);

    // " to ", " into ", " in ": what separates an amount from its target unit.
    static const QStringList &connectors();
    // Units in which a "/" belongs to the amount ("1/2 cup") rather than dividing.
    static const QStringList &slashUnits();
    // Units in which a "-" makes a negative temperature rather than a subtraction.
    static const QStringList &minusUnits();

private:
    std::optional<ConversionRequest> parseQuickConversion(const QString &text) const;
    std::optional<ConversionRequest> parseGeneric(const QString &text, const std::optional<Unit> &fallback) const;
    CurrencyUnit primaryCurrency() const;
    CurrencyUnit secondaryCurrency() const;

    MathPreferences m_preferences;
    const CurrencyRates &m_rates;
};

} // namespace scrivlet
