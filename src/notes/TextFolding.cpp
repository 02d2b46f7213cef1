#include "notes/TextFolding.h"

namespace scrivlet {

namespace {

bool isPlainAscii(QStringView text)
{
    for (const QChar c : text) {
        if (c.unicode() >= 0x80)
            return false;
    }
    return true;
}

} // namespace

QString TextFolding::fold(QStringView text)
{
    // Most notes are plain ASCII, which needs neither decomposition nor a mark filter.
    if (isPlainAscii(text))
        return text.toString().toLower();

    const QString decomposed = text.toString().normalized(QString::NormalizationForm_D);
    QString bare;
    bare.reserve(decomposed.size());
    const qsizetype size = decomposed.size();
    for (qsizetype i = 0; i < size; ++i) {
        const QChar c = decomposed.at(i);
        if (c.isHighSurrogate() && i + 1 < size && decomposed.at(i + 1).isLowSurrogate()) {
            const char32_t ucs4 = QChar::surrogateToUcs4(c, decomposed.at(i + 1));
            if (!QChar::isMark(ucs4)) {
                bare.append(c);
                bare.append(decomposed.at(i + 1));
            }
            ++i;
            continue;
        }
        if (!c.isMark())
            bare.append(c);
    }
    return bare.toCaseFolded();
}

} // namespace scrivlet
