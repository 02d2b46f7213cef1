#include "editor/ScrivlinkLog.h"

namespace scrivlet {

Q_LOGGING_CATEGORY(lcScrivlink, "scrivlet.editor.scrivlink", QtWarningMsg)

QString scrivlinkRangeText(const TextRange &range)
{
    return u'{' + QString::number(range.location) + QStringLiteral(", ") + QString::number(range.length) + u'}';
}

void logOutOfBoundsRange(const QString &prefix, const TextRange &range, qsizetype textLength)
{
    qCInfo(lcScrivlink).noquote() << prefix + scrivlinkRangeText(range) + QStringLiteral(" for text length: ") +
                                         QString::number(textLength);
}

} // namespace scrivlet
