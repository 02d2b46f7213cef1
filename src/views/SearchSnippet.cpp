#include "views/SearchSnippet.h"

#include <algorithm>

namespace scrivlet {

namespace {

const QChar kEllipsis(0x2026);

bool isBreak(QChar c)
{
    return c == u'\n' || c == u'\r' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

} // namespace

SearchSnippet SearchSnippet::make(const QString &content, const std::optional<TextRange> &hit)
{
    std::optional<TextRange> within;
    if (hit && hit->location >= 0 && hit->end() <= content.size())
        within = hit;

    qsizetype start = 0;
    bool cut = false;
    if (within && within->location > kContextBefore) {
        start = within->location - kContextBefore;
        // Begin on a word, and never before the line the hit is on: the words just
        // before it are what tells the user which mention this is.
        const qsizetype lineStart = [&] {
            for (qsizetype i = within->location; i > start; --i) {
                if (isBreak(content.at(i - 1)))
                    return i;
            }
            return qsizetype(-1);
        }();
        if (lineStart >= 0) {
            start = lineStart;
        } else {
            qsizetype word = start;
            while (word < within->location && !content.at(word - 1).isSpace())
                ++word;
            if (word < within->location)
                start = word;
            cut = true;
        }
    }
    const qsizetype end = std::min(content.size(), start + kMaxLength + (within ? within->length : 0));

    SearchSnippet snippet;
    snippet.text.reserve(end - start + 2);
    if (cut)
        snippet.text += kEllipsis;
    bool pendingSpace = false;
    qsizetype hitStart = -1;
    qsizetype hitEnd = -1;
    for (qsizetype i = start; i < end; ++i) {
        if (within && i == within->location) {
            if (pendingSpace && !snippet.text.isEmpty() && snippet.text.back() != kEllipsis)
                snippet.text += u' ';
            pendingSpace = false;
            hitStart = snippet.text.size();
        }
        if (within && i == within->end())
            hitEnd = snippet.text.size();
        const QChar c = content.at(i);
        const bool inHit = within && within->contains(i);
        if (c.isSpace() && !inHit) {
            pendingSpace = true;
            continue;
        }
        if (pendingSpace && !snippet.text.isEmpty() && snippet.text.back() != kEllipsis)
            snippet.text += u' ';
        pendingSpace = false;
        // A line break inside the hit itself still reads as a space.
        snippet.text += c.isSpace() ? QChar(u' ') : c;
    }
    if (within && hitEnd < 0 && hitStart >= 0)
        hitEnd = snippet.text.size();
    if (end < content.size())
        snippet.text += kEllipsis;
    if (hitStart >= 0)
        snippet.hit = TextRange{hitStart, hitEnd - hitStart};
    return snippet;
}

} // namespace scrivlet
