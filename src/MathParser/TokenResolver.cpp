#include "MathParser/TokenResolver.h"

#include "MathParser/Configuration.h"
#include "MathParser/MathParserError.h"
#include "MathParser/OperatorSet.h"
#include "MathParser/Tokenizer.h"

#include <algorithm>

namespace scrivlet::math {

TokenResolverOptions TokenResolverOptions::fromConfiguration(const Configuration &configuration)
{
    quint32 raw = 0;
    if (configuration.allowArgumentlessFunctions)
        raw |= allowArgumentlessFunctions;
    if (configuration.allowImplicitMultiplication)
        raw |= allowImplicitMultiplication;
    if (configuration.useHighPrecedenceImplicitMultiplication)
        raw |= useHighPrecedenceImplicitMultiplication;
    return TokenResolverOptions(raw);
}

TokenResolver::TokenResolver(const Tokenizer &tokenizer, TokenResolverOptions options)
    : m_tokenizer(tokenizer), m_operatorSet(*tokenizer.configuration().operatorSet), m_options(options)
{
}

std::vector<ResolvedToken> TokenResolver::resolve() const
{
    const std::vector<RawToken> raw = m_tokenizer.tokenize();
    std::vector<ResolvedToken> resolved;
    resolved.reserve(raw.size() + raw.size() / 2 + 2);

    const bool argumentless = m_options.contains(TokenResolverOptions::allowArgumentlessFunctions);
    for (std::size_t i = 0; i < raw.size(); ++i) {
        const RawToken &token = raw[i];
        switch (token.kind()) {
        case RawToken::Kind::hexNumber:
        case RawToken::Kind::octalNumber:
        case RawToken::Kind::decimalNumber:
        case RawToken::Kind::localizedNumber:
            append(resolved, ResolvedToken::number(token.numberValue(), token.range()));
            break;
        case RawToken::Kind::fractionNumber: {
            // "1½" is one and a half: a fraction right behind a number adds to it.
            const bool behindNumber = i > 0 && raw[i - 1].isNumber() &&
                                      raw[i - 1].kind() != RawToken::Kind::fractionNumber &&
                                      raw[i - 1].range().end == token.range().start;
            if (behindNumber) {
                resolved.push_back(ResolvedToken::operatorToken(m_operatorSet.addFractionOperator(),
                                                                {token.range().start, token.range().start}));
            }
            append(resolved, ResolvedToken::number(token.numberValue(), token.range()));
            break;
        }
        case RawToken::Kind::exponent:
            appendExponent(resolved, token);
            break;
        case RawToken::Kind::variable:
            append(resolved, ResolvedToken::variable(token.string().toString(), token.range()));
            break;
        case RawToken::Kind::identifier:
            // An identifier is never an operator token: identifiers stop at the first
            // operator character, and every token is made of operator characters only.
            append(resolved, ResolvedToken::identifier(token.string().toString(), token.range()));
            if (argumentless && (i + 1 == raw.size() || !(raw[i + 1].kind() == RawToken::Kind::operatorSymbol &&
                                                         m_operatorSet.isOpenParenthesisToken(raw[i + 1].string())))) {
                const qsizetype end = token.range().end;
                const Operator *open = m_operatorSet.builtIn(BuiltInOperator::parenthesisOpen);
                const Operator *close = m_operatorSet.builtIn(BuiltInOperator::parenthesisClose);
                Q_ASSERT(open && close);
                resolved.push_back(ResolvedToken::operatorToken(*open, {end, end}));
                resolved.push_back(ResolvedToken::operatorToken(*close, {end, end}));
            }
            break;
        case RawToken::Kind::operatorSymbol:
            append(resolved, ResolvedToken::operatorToken(
                                 resolveOperator(token, resolved.empty() ? nullptr : &resolved.back()), token.range()));
            break;
        }
    }
    return resolved;
}

const Operator &TokenResolver::resolveOperator(const RawToken &token, const ResolvedToken *previous) const
{
    bool unknown = false;
    const Operator *chosen = m_operatorSet.operatorForToken(
        token.string(), OperatorSet::positionBehind(!previous, previous ? previous->op() : nullptr), unknown);
    if (unknown)
        throw MathParserError(MathParserError::Kind::unknownOperator, token.range());
    if (!chosen)
        throw MathParserError(MathParserError::Kind::ambiguousOperator, token.range());
    return *chosen;
}

void TokenResolver::append(std::vector<ResolvedToken> &resolved, ResolvedToken token) const
{
    if (m_options.contains(TokenResolverOptions::allowImplicitMultiplication) && !resolved.empty()) {
        const ResolvedToken &previous = resolved.back();
        const bool previousAllows = previous.kind() == ResolvedToken::Kind::number ||
                                    previous.kind() == ResolvedToken::Kind::variable ||
                                    (previous.op() && previous.op()->isPostfix());
        const bool tokenTakes = !token.isOperator() || token.op()->isPrefix();
        if (previousAllows && tokenTakes) {
            const Operator &multiply = m_options.contains(TokenResolverOptions::useHighPrecedenceImplicitMultiplication)
                                           ? m_operatorSet.implicitMultiplyOperator()
                                           : m_operatorSet.multiplyOperator();
            const qsizetype at = token.range().start;
            resolved.push_back(ResolvedToken::operatorToken(multiply, {at, at}));
        }
    }
    resolved.push_back(std::move(token));
}

void TokenResolver::appendExponent(std::vector<ResolvedToken> &resolved, const RawToken &token) const
{
    // "2⁻¹" reads as "2 ** (-1)": the superscript text is parsed on its own and bracketed.
    const Tokenizer inner(token.string().toString(), m_tokenizer.configuration());
    std::vector<ResolvedToken> innerTokens = TokenResolver(inner, m_options).resolve();

    const CharacterRange range = token.range();
    const Operator *open = m_operatorSet.builtIn(BuiltInOperator::parenthesisOpen);
    const Operator *close = m_operatorSet.builtIn(BuiltInOperator::parenthesisClose);
    Q_ASSERT(open && close);
    append(resolved, ResolvedToken::operatorToken(m_operatorSet.powerOperator(), {range.start, range.start}));
    resolved.push_back(ResolvedToken::operatorToken(*open, {range.start, range.start}));
    for (ResolvedToken &innerToken : innerTokens) {
        innerToken.setRange(innerToken.range().shifted(range.start));
        resolved.push_back(std::move(innerToken));
    }
    resolved.push_back(ResolvedToken::operatorToken(*close, {range.end, range.end}));
}

} // namespace scrivlet::math
