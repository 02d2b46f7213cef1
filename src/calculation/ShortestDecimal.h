#pragma once

#include <QString>

namespace scrivlet {

// The shortest text that reads back as exactly `value`, with "." as decimal separator:
// "0.1", "1200", "0.30000000000000004". Ordinary magnitudes (from 1e-7 up to 1e21) are
// written out in full; smaller and larger ones take an exponent ("1e-08", "1e+21"),
// which the expression parser reads back too. Not-a-number and the infinities are
// "nan", "inf" and "-inf".
QString shortestDecimal(double value);

} // namespace scrivlet
