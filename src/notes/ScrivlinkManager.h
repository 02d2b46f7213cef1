#pragma once

#include "notes/Scrivlink.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace scrivlet {

// The live short links of one note, and what the note remembers about the links the
// user chose to keep in full.
class ScrivlinkManager {
public:
    std::vector<Scrivlink> scrivlinks;
    // Full URLs the user expanded and wants to stay expanded; stored with the note.
    QStringList skippedURLs;
    // Where the caret belongs after the last conversion: behind the newest short link.
    qsizetype locationOfLastShortenedLink = 0;
    // The conversion was asked for by a click or the toggle key, not by typing on.
    bool shorteningFromClick = false;
    // The one URL to shorten although shortening is switched off: the one just toggled.
    QString manualToggledUrl;
    // The links shown in full for the moment (while searching the note), to be put back.
    std::vector<Scrivlink> temporarilyUnshortenedScrivlinks;
};

} // namespace scrivlet
