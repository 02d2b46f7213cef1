#pragma once

#include "MathParser/TokenExtractor.h"

#include "MathParser/OperatorTokenSet.h"

namespace scrivlet::math {

// The longest run of operator characters that forms a known token, so "**" wins over "*".
class OperatorExtractor final : public TokenExtractor {
public:
    explicit OperatorExtractor(const OperatorTokenSet &operatorTokens) : m_operatorTokens(operatorTokens) {}
    bool matchesPreconditions(const TokenCharacterBuffer &buffer, const Configuration &configuration) const override;
    Either<RawToken, MathParserError> extract(TokenCharacterBuffer &buffer,
                                              const Configuration &configuration) const override;

private:
    const OperatorTokenSet &m_operatorTokens;
};

} // namespace scrivlet::math
