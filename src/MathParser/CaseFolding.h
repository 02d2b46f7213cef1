#pragma once

#include <QChar>
#include <QStringView>

namespace scrivlet::math::casefolding {

// Case-insensitive comparison one character at a time, without building lower-cased
// copies: names and operator tokens are looked up for every line on every edit.

inline char16_t fold(char16_t c)
{
    if (c < 0x80)
        return (c >= u'A' && c <= u'Z') ? char16_t(c + (u'a' - u'A')) : c;
    if (QChar::isSurrogate(c))
        return c;
    return char16_t(QChar::toCaseFolded(char32_t(c)));
}

inline int compare(QStringView a, QStringView b)
{
    const qsizetype common = qMin(a.size(), b.size());
    for (qsizetype i = 0; i < common; ++i) {
        const char16_t x = fold(a[i].unicode());
        const char16_t y = fold(b[i].unicode());
        if (x != y)
            return x < y ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

inline bool equal(QStringView a, QStringView b)
{
    return a.size() == b.size() && compare(a, b) == 0;
}

} // namespace scrivlet::math::casefolding
