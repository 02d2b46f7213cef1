#pragma once

#include <QString>

namespace scrivlet {

// A name defined on a math line ("guests: 5") for the lines below it.
struct Variable {
    // The name as written, blanks trimmed.
    QString key;
    // The number in its shortest decimal form, "5" or "0.1".
    QString value;
    // The line of the definition, counted from 1.
    int lineNumber = 0;
    // The one currency symbol of the value ("$" for "price: $5"), or "".
    QString currencySymbol;

    friend bool operator==(const Variable &, const Variable &) = default;
};

} // namespace scrivlet
