#pragma once

#include "platform/TextRange.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace scrivlet {

class KeywordDefinitionsContainer;

// A timer can be started from any line that reads like "timer 5:30 : laundry", and
// AutoPaste from a line like "paste(, )". These build the patterns of such lines
// from the user's current trigger words.

// "timer", then optionally a word or one or two durations, then optionally a colon
// and a title.
QString timerLinePatternSource(const QStringList &timerTriggers);
// "paste", then optionally a delimiter in parentheses, then at most a line feed.
QString pasteLinePatternSource(const QStringList &pasteTriggers);

// The range of the first timer line of `text`, if any.
std::optional<TextRange> detectTimerLine(const QString &text, const KeywordDefinitionsContainer &keywords);
// The range of the first paste line of `text`, if any.
std::optional<TextRange> detectPasteLine(const QString &text, const KeywordDefinitionsContainer &keywords);

} // namespace scrivlet
