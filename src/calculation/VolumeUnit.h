#pragma once

namespace scrivlet {

// Units of volume: metric, US and imperial, with the kitchen measures; the litre is the
// base. The order of the cases is the order in which unit names are looked up.
enum class VolumeUnit {
    liter,
    milliliter,
    cubicMeter,
    cubicCentimeter,
    cubicMillimeter,
    gallon,
    quart,
    pint,
    cup,
    fluidOunce,
    tablespoon,
    teaspoon,
    cubicInch,
    cubicFoot,
    cubicYard,
    ukGallon,
    ukQuart,
    ukPint,
    ukCup,
    ukFluidOunce,
    ukTablespoon,
    ukTeaspoon
};

} // namespace scrivlet
