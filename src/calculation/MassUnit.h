#pragma once

namespace scrivlet {

// Units of mass, metric and imperial; the kilogram is the base. The order of the cases is
// the order in which unit names are looked up.
enum class MassUnit { kilogram, gram, milligram, microgram, metricTon, pound, ounce, stone, shortTon, longTon };

} // namespace scrivlet
