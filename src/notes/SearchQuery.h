#pragma once

#include "platform/TextRange.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace scrivlet {

// What the search bar's text becomes before it is looked for: only letters, marks,
// digits and spaces are kept, so "a+b" looks for "ab", and the ends are trimmed. An
// empty result means "show every note".
struct SearchQuery {
    static QString clean(const QString &query);

    // Where `foldedText` (a cleaned query, folded by `TextFolding`) first occurs in
    // `text` when `text` is folded the same way, as a range of `text` itself. Marks that
    // folding takes off the last character found stay inside the range, so a hit never
    // ends half-way through an accented letter.
    static std::optional<TextRange> locate(QStringView text, QStringView foldedText);
};

} // namespace scrivlet
