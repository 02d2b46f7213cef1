#include "notes/SearchQuery.h"

#include <QStringView>

namespace scrivlet {

namespace {

bool isKept(char32_t c)
{
    // Horizontal white space only: a line break in a pasted query is dropped like
    // punctuation.
    if (c == U'\t')
        return true;
    switch (QChar::category(c)) {
    case QChar::Letter_Uppercase:
    case QChar::Letter_Lowercase:
    case QChar::Letter_Titlecase:
    case QChar::Letter_Modifier:
    case QChar::Letter_Other:
    case QChar::Mark_NonSpacing:
    case QChar::Mark_SpacingCombining:
    case QChar::Mark_Enclosing:
    case QChar::Number_DecimalDigit:
    case QChar::Number_Letter:
    case QChar::Number_Other:
    case QChar::Separator_Space:
        return true;
    default:
        return false;
    }
}

} // namespace

QString SearchQuery::clean(const QString &query)
{
    QString kept;
    kept.reserve(query.size());
    const qsizetype size = query.size();
    for (qsizetype i = 0; i < size; ++i) {
        const QChar c = query.at(i);
        if (c.isHighSurrogate() && i + 1 < size && query.at(i + 1).isLowSurrogate()) {
            if (isKept(QChar::surrogateToUcs4(c, query.at(i + 1)))) {
                kept.append(c);
                kept.append(query.at(i + 1));
            }
            ++i;
            continue;
        }
        if (!c.isSurrogate() && isKept(c.unicode()))
            kept.append(c);
    }
    return kept.trimmed();
}

} // namespace scrivlet
