#pragma once

#include "notes/Scrivlink.h"

#include <QString>

#include <vector>

namespace scrivlet {

class ScrivlinkManager;
class TextStorage;

// `text` with every short form of `scrivlinks` replaced by its full URL: what leaves a
// note (a copy, an export, the command line) always reads in full. Works as well on a
// part of the note, such as a selection.
QString expandAllScrivlinks(const QString &text, const std::vector<Scrivlink> &scrivlinks);

// The same in the note itself, as one batch; the links stay known to the manager.
void expandAllScrivlinks(TextStorage &storage, const ScrivlinkManager &manager);

// Restores every link of the note to its full URL and forgets them: links are switched
// off, or shown in full for good.
void unshrinkLinks(TextStorage &storage, ScrivlinkManager &manager);

// Shows every link in full for the moment (so that a search finds URLs), and with
// `show` false puts the short forms back.
void toggleShowAllFullLinksTemporarily(bool show, TextStorage &storage, ScrivlinkManager &manager);

} // namespace scrivlet
