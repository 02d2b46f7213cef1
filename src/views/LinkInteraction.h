#pragma once

#include "platform/TextRange.h"

#include <QString>

class QKeyEvent;

namespace scrivlet {

class ScrivlinkPass;

// What the text view does with the note's links: a click toggles a link between its
// short and full forms, the pointer turns to a hand over a link, keys that would
// change a short form are refused, and a copy carries every link in full.
class LinkInteraction final {
public:
    explicit LinkInteraction(ScrivlinkPass &links) : m_links(links) {}

    // Whether the key must go no further: a key refused inside a short link, or the
    // toggle key (Ctrl+Shift+Return). The delete key over a link selects the whole link
    // and goes on, so that it removes the link at once.
    bool refusesKey(const QKeyEvent &event);
    // A click on the character at `position`; whether a link was toggled.
    bool toggleAt(qsizetype position);
    // The text of `range` as it leaves the note.
    QString copiedText(const TextRange &range) const;

private:
    ScrivlinkPass &m_links;
};

} // namespace scrivlet
