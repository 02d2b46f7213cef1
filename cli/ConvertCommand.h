#pragma once

#include <cstdio>

namespace scrivlet::cli {

struct CliOptions;

// `scrivlet-cli convert TEXT`: what a math line shows behind its "=" for a conversion,
// such as "143.23 km" for "89 miles to km".
class ConvertCommand final {
public:
    static constexpr int kExitNoValue = 1;
    static constexpr int kExitBadInput = 2;

    // Prints the conversion of the options' text to `out`. "N/A" and "Not a conversion
    // request." are printed too, with exit status 1; a rates file that can't be used is
    // reported on `err` with exit status 2.
    static int run(const CliOptions &options, std::FILE *out, std::FILE *err);
};

} // namespace scrivlet::cli
