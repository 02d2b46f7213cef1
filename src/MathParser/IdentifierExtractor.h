#pragma once

#include "MathParser/TokenExtractor.h"

#include "MathParser/OperatorTokenSet.h"

namespace scrivlet::math {

// Function and constant names: anything up to the next white space or operator character.
class IdentifierExtractor final : public TokenExtractor {
public:
    explicit IdentifierExtractor(const OperatorTokenSet &operatorTokens) : m_operatorTokens(operatorTokens) {}
    bool matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &configuration) const override;
    Either<RawToken, MathParserError> extract(TokenCharacterBuffer &buffer,
                                              const Configuration &configuration) const override;

private:
    const OperatorTokenSet &m_operatorTokens;
};

} // namespace scrivlet::math
