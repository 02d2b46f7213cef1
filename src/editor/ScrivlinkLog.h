#pragma once

#include "platform/TextRange.h"

#include <QLoggingCategory>
#include <QString>

namespace scrivlet {

// Diagnostics of short links: quiet unless switched on, since they run on keystrokes.
Q_DECLARE_LOGGING_CATEGORY(lcScrivlink)

// "{location, length}", as ranges read in the link log lines.
QString scrivlinkRangeText(const TextRange &range);

// "<prefix>{location, length} for text length: <n>": a link range that no longer fits
// the text, skipped.
void logOutOfBoundsRange(const QString &prefix, const TextRange &range, qsizetype textLength);

} // namespace scrivlet
