#pragma once

#include <QtGlobal>

namespace scrivlet::math {

// A half-open range [start, end) of positions in the expression text. Positions count
// UTF-16 code units, the unit every other text range of the program uses, so an error
// range can be laid over the line it came from without conversion.
struct CharacterRange {
    qsizetype start = 0;
    qsizetype end = 0;

    qsizetype length() const { return end - start; }
    bool isEmpty() const { return end == start; }
    CharacterRange shifted(qsizetype offset) const { return {start + offset, end + offset}; }
    CharacterRange united(CharacterRange other) const { return {qMin(start, other.start), qMax(end, other.end)}; }
    bool operator==(const CharacterRange &) const = default;
};

} // namespace scrivlet::math
