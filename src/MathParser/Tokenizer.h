#pragma once

#include "MathParser/DecimalNumberExtractor.h"
#include "MathParser/ExponentExtractor.h"
#include "MathParser/FractionNumberExtractor.h"
#include "MathParser/HexNumberExtractor.h"
#include "MathParser/IdentifierExtractor.h"
#include "MathParser/LocalizedNumberExtractor.h"
#include "MathParser/OctalNumberExtractor.h"
#include "MathParser/OperatorExtractor.h"
#include "MathParser/QuotedVariableExtractor.h"
#include "MathParser/RawToken.h"
#include "MathParser/VariableExtractor.h"

#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace scrivlet::math {

struct Configuration;

// Cuts an expression into raw tokens. The extractors are asked in a fixed order, numbers
// first, names last; the first whose precondition holds at a position takes the token.
// The tokens' texts point into the tokenizer's copy of the line, so they live as long as
// the tokenizer does.
class Tokenizer {
public:
    Tokenizer(QString string, const Configuration &configuration);
    Q_DISABLE_COPY_MOVE(Tokenizer)

    const QString &string() const { return m_string; }
    const Configuration &configuration() const { return m_configuration; }

    // Throws MathParserError when some position cannot be read as any token.
    std::vector<RawToken> tokenize() const;

private:
    QString m_string;
    const Configuration &m_configuration;
    HexNumberExtractor m_hexNumberExtractor;
    OctalNumberExtractor m_octalNumberExtractor;
    DecimalNumberExtractor m_decimalNumberExtractor;
    std::optional<LocalizedNumberExtractor> m_localizedNumberExtractor;
    FractionNumberExtractor m_fractionNumberExtractor;
    ExponentExtractor m_exponentExtractor;
    VariableExtractor m_variableExtractor;
    QuotedVariableExtractor m_quotedVariableExtractor;
    OperatorExtractor m_operatorExtractor;
    IdentifierExtractor m_identifierExtractor;
    std::array<const TokenExtractor *, 9> m_extractors;
};

} // namespace scrivlet::math
