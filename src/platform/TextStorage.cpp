#include "platform/TextStorage.h"

namespace scrivlet {

TextRange TextStorage::lineRange(const TextRange &range) const
{
    const QString text = string();
    const qsizetype size = text.size();
    const qsizetype from = qBound<qsizetype>(0, range.location, size);
    const qsizetype to = qBound<qsizetype>(from, range.end(), size);

    qsizetype start = from;
    while (start > 0 && text.at(start - 1) != u'\n')
        --start;

    // A range that ends right after a line feed covers that line and no more, as long
    // as it is not empty; an empty range at a line start belongs to the line it starts.
    qsizetype end = to;
    if (end > from && text.at(end - 1) == u'\n')
        return {start, end - start};
    while (end < size && text.at(end) != u'\n')
        ++end;
    if (end < size)
        ++end;
    return {start, end - start};
}

} // namespace scrivlet
