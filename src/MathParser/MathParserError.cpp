#include "MathParser/MathParserError.h"

namespace scrivlet::math {

QString MathParserError::kindName(Kind kind)
{
    switch (kind) {
    case Kind::missingLeftOperand:
        return QStringLiteral("missingLeftOperand");
    case Kind::missingRightOperand:
        return QStringLiteral("missingRightOperand");
    case Kind::unknownFunction:
        return QStringLiteral("unknownFunction");
    case Kind::unknownVariable:
        return QStringLiteral("unknownVariable");
    case Kind::cannotParseNumber:
        return QStringLiteral("cannotParseNumber");
    case Kind::cannotParseHexNumber:
        return QStringLiteral("cannotParseHexNumber");
    case Kind::cannotParseOctalNumber:
        return QStringLiteral("cannotParseOctalNumber");
    case Kind::cannotParseFractionalNumber:
        return QStringLiteral("cannotParseFractionalNumber");
    case Kind::cannotParseExponent:
        return QStringLiteral("cannotParseExponent");
    case Kind::cannotParseIdentifier:
        return QStringLiteral("cannotParseIdentifier");
    case Kind::cannotParseVariable:
        return QStringLiteral("cannotParseVariable");
    case Kind::cannotParseQuotedVariable:
        return QStringLiteral("cannotParseQuotedVariable");
    case Kind::cannotParseOperator:
        return QStringLiteral("cannotParseOperator");
    case Kind::zeroLengthVariable:
        return QStringLiteral("zeroLengthVariable");
    case Kind::cannotParseLocalizedNumber:
        return QStringLiteral("cannotParseLocalizedNumber");
    case Kind::unknownOperator:
        return QStringLiteral("unknownOperator");
    case Kind::ambiguousOperator:
        return QStringLiteral("ambiguousOperator");
    case Kind::missingOpenParenthesis:
        return QStringLiteral("missingOpenParenthesis");
    case Kind::missingCloseParenthesis:
        return QStringLiteral("missingCloseParenthesis");
    case Kind::emptyFunctionArgument:
        return QStringLiteral("emptyFunctionArgument");
    case Kind::emptyGroup:
        return QStringLiteral("emptyGroup");
    case Kind::invalidFormat:
        return QStringLiteral("invalidFormat");
    case Kind::divideByZero:
        return QStringLiteral("divideByZero");
    case Kind::invalidArguments:
        return QStringLiteral("invalidArguments");
    }
    Q_UNREACHABLE();
    return {};
}

} // namespace scrivlet::math
