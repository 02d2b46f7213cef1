#pragma once

#include "platform/TextRange.h"

#include <QString>

#include <vector>

namespace scrivlet {

// The runs of emoji within `range` of `text`: pictographs with their modifiers,
// joiners, variation selectors and flag pairs, each run ending where ordinary text
// starts again.
std::vector<TextRange> findEmojiRuns(const QString &text, const TextRange &range);

// Whether a code point starts or continues an emoji.
bool isEmojiCodePoint(char32_t codePoint);

} // namespace scrivlet
