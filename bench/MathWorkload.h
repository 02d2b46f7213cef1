#pragma once

#include <QStringList>

namespace scrivlet::bench {

// What people type on math lines, made up deterministically so that every run, the
// benchmark and the comparison with other engines all see the same text: arithmetic
// with parentheses, powers, functions, percentages, implicit products, long sums, and a
// few lines in the program's own dialect (currency, "x" for times, "20% of 50").
QStringList mathWorkload(int lineCount = 2400);

} // namespace scrivlet::bench
