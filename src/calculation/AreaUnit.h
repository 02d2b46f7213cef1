#pragma once

namespace scrivlet {

// Units of area, including the regional land measures; the square metre is the base.
// The order of the cases is the order in which unit names are looked up.
enum class AreaUnit {
    sqm,
    sqcm,
    sqmm,
    hectare,
    sqkm,
    sqft,
    sqin,
    sqyd,
    sqmi,
    acre,
    are,
    dunam,
    tsubo,
    ping,
    bigha,
    cuerda,
    rood,
    perch,
    section,
    township
};

} // namespace scrivlet
