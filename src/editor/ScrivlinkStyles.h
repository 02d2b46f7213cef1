#pragma once

#include "notes/Scrivlink.h"
#include "platform/TextAttributes.h"

#include <vector>

namespace scrivlet {

class TextStorage;

// The mark of a link's text: tag "scrivlink"; full links carry the subtag "fullLink".
QString scrivlinkTag();
QString fullLinkSubtag();

// Whether `range` runs through code (inline code, a fenced block or a highlighted
// span): links are neither shortened nor coloured there.
bool rangeTouchesCode(const TextStorage &storage, const TextRange &range);

// Clears every link mark of the note, then marks and colours each short link.
// `defaults` are the note's plain attributes, which cleared marks fall back to.
void applyScrivlinkStyles(TextStorage &storage, const std::vector<Scrivlink> &scrivlinks,
                          const TextAttributes &defaults);

// Marks and colours the links written in full, outside code; nothing when link
// highlighting is switched off.
void highlightFullLinks(TextStorage &storage, bool disableLinkHighlighting);

} // namespace scrivlet
