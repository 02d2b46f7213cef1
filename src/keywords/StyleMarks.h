#pragma once

#include "platform/TextAttributes.h"
#include "platform/TextRange.h"

#include <QString>

#include <optional>

namespace scrivlet {

class TextStorage;

// Styling that a pass must find again is marked with a `CustomAttribute`; a pass
// clears its own marks by tag before it lays them anew.

// Removes the marks of `tag` (and `subtag`, if given) within `range`, and the looks
// they brought: colours go back to `defaults`, bold and italic come off the font,
// underline and strikethrough go back to none.
void removeStyles(TextStorage &storage, const TextRange &range, const QString &tag,
                  const TextAttributes &defaults, const std::optional<QString> &subtag = std::nullopt);

} // namespace scrivlet
