#pragma once

namespace scrivlet {

// Units of length, metric and imperial; the metre is the base. The order of the cases is
// the order in which unit names are looked up.
enum class DistanceUnit { m, mm, cm, km, inch, ft, mile, yard };

} // namespace scrivlet
