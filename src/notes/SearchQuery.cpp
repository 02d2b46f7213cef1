#include "notes/SearchQuery.h"

#include "notes/TextFolding.h"

#include <vector>

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

std::optional<TextRange> SearchQuery::locate(QStringView text, QStringView foldedText)
{
    if (foldedText.isEmpty())
        return std::nullopt;
    // Folding works one character at a time (decomposition, marks dropped, case folded),
    // so the folded text is the folded characters one after another, and each unit of
    // it knows the character it came from.
    QString folded;
    folded.reserve(text.size());
    std::vector<qsizetype> origin;
    origin.reserve(std::size_t(text.size()) + 1);
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size;) {
        const QChar c = text.at(i);
        if (c.unicode() < 0x80) {
            folded.append(c.toLower());
            origin.push_back(i);
            ++i;
            continue;
        }
        const qsizetype width = c.isHighSurrogate() && i + 1 < size && text.at(i + 1).isLowSurrogate() ? 2 : 1;
        const QString piece = TextFolding::fold(text.mid(i, width));
        folded.append(piece);
        origin.insert(origin.end(), std::size_t(piece.size()), i);
        i += width;
    }
    origin.push_back(size);

    const qsizetype at = folded.indexOf(foldedText);
    if (at < 0)
        return std::nullopt;
    const qsizetype start = origin[std::size_t(at)];
    return TextRange{start, origin[std::size_t(at + foldedText.size())] - start};
}

} // namespace scrivlet
