#include "calculation/ShortestDecimal.h"

#include <QLocale>

#include <cmath>

namespace scrivlet {

QString shortestDecimal(double value)
{
    const double magnitude = std::fabs(value);
    const bool ordinary = magnitude == 0 || (magnitude >= 1e-7 && magnitude < 1e21) || !std::isfinite(value);
    return QString::number(value, ordinary ? 'f' : 'e', QLocale::FloatingPointShortest);
}

} // namespace scrivlet
