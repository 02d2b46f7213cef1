#pragma once

#include "platform/TextRange.h"

#include <QStringView>

#include <algorithm>
#include <limits>

namespace scrivlet {

// Where two versions of a text differ: what lies between their common start and their
// common end, as a range of each.
struct TextDifference {
    TextRange before;
    TextRange after;

    bool isEmpty() const { return before.isEmpty() && after.isEmpty(); }
};

// The common start is taken no further than `startLimit`, for a change known to begin
// there: "a" typed into "aa" at 1 reads the same as at 2.
inline TextDifference textDifference(QStringView before, QStringView after,
                                     qsizetype startLimit = std::numeric_limits<qsizetype>::max())
{
    const qsizetype shorter = std::min(before.size(), after.size());
    qsizetype prefix = 0;
    while (prefix < shorter && prefix < startLimit && before[prefix] == after[prefix])
        ++prefix;
    qsizetype suffix = 0;
    while (suffix < shorter - prefix && before[before.size() - 1 - suffix] == after[after.size() - 1 - suffix])
        ++suffix;
    return {{prefix, before.size() - prefix - suffix}, {prefix, after.size() - prefix - suffix}};
}

} // namespace scrivlet
