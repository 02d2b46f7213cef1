#include "MathParser/LineParser.h"

#include "MathParser/BuiltInFunctionTable.h"
#include "MathParser/CaseFolding.h"
#include "MathParser/Configuration.h"
#include "MathParser/ExponentExtractor.h"
#include "MathParser/ExpressionTree.h"
#include "MathParser/FractionNumberExtractor.h"
#include "MathParser/MathParserError.h"
#include "MathParser/NumberParsing.h"
#include "MathParser/OperatorSet.h"
#include "MathParser/ParserLimits.h"
#include "MathParser/TokenCharacterBuffer.h"

#include <span>

namespace scrivlet::math {

namespace {

bool isDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

bool isHexDigit(char16_t c)
{
    return isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

// A line this long is pasted, not typed; its buffers are not worth keeping for the next.
constexpr std::size_t kLargestKeptBuffer = 4096;

template <typename T> void releaseIfLarge(std::vector<T> &buffer)
{
    if (buffer.capacity() > kLargestKeptBuffer)
        std::vector<T>().swap(buffer);
}

} // namespace

std::optional<qint32> LineParser::parse(QStringView text, const Configuration &configuration, ExpressionTree &tree)
{
    // A locale's number format is read by trying ever shorter prefixes with QLocale; math
    // lines never use one, so it stays with the staged parser.
    if (configuration.locale)
        return std::nullopt;
    // One parser per thread, reused: parsing never calls out to code that could parse.
    thread_local LineParser parser;
    return parser.run(text, configuration, tree);
}

std::optional<qint32> LineParser::run(QStringView text, const Configuration &configuration, ExpressionTree &tree)
{
    m_text = text;
    m_operatorSet = configuration.operatorSet.get();
    m_tree = &tree;
    m_argumentlessFunctions = configuration.allowArgumentlessFunctions;
    m_implicitMultiplication = configuration.allowImplicitMultiplication;
    m_implicitMultiply = configuration.useHighPrecedenceImplicitMultiplication
                             ? &m_operatorSet->implicitMultiplyOperator()
                             : &m_operatorSet->multiplyOperator();
    m_open = m_operatorSet->openParenthesis();
    m_close = m_operatorSet->closeParenthesis();
    // A set without parentheses cannot write "pi()"; the staged parser decides what that means.
    if (!m_open || !m_close)
        return std::nullopt;
    m_position = 0;
    m_tokens.clear();
    m_elements.clear();
    m_arguments.clear();

    std::optional<qint32> root;
    try {
        if (tokenize()) {
            // Every token makes at most one node, and every node but the root is one argument.
            // A pasted monster line grows the tree as it goes instead.
            tree.reserve(tree.nodeCount() + qsizetype(qMin(m_tokens.size(), kLargestKeptBuffer)));
            const qint32 node = buildSequence(Context::topLevel, 0);
            if (node >= 0)
                root = node;
        }
    } catch (const MathParserError &) {
        // A missing operand or a tree grown too tall: the staged parser reports it.
    }
    releaseLargeBuffers();
    return root;
}

bool LineParser::tokenize()
{
    const OperatorTokenSet &operatorTokens = m_operatorSet->operatorTokenSet();
    const char16_t *characters = m_text.utf16();
    const qsizetype size = m_text.size();
    const auto at = [&](qsizetype index) -> char16_t { return index < size ? characters[index] : u'\0'; };
    const auto isNameCharacter = [&](char16_t c) {
        return !TokenCharacterBuffer::isWhitespace(QChar(c)) && !operatorTokens.containsCharacter(QChar(c));
    };

    // A name is followed by its "(" or gets "()" inserted; which one is known only once the
    // token after it has been read.
    bool callPending = false;
    qsizetype callEnd = 0;
    const auto settleCall = [&](bool opensParenthesis) {
        if (callPending && !opensParenthesis)
            appendEmptyCall(callEnd);
        callPending = false;
    };
    const auto appendNumber = [&](double value, qsizetype start, qsizetype end) {
        settleCall(false);
        append({Token::Kind::number, Token::Role::none, nullptr, value, {start, end}});
    };

    // The extractors' order: numbers, fractions, superscripts, variables, quoted names,
    // operators, names.
    for (qsizetype i = 0;;) {
        while (i < size && TokenCharacterBuffer::isWhitespace(QChar(characters[i])))
            ++i;
        if (i >= size)
            break;
        const qsizetype start = i;
        const char16_t c = characters[i];

        if (c == u'0') {
            // "0x1F", "0o17"; a base mark without digits leaves the 0 a decimal number.
            const char16_t mark = casefolding::fold(at(i + 1));
            if (mark == u'x' || mark == u'o') {
                const bool hex = mark == u'x';
                qsizetype end = i + 2;
                while (hex ? isHexDigit(at(end)) : (at(end) >= u'0' && at(end) <= u'7'))
                    ++end;
                if (end > i + 2) {
                    appendNumber(numberparsing::integerValue(m_text.sliced(i + 2, end - i - 2), hex ? 16 : 8), start,
                                 end);
                    i = end;
                    continue;
                }
            }
        }
        if (isDigit(c) || (c == u'.' && isDigit(at(i + 1)))) {
            // The value of a plain number is gathered while its digits are read.
            quint64 mantissa = 0;
            int significantDigits = 0;
            int fractionDigits = 0;
            qsizetype end = i;
            for (bool seenPoint = false;; ++end) {
                const char16_t d = at(end);
                if (isDigit(d)) {
                    if (mantissa != 0 || d != u'0')
                        ++significantDigits;
                    mantissa = mantissa * 10 + (d - u'0');
                    if (seenPoint)
                        ++fractionDigits;
                    continue;
                }
                if (d == u'.' && !seenPoint) {
                    seenPoint = true;
                    continue;
                }
                break;
            }
            bool plain = significantDigits <= numberparsing::kExactDigits && fractionDigits <= numberparsing::kExactDigits;
            const char16_t mark = at(end);
            if (mark == u'e' || mark == u'E') {
                qsizetype exponent = end + 1;
                const char16_t sign = at(exponent);
                if (sign == u'-' || sign == u'+' || sign == 0x2212)
                    ++exponent;
                if (isDigit(at(exponent))) {
                    while (isDigit(at(exponent)))
                        ++exponent;
                    end = exponent;
                    plain = false;
                }
            }
            appendNumber(plain ? numberparsing::exactDecimalValue(mantissa, fractionDigits)
                               : numberparsing::decimalValue(m_text.sliced(i, end - i)),
                         start, end);
            i = end;
            continue;
        }
        if (c >= 0x80 && FractionNumberExtractor::fractionValue(QChar(c)))
            return false;
        if (c >= 0x80 && !ExponentExtractor::plainCharacter(QChar(c)).isNull()) {
            settleCall(false);
            if (!readSuperscript(start, i))
                return false;
            continue;
        }
        if (c == u'$') {
            qsizetype end = i + 1;
            while (end < size && isNameCharacter(characters[end]))
                ++end;
            if (end == i + 1)
                return false;
            settleCall(false);
            append({Token::Kind::variable, Token::Role::none, nullptr, 0.0, {start, end}});
            i = end;
            continue;
        }
        if (c == u'"' || c == u'\'')
            return false;
        if (operatorTokens.containsCharacter(QChar(c))) {
            // The longest run of operator characters that is a token, so "**" wins over "*".
            qsizetype length = 0;
            if (operatorTokens.longestTokenLength() <= 2 && c < 0x80 && at(i + 1) < 0x80) {
                if (operatorTokens.containsAsciiToken(c, at(i + 1)))
                    length = 2;
                else if (operatorTokens.containsAsciiToken(c))
                    length = 1;
            } else {
                qsizetype run = 0;
                while (run < operatorTokens.longestTokenLength() && i + run < size &&
                       operatorTokens.containsCharacter(QChar(characters[i + run]))) {
                    ++run;
                }
                length = run;
                while (length > 0 && !operatorTokens.containsToken(m_text.sliced(i, length)))
                    --length;
            }
            if (length == 0)
                return false;
            const QStringView token = m_text.sliced(i, length);
            settleCall(callPending && m_operatorSet->isOpenParenthesisToken(token));
            const Token *previous = m_tokens.empty() ? nullptr : &m_tokens.back();
            bool unknown = false;
            const Operator *op = m_operatorSet->operatorForToken(
                token, OperatorSet::positionBehind(!previous, previous ? previous->op : nullptr), unknown);
            if (!op)
                return false;
            appendOperator(*op, {start, start + length});
            i += length;
            continue;
        }
        qsizetype end = i + 1;
        while (end < size && isNameCharacter(characters[end]))
            ++end;
        settleCall(false);
        append({Token::Kind::identifier, Token::Role::none, nullptr, 0.0, {start, end}});
        if (m_argumentlessFunctions) {
            callPending = true;
            callEnd = end;
        }
        i = end;
    }
    settleCall(false);
    return true;
}

// "2³" is "2 ** (3)". Only superscript digits are read here; signs and parentheses in a
// superscript are left to the staged parser.
bool LineParser::readSuperscript(qsizetype start, qsizetype &end)
{
    // Longer runs are no power anyone types; the staged parser reads them all the same.
    constexpr qsizetype kLongestRun = 15;
    char16_t digits[kLongestRun];
    qsizetype length = 0;
    end = start;
    for (;; ++end) {
        const QChar plain =
            ExponentExtractor::plainCharacter(end < m_text.size() ? m_text[end] : QChar());
        if (plain.isNull())
            break;
        if (!isDigit(plain.unicode()) || length == kLongestRun)
            return false;
        digits[length++] = plain.unicode();
    }
    appendOperator(m_operatorSet->powerOperator(), {start, start});
    m_tokens.push_back({Token::Kind::operatorSymbol, Token::Role::open, m_open, 0.0, {start, start}});
    m_tokens.push_back({Token::Kind::number, Token::Role::none, nullptr,
                        numberparsing::decimalValue(QStringView(digits, length)), {start, end}});
    m_tokens.push_back({Token::Kind::operatorSymbol, Token::Role::close, m_close, 0.0, {end, end}});
    return true;
}

void LineParser::append(const Token &token)
{
    if (m_implicitMultiplication && !m_tokens.empty()) {
        const Token &previous = m_tokens.back();
        const bool previousAllows = previous.kind == Token::Kind::number || previous.kind == Token::Kind::variable ||
                                    (previous.op && previous.op->isPostfix());
        const bool tokenTakes = token.kind != Token::Kind::operatorSymbol || token.op->isPrefix();
        if (previousAllows && tokenTakes) {
            const qsizetype at = token.range.start;
            m_tokens.push_back({Token::Kind::operatorSymbol, Token::Role::none, m_implicitMultiply, 0.0, {at, at}});
        }
    }
    m_tokens.push_back(token);
}

void LineParser::appendOperator(const Operator &op, CharacterRange range)
{
    Token::Role role = Token::Role::none;
    if (const std::optional<BuiltInOperator> builtIn = op.builtInOperator()) {
        if (*builtIn == BuiltInOperator::parenthesisOpen)
            role = Token::Role::open;
        else if (*builtIn == BuiltInOperator::parenthesisClose)
            role = Token::Role::close;
        else if (*builtIn == BuiltInOperator::comma)
            role = Token::Role::comma;
    }
    append({Token::Kind::operatorSymbol, role, &op, 0.0, range});
}

void LineParser::appendEmptyCall(qsizetype at)
{
    m_tokens.push_back({Token::Kind::operatorSymbol, Token::Role::open, m_open, 0.0, {at, at}});
    m_tokens.push_back({Token::Kind::operatorSymbol, Token::Role::close, m_close, 0.0, {at, at}});
}

qint32 LineParser::buildSequence(Context context, int depth)
{
    if (depth > limits::kMaxNestingDepth)
        return -1;
    const std::size_t base = m_elements.size();
    while (m_position < m_tokens.size()) {
        const Token &token = m_tokens[m_position];
        if (token.role == Token::Role::close) {
            if (context == Context::topLevel)
                return -1;
            break;
        }
        if (context == Context::argument && token.role == Token::Role::comma)
            break;

        OperatorReduction::Element element;
        element.range = token.range;
        switch (token.kind) {
        case Token::Kind::number:
            element.node = m_tree->addNumber(token.value, token.range);
            ++m_position;
            break;
        case Token::Kind::variable:
            element.node = m_tree->addVariable(m_text.sliced(token.range.start + 1, token.range.length() - 1).toString(),
                                               token.range);
            ++m_position;
            break;
        case Token::Kind::identifier:
            element.node = buildCall(depth);
            if (element.node < 0)
                return -1;
            element.range = m_tree->node(element.node).range;
            break;
        case Token::Kind::operatorSymbol:
            if (token.role == Token::Role::open) {
                const CharacterRange open = token.range;
                ++m_position;
                element.node = buildSequence(Context::group, depth + 1);
                if (element.node < 0 || m_position >= m_tokens.size())
                    return -1;
                element.range = open.united(m_tokens[m_position].range);
                ++m_position;
            } else {
                element.op = token.op;
                ++m_position;
            }
            break;
        }
        m_elements.push_back(element);
    }

    const std::size_t count = m_elements.size() - base;
    if (count == 0)
        return -1;
    // A lone operand, the common case inside calls, needs no reduction.
    if (count == 1 && !m_elements[base].op) {
        const qint32 node = m_elements[base].node;
        m_elements.resize(base);
        return node;
    }
    // A line still being typed, "12 +", lacks an operand at an end. The reduction would
    // throw; declining here spares the exception, and the staged parser names the error.
    const Operator *first = m_elements[base].op;
    const Operator *last = m_elements.back().op;
    if ((first && !first->isPrefix()) || (last && !last->isPostfix()))
        return -1;
    const qint32 node =
        OperatorReduction(*m_tree, std::span(m_elements).subspan(base), m_pending).run(m_elements[base].range);
    m_elements.resize(base);
    return node;
}

qint32 LineParser::buildCall(int depth)
{
    const CharacterRange nameRange = m_tokens[m_position].range;
    ++m_position;
    if (m_position >= m_tokens.size() || m_tokens[m_position].role != Token::Role::open)
        return -1;
    ++m_position;

    const std::size_t base = m_arguments.size();
    for (;;) {
        if (m_position >= m_tokens.size())
            return -1;
        const Token &next = m_tokens[m_position];
        const bool closesEmptyCall = m_arguments.size() == base && next.role == Token::Role::close;
        if (!closesEmptyCall) {
            const qint32 argument = buildSequence(Context::argument, depth + 1);
            if (argument < 0 || m_position >= m_tokens.size())
                return -1;
            m_arguments.push_back(argument);
        }
        const Token &separator = m_tokens[m_position];
        ++m_position;
        if (separator.role != Token::Role::close)
            continue; // The comma that ended an argument.

        // Names written as the built-ins spell them share the built-in's text.
        const QStringView name = m_text.sliced(nameRange.start, nameRange.length());
        const BuiltInFunctionTable &builtIns = BuiltInFunctionTable::instance();
        const qint16 builtIn = builtIns.find(name);
        QString nameString = builtIn != BuiltInFunctionTable::kNone && builtIns.name(builtIn) == name
                                 ? builtIns.name(builtIn)
                                 : name.toString();
        const qint32 node =
            m_tree->addFunction(std::move(nameString), builtIn, std::span(m_arguments).subspan(base),
                                nameRange.united(separator.range));
        m_arguments.resize(base);
        if (m_tree->node(node).height > limits::kMaxExpressionHeight)
            return -1;
        return node;
    }
}

void LineParser::releaseLargeBuffers()
{
    releaseIfLarge(m_tokens);
    releaseIfLarge(m_elements);
    releaseIfLarge(m_pending);
    releaseIfLarge(m_arguments);
}

} // namespace scrivlet::math
