#pragma once

namespace scrivlet {

// Units of temperature, which convert by offset as well as by scale. The order of the
// cases is the order in which unit names are looked up.
enum class TemperatureUnit { celsius, kelvin, fahrenheit };

} // namespace scrivlet
