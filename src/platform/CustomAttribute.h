#pragma once

#include <QString>
#include <optional>

namespace scrivlet {

// The marks that passes lay over note text so that later code can find them again:
// a calculated result, a variable, a keyword, a markdown style. Colours are theme
// roles ("accent1Main"), resolved only by the view that draws them.
struct CustomAttribute {
    QString tag;
    QString subtag;
    std::optional<bool> bold;
    std::optional<bool> italic;
    std::optional<QString> color;
    std::optional<QString> backgroundColor;
    std::optional<int> underlineStyle;
    std::optional<int> strikethroughStyle;
    std::optional<QString> underlineColor;
    // Text drawn larger than the note's font by this factor, as headings are.
    std::optional<double> fontScale;

    friend bool operator==(const CustomAttribute &, const CustomAttribute &) = default;
};

} // namespace scrivlet
