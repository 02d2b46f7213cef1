#pragma once

#include "notes/Scrivlink.h"

#include <QString>

#include <vector>

namespace scrivlet {

class ScrivlinkManager;
class TextStorage;

// What decides whether and how links are converted on this run.
struct ScrivlinkSettings {
    // Text processing is suspended for the moment (the app status of value 16).
    bool textProcessingSuspended = false;
    // A code note keeps every link as typed.
    bool isCodeNote = false;
    // Only the link the user toggles is shortened; the others stay in full.
    bool disableLinkShortening = false;
};

// Gives each link the range of its short form in `text`, found by searching the text;
// a link whose form isn't there keeps its old range.
void updateScrivlinkRanges(const QString &text, ScrivlinkManager &manager);
// The same with the short forms of `text` already found by `extractShortenedLinks`.
void updateScrivlinkRanges(const QString &text, const std::vector<Scrivlink> &shortForms, ScrivlinkManager &manager);

// The full links that are to be shortened now: not the one the caret is still
// typing, none the user keeps in full, none within code.
std::vector<Scrivlink> getAllNewFullLinksThatNeedConverting(const TextStorage &storage, qsizetype caret,
                                                            ScrivlinkManager &manager,
                                                            const ScrivlinkSettings &settings);

// Brings the note's links up to date with its text: forgets links whose short form
// was damaged or deleted, expands links that ended up in code, and shortens the new
// full links. Returns whether the text changed.
bool updateTextWithTruncatedHyperlinks(TextStorage &storage, qsizetype caret, ScrivlinkManager &manager,
                                       const ScrivlinkSettings &settings);

} // namespace scrivlet
