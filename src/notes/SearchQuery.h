#pragma once

#include <QString>

namespace scrivlet {

// What the search bar's text becomes before it is looked for: only letters, marks,
// digits and spaces are kept, so "a+b" looks for "ab", and the ends are trimmed. An
// empty result means "show every note".
struct SearchQuery {
    static QString clean(const QString &query);
};

} // namespace scrivlet
