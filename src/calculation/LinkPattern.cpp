#include "calculation/LinkPattern.h"

#include <QRegularExpression>

namespace scrivlet {

const QRegularExpression &linkPattern()
{
    // Blanks and digits of every script count, not only the ASCII ones.
    static const QRegularExpression pattern(
        QStringLiteral(
            "(?:(?<=\\s)|^)(?<!@)((https?|ftp):\\/\\/)?((?:[A-Za-z0-9-]+(?:\\.[A-Za-z0-9-]+)*\\.[A-Za-z]{2,})|"
            "(localhost)|(\\d{1,3}(\\.\\d{1,3}){3}))(:\\d+)?(?=[\\/?#\\s(),]|$)([\\/?#][^\\s(),\\r\\n@”“:{}]*)?"),
        QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

} // namespace scrivlet
