#include "editor/ScrivlinkToggle.h"

#include "editor/ScrivlinkExtraction.h"
#include "notes/ScrivlinkManager.h"

#include <algorithm>

namespace scrivlet {

namespace {

constexpr quint16 kDeleteKeyCode = 51;
constexpr quint16 kFirstArrowKeyCode = 123;
constexpr quint16 kLastArrowKeyCode = 126;

} // namespace

std::optional<ScrivlinkToggle> toggleScrivlink(qsizetype position, const QString &text, ScrivlinkManager &manager)
{
    const auto shortLink = std::find_if(manager.scrivlinks.begin(), manager.scrivlinks.end(),
                                        [&](const Scrivlink &link) { return link.currentRange.contains(position); });
    if (shortLink != manager.scrivlinks.end()) {
        ScrivlinkToggle toggle{shortLink->currentRange, shortLink->fullUrl, true};
        if (!manager.skippedURLs.contains(shortLink->fullUrl))
            manager.skippedURLs.append(shortLink->fullUrl);
        manager.scrivlinks.erase(shortLink);
        return toggle;
    }

    for (const Scrivlink &full : extractFullLinks(text)) {
        if (full.currentRange.contains(position)) {
            manager.skippedURLs.removeAll(full.fullUrl);
            return ScrivlinkToggle{full.currentRange, full.fullUrl, false};
        }
    }
    return std::nullopt;
}

bool shouldBlockEdit(const QString &text, const TextRange &selection, const QString &typedCharacters,
                     const std::optional<ScrivlinkKeyPress> &event, const ScrivlinkManager &manager)
{
    const qsizetype position = selection.location;
    const auto &links = manager.scrivlinks;
    const bool touchesLink = std::any_of(links.begin(), links.end(), [&](const Scrivlink &link) {
        return link.currentRange.contains(position) || link.currentRange.end() == position;
    });
    if (!touchesLink)
        return false;
    if (!event || typedCharacters.isEmpty())
        return true;

    const bool atStart = std::any_of(links.begin(), links.end(),
                                     [&](const Scrivlink &link) { return link.currentRange.location == position; });
    const bool atEnd = std::any_of(links.begin(), links.end(),
                                   [&](const Scrivlink &link) { return link.currentRange.end() == position; });
    if (atStart && (typedCharacters == u"\r" || typedCharacters == u"\n" || typedCharacters == u" "))
        return false;
    if (atEnd && !event->characters.isEmpty())
        return false;
    if (atStart)
        return false;

    const QChar first = typedCharacters.front();
    if (first == u'\n' || first == u'\r') {
        // A new line is refused inside a link, allowed at the very end of its line.
        const qsizetype lineEnd = [&] {
            const qsizetype lastSelected = selection.length > 0 ? selection.end() - 1 : position;
            const qsizetype feed = text.indexOf(u'\n', lastSelected);
            return feed < 0 ? text.size() : feed + 1;
        }();
        if (lineEnd == text.size() && !text.endsWith(u'\n'))
            return lineEnd != position;
        return lineEnd - 1 != position;
    }

    const quint16 key = event->keyCode;
    if ((key >= kFirstArrowKeyCode && key <= kLastArrowKeyCode) || key == kDeleteKeyCode)
        return false;
    return true;
}

} // namespace scrivlet
