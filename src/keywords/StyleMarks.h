#pragma once

#include "platform/TextAttributes.h"
#include "platform/TextRange.h"

#include <QString>

#include <optional>

namespace scrivlet {

class TextStorage;

// Styling that a pass must find again is marked with a `CustomAttribute`; a pass
// clears its own marks by tag before it lays them anew.

// Lays `mark` over `range`. The mark carries its own look (traits, colour role, lines,
// size), which the view draws over the run's plain attributes; whatever mark lay there
// before is replaced, so the last style laid over a character is the one it shows.
void addStyle(TextStorage &storage, const TextRange &range, const CustomAttribute &mark);

// Removes the marks of `tag` (and `subtag`, if given) within `range`, and the looks
// they brought: colours go back to `defaults`, bold and italic come off the font,
// underline and strikethrough go back to none.
void removeStyles(TextStorage &storage, const TextRange &range, const QString &tag,
                  const TextAttributes &defaults, const std::optional<QString> &subtag = std::nullopt);

} // namespace scrivlet
