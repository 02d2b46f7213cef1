#include "MathParser/TokenGrouper.h"

#include "MathParser/MathParserError.h"
#include "MathParser/ParserLimits.h"
#include "MathParser/TokenResolver.h"

namespace scrivlet::math {

namespace {

CharacterRange endOf(const std::vector<ResolvedToken> &tokens)
{
    const qsizetype end = tokens.empty() ? 0 : tokens.back().range().end;
    return {end, end};
}

} // namespace

GroupedToken TokenGrouper::group() const
{
    const std::vector<ResolvedToken> tokens = m_resolver.resolve();
    Cursor cursor{tokens};
    std::vector<GroupedToken> grouped = groupSequence(cursor, Context::topLevel, 0);
    const CharacterRange range =
        tokens.empty() ? CharacterRange{} : tokens.front().range().united(tokens.back().range());
    return GroupedToken::group(std::move(grouped), range);
}

std::vector<GroupedToken> TokenGrouper::groupSequence(Cursor &cursor, Context context, int depth) const
{
    if (depth > limits::kMaxNestingDepth) {
        const CharacterRange at =
            cursor.position < cursor.tokens.size() ? cursor.tokens[cursor.position].range() : endOf(cursor.tokens);
        throw MathParserError(MathParserError::Kind::invalidFormat, at);
    }

    std::vector<GroupedToken> sequence;
    sequence.reserve(qMin<std::size_t>(cursor.tokens.size() - cursor.position, 16));
    while (cursor.position < cursor.tokens.size()) {
        const ResolvedToken &token = cursor.tokens[cursor.position];
        if (token.isOperator(BuiltInOperator::parenthesisClose)) {
            if (context == Context::topLevel)
                throw MathParserError(MathParserError::Kind::missingOpenParenthesis, token.range());
            return sequence;
        }
        if (context == Context::argument && token.isOperator(BuiltInOperator::comma))
            return sequence;

        switch (token.kind()) {
        case ResolvedToken::Kind::number:
            sequence.push_back(GroupedToken::number(token.numberValue(), token.range()));
            ++cursor.position;
            break;
        case ResolvedToken::Kind::variable:
            sequence.push_back(GroupedToken::variable(token.name(), token.range()));
            ++cursor.position;
            break;
        case ResolvedToken::Kind::identifier:
            sequence.push_back(groupFunction(cursor, depth));
            break;
        case ResolvedToken::Kind::operatorSymbol:
            if (token.isOperator(BuiltInOperator::parenthesisOpen)) {
                ++cursor.position;
                std::vector<GroupedToken> inner = groupSequence(cursor, Context::group, depth + 1);
                if (cursor.position >= cursor.tokens.size())
                    throw MathParserError(MathParserError::Kind::missingCloseParenthesis,
                                          token.range().united(endOf(cursor.tokens)));
                const CharacterRange range = token.range().united(cursor.tokens[cursor.position].range());
                ++cursor.position;
                if (inner.empty())
                    throw MathParserError(MathParserError::Kind::emptyGroup, range);
                sequence.push_back(GroupedToken::group(std::move(inner), range));
            } else {
                sequence.push_back(GroupedToken::operatorToken(*token.op(), token.range()));
                ++cursor.position;
            }
            break;
        }
    }
    return sequence;
}

GroupedToken TokenGrouper::groupFunction(Cursor &cursor, int depth) const
{
    const ResolvedToken &name = cursor.tokens[cursor.position];
    ++cursor.position;
    if (cursor.position >= cursor.tokens.size() ||
        !cursor.tokens[cursor.position].isOperator(BuiltInOperator::parenthesisOpen)) {
        throw MathParserError(MathParserError::Kind::missingOpenParenthesis, name.range());
    }
    ++cursor.position;

    std::vector<GroupedToken> arguments;
    for (;;) {
        if (cursor.position >= cursor.tokens.size())
            throw MathParserError(MathParserError::Kind::missingCloseParenthesis,
                                  name.range().united(endOf(cursor.tokens)));
        const ResolvedToken &next = cursor.tokens[cursor.position];
        if (arguments.empty() && next.isOperator(BuiltInOperator::parenthesisClose)) {
            // A call with no arguments at all, "pi()".
            ++cursor.position;
            return GroupedToken::function(name.name(), {}, name.range().united(next.range()));
        }
        const qsizetype argumentStart = next.range().start;
        std::vector<GroupedToken> argument = groupSequence(cursor, Context::argument, depth + 1);
        if (argument.empty())
            throw MathParserError(MathParserError::Kind::emptyFunctionArgument, {argumentStart, argumentStart});
        const CharacterRange argumentRange = argument.front().range().united(argument.back().range());
        arguments.push_back(GroupedToken::group(std::move(argument), argumentRange));

        if (cursor.position >= cursor.tokens.size())
            throw MathParserError(MathParserError::Kind::missingCloseParenthesis,
                                  name.range().united(endOf(cursor.tokens)));
        const ResolvedToken &separator = cursor.tokens[cursor.position];
        ++cursor.position;
        if (separator.isOperator(BuiltInOperator::parenthesisClose))
            return GroupedToken::function(name.name(), std::move(arguments), name.range().united(separator.range()));
        // Otherwise it is the comma that ended the argument.
    }
}

} // namespace scrivlet::math
