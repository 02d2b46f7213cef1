#pragma once

#include "platform/TextRange.h"

#include <QString>

#include <optional>

namespace scrivlet {

// The one line a note shows in a list: for a search hit, the text around the hit with a
// little of what comes before it, so the hit stays in sight however narrow the row;
// otherwise the note's beginning. Line breaks and runs of spaces read as one space.
struct SearchSnippet {
    QString text;
    // Where the hit lies in `text`.
    std::optional<TextRange> hit;

    static constexpr qsizetype kContextBefore = 28;
    static constexpr qsizetype kMaxLength = 240;

    static SearchSnippet make(const QString &content, const std::optional<TextRange> &hit);
};

} // namespace scrivlet
