#pragma once

#include <QtGlobal>

namespace scrivlet {

// A range over note text, counted in UTF-16 code units as the editor counts them.
struct TextRange {
    qsizetype location = 0;
    qsizetype length = 0;

    constexpr qsizetype end() const { return location + length; }
    constexpr bool isEmpty() const { return length == 0; }
    // NSRange-style containment: the end is outside.
    constexpr bool contains(qsizetype position) const { return position >= location && position < end(); }
    constexpr bool intersects(const TextRange &other) const
    {
        return location < other.end() && other.location < end();
    }
    friend constexpr bool operator==(const TextRange &, const TextRange &) = default;
};

} // namespace scrivlet
