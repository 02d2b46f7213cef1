#pragma once

#include "platform/TextRange.h"

#include <QString>

#include <optional>

namespace scrivlet {

class ScrivlinkManager;

// What a toggle does to the note: put `replacement` in `range` (a link expanded), or
// shorten the full link in `range`.
struct ScrivlinkToggle {
    TextRange range;
    QString replacement;
    bool expanded = false;
};

// Toggles the link at `position`: a short link is expanded and its URL kept in full
// from then on; a full link is to be shortened again. No link there: no answer.
std::optional<ScrivlinkToggle> toggleScrivlink(qsizetype position, const QString &text, ScrivlinkManager &manager);

// A key as the link guard reads it: the text it types and the hardware key code of the
// system's keyboard (123 to 126 are the arrows, 51 is delete).
struct ScrivlinkKeyPress {
    QString characters;
    quint16 keyCode = 0;
};

// Whether the edit at the caret must be refused because it would change a short link
// by hand. One may still open a gap or a line in front of a link, type on behind it,
// move through it and delete it.
bool shouldBlockEdit(const QString &text, const TextRange &selection, const QString &typedCharacters,
                     const std::optional<ScrivlinkKeyPress> &event, const ScrivlinkManager &manager);

} // namespace scrivlet
