#pragma once

#include <QString>

#include <optional>

namespace scrivlet {

// What a math line asks of unit and currency conversion. Math lines know nothing of
// units, rates or their formats; they ask whether a line is a conversion and, if it is,
// take the text that goes behind its "=" and the number it stands for (a definition
// such as "trip: 89 miles to km =" stores that number as its variable).
class ConversionService {
public:
    virtual ~ConversionService() = default;

    // The gate: is `text` a conversion request? `allowUnitless` lets a bare amount with
    // the primary currency symbol ("$24") count, which a definition's value must not.
    virtual bool isConversionRequest(const QString &text, bool allowUnitless) const = 0;

    // Gate, parse, convert and format in one: the text a math line shows behind its "=".
    virtual QString processConversion(const QString &text, int decimals) const = 0;

    // The converted number itself, before formatting; nothing when the request cannot be
    // parsed or converted.
    virtual std::optional<double> convertedValue(const QString &text) const = 0;
};

} // namespace scrivlet
