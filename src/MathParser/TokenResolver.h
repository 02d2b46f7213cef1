#pragma once

#include "MathParser/ResolvedToken.h"
#include "MathParser/TokenResolverOptions.h"

#include <vector>

namespace scrivlet::math {

class OperatorSet;
class RawToken;
class Tokenizer;

// Gives raw tokens their meaning: numbers get their values, an operator token written for
// several operators ("-" for subtract and negate) is decided by what stands before it,
// names without "(" become calls, superscripts become powers, and products that are only
// implied ("2pi", "2(3)") get their "*".
class TokenResolver {
public:
    TokenResolver(const Tokenizer &tokenizer, TokenResolverOptions options);

    // Throws MathParserError.
    std::vector<ResolvedToken> resolve() const;

private:
    void append(std::vector<ResolvedToken> &resolved, ResolvedToken token) const;
    void appendExponent(std::vector<ResolvedToken> &resolved, const RawToken &token) const;
    const Operator &resolveOperator(const RawToken &token, const ResolvedToken *previous) const;

    const Tokenizer &m_tokenizer;
    const OperatorSet &m_operatorSet;
    TokenResolverOptions m_options;
};

} // namespace scrivlet::math
