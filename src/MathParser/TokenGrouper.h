#pragma once

#include "MathParser/GroupedToken.h"
#include "MathParser/ResolvedToken.h"

#include <vector>

namespace scrivlet::math {

class TokenResolver;

// Folds parentheses and function calls into nested groups, one pass over the resolved
// tokens, splitting call arguments at their top-level commas.
class TokenGrouper {
public:
    explicit TokenGrouper(const TokenResolver &resolver) : m_resolver(resolver) {}

    // The whole line as one group. Throws MathParserError.
    GroupedToken group() const;

private:
    struct Cursor {
        const std::vector<ResolvedToken> &tokens;
        std::size_t position = 0;
    };
    enum class Context : quint8 { topLevel, group, argument };

    std::vector<GroupedToken> groupSequence(Cursor &cursor, Context context, int depth) const;
    GroupedToken groupFunction(Cursor &cursor, int depth) const;

    const TokenResolver &m_resolver;
};

} // namespace scrivlet::math
