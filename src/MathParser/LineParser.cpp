#include "MathParser/LineParser.h"

#include "MathParser/BuiltInFunctionTable.h"
#include "MathParser/Configuration.h"
#include "MathParser/EvaluationState.h"
#include "MathParser/Evaluator.h"
#include "MathParser/ExpressionTree.h"
#include "MathParser/LineScanner.h"
#include "MathParser/OperatorSet.h"
#include "MathParser/ParserLimits.h"

#include <limits>

namespace scrivlet::math {

namespace {

// A line this long is pasted, not typed; its buffers are not worth keeping for the next.
constexpr std::size_t kLargestKeptBuffer = 4096;

template <typename T> void releaseIfLarge(std::vector<T> &buffer)
{
    if (buffer.capacity() > kLargestKeptBuffer)
        std::vector<T>().swap(buffer);
}

bool isBuiltIn(const Operator &op, BuiltInOperator which)
{
    const std::optional<BuiltInOperator> builtIn = op.builtInOperator();
    return builtIn && *builtIn == which;
}

} // namespace

std::optional<LineParser::Operand> LineParser::runOnThisThread(QStringView text, const Configuration &configuration,
                                                               ExpressionTree *tree, const Evaluator *evaluator)
{
    // One parser per thread, reused. A built-in that a caller gave the evaluator could
    // compute a line of its own while this one is read; that line gets a parser of its own.
    thread_local LineParser shared;
    if (shared.m_busy) {
        LineParser own;
        return own.run(text, configuration, tree, evaluator);
    }
    shared.m_busy = true;
    struct Release {
        bool &busy;
        ~Release() { busy = false; }
    } release{shared.m_busy};
    return shared.run(text, configuration, tree, evaluator);
}

std::optional<qint32> LineParser::parse(QStringView text, const Configuration &configuration, ExpressionTree &tree)
{
    // No token makes more than one node, and every token but an inserted product spans a
    // character; a pasted monster line grows the tree as it goes instead.
    tree.reserve(tree.nodeCount() + qMin(text.size() + 1, qsizetype(kLargestKeptBuffer)));
    const std::optional<Operand> root = runOnThisThread(text, configuration, &tree, nullptr);
    return root ? std::optional<qint32>(root->node) : std::nullopt;
}

std::optional<double> LineParser::evaluate(QStringView text, const Configuration &configuration,
                                           const Evaluator &evaluator)
{
    const std::optional<Operand> result = runOnThisThread(text, configuration, nullptr, &evaluator);
    return result ? std::optional<double>(result->value) : std::nullopt;
}

std::optional<LineParser::Operand> LineParser::run(QStringView text, const Configuration &configuration,
                                                   ExpressionTree *tree, const Evaluator *evaluator)
{
    // A locale's number format is read by trying ever shorter prefixes with QLocale; math
    // lines never use one, so it stays with the staged parser.
    if (configuration.locale)
        return std::nullopt;
    m_tree = tree;
    m_evaluator = evaluator;
    m_text = text;
    m_operatorSet = configuration.operatorSet.get();
    m_argumentlessFunctions = configuration.allowArgumentlessFunctions;
    m_implicitMultiplication = configuration.allowImplicitMultiplication;
    m_implicitMultiply = configuration.useHighPrecedenceImplicitMultiplication
                             ? &m_operatorSet->implicitMultiplyOperator()
                             : &m_operatorSet->multiplyOperator();
    // A set without parentheses cannot write "pi()", and in a set whose operators of one
    // strength associate both ways, which way wins depends on the whole line: the staged
    // parser decides what those mean.
    if (!m_operatorSet->openParenthesis() || !m_operatorSet->closeParenthesis() ||
        !m_operatorSet->hasUniformAssociativity()) {
        return std::nullopt;
    }
    m_expectingOperand = true;
    m_behindPostfix = false;
    m_callJustOpened = false;
    m_namePending = false;
    m_innermost = -1;
    m_depth = 0;
    m_operands.clear();
    m_waiting.clear();
    m_postfix.clear();
    m_arguments.clear();

    // A line is computed with one state for all its built-ins: the first failure ends it.
    std::optional<MathParserError> error;
    std::optional<EvaluationState> state;
    if (m_evaluator) {
        m_functions = m_evaluator->functionsCalledByNumber();
        if (!m_functions)
            return std::nullopt;
        m_state = &state.emplace(*m_evaluator, error);
    }
    LineScanner scanner(text, m_operatorSet->operatorTokenSet());
    std::optional<Operand> result;
    if (read(scanner))
        result = m_operands.back();
    m_state = nullptr;
    releaseLargeBuffers();
    return result;
}

bool LineParser::read(LineScanner &scanner)
{
    using Kind = LineScanner::Token::Kind;
    for (;;) {
        const LineScanner::Token token = scanner.next();
        if (m_namePending) {
            m_namePending = false;
            if (token.kind == Kind::symbol && m_operatorSet->isOpenParenthesisToken(textOf(token.range))) {
                bool unknown = false;
                const Operator *op = m_operatorSet->operatorForToken(
                    textOf(token.range), OperatorSet::TokenPosition::behindOperand, unknown);
                if (!op || !isBuiltIn(*op, BuiltInOperator::parenthesisOpen) || !open(Waiting::Kind::call, m_name))
                    return false;
                continue;
            }
            if (!callWithoutParentheses())
                return false;
        }

        switch (token.kind) {
        case Kind::end:
            return finish();
        case Kind::unsupported:
            return false;
        case Kind::number:
            if (!startOperand(token.range.start) || !pushNumber(token.value, token.range))
                return false;
            break;
        case Kind::variable:
            // A line with variables is computed from its tree, where the substitutions are.
            if (!m_tree || !startOperand(token.range.start))
                return false;
            pushOperand({m_tree->addVariable(textOf({token.range.start + 1, token.range.end}).toString(), token.range),
                         1, 0.0, token.range});
            break;
        case Kind::name:
            if (!startOperand(token.range.start))
                return false;
            m_namePending = true;
            m_name = token.range;
            break;
        case Kind::superscript: {
            // "2³" is "2 ** (3)": a power with an empty token at the superscript's start.
            const Operator &power = m_operatorSet->powerOperator();
            const qsizetype start = token.range.start;
            if (m_expectingOperand || !settlePostfix(&power) || !pushBinary(power, {start, start}) ||
                !pushNumber(token.value, token.range)) {
                return false;
            }
            m_behindPostfix = true;
            break;
        }
        case Kind::symbol:
            if (!readSymbol(textOf(token.range), token.range))
                return false;
            break;
        }
    }
}

bool LineParser::readSymbol(QStringView token, CharacterRange range)
{
    using Position = OperatorSet::TokenPosition;
    const Position position = m_expectingOperand
                                  ? Position::noOperand
                                  : (m_behindPostfix ? Position::behindPostfix : Position::behindOperand);
    bool unknown = false;
    const Operator *op = m_operatorSet->operatorForToken(token, position, unknown);
    if (!op)
        return false;
    if (op->isBinary()) {
        // Inside a call, a comma ends an argument; elsewhere it is an operator.
        if (m_innermost >= 0 && m_waiting[std::size_t(m_innermost)].kind == Waiting::Kind::call &&
            isBuiltIn(*op, BuiltInOperator::comma)) {
            return separateArgument();
        }
        return !m_expectingOperand && settlePostfix(op) && pushBinary(*op, range);
    }
    if (op->isPrefix()) {
        if (!startOperand(range.start))
            return false;
        return isBuiltIn(*op, BuiltInOperator::parenthesisOpen) ? open(Waiting::Kind::group, range)
                                                                : pushPrefix(*op, range);
    }
    if (isBuiltIn(*op, BuiltInOperator::parenthesisClose))
        return close(range);
    if (m_expectingOperand)
        return false;
    m_postfix.push_back({op, range, 0, Operator::Associativity::left});
    m_behindPostfix = true;
    return true;
}

bool LineParser::finish()
{
    if (m_expectingOperand || !settlePostfix(nullptr))
        return false;
    while (!m_waiting.empty()) {
        // An open parenthesis or call was never closed.
        if (m_waiting.back().kind == Waiting::Kind::group || m_waiting.back().kind == Waiting::Kind::call)
            return false;
        if (!reduce())
            return false;
    }
    return m_operands.size() == 1;
}

Q_ALWAYS_INLINE bool LineParser::pushOperand(Operand operand)
{
    m_operands.push_back(operand);
    m_expectingOperand = false;
    m_behindPostfix = false;
    m_callJustOpened = false;
    return true;
}

Q_ALWAYS_INLINE bool LineParser::pushNumber(double value, CharacterRange range)
{
    return pushOperand({m_tree ? m_tree->addNumber(value, range) : -1, 1, value, range});
}

Q_ALWAYS_INLINE bool LineParser::startOperand(qsizetype at)
{
    if (m_expectingOperand)
        return true;
    // "2pi", "2(3)", "3!4": two operands side by side multiply.
    if (!m_implicitMultiplication)
        return false;
    return settlePostfix(m_implicitMultiply) && pushBinary(*m_implicitMultiply, {at, at});
}

Q_ALWAYS_INLINE bool LineParser::pushBinary(const Operator &op, CharacterRange range)
{
    const std::optional<int> precedence = op.precedence();
    if (!precedence || !reduceWhileStronger(*precedence, op.associativity()))
        return false;
    m_waiting.push_back({Waiting::Kind::binary, *precedence, &op, range, -1, 0});
    m_expectingOperand = true;
    m_behindPostfix = false;
    m_callJustOpened = false;
    return true;
}

bool LineParser::pushPrefix(const Operator &op, CharacterRange range)
{
    const std::optional<int> precedence = op.precedence();
    if (!precedence)
        return false;
    // Behind a stronger operator a prefix operator takes just what that one leaves it:
    // in "2 ** -3 * 4" the minus takes the 3 alone, as the power does.
    int strength = *precedence;
    if (!m_waiting.empty()) {
        const Waiting &before = m_waiting.back();
        if (before.kind == Waiting::Kind::binary || before.kind == Waiting::Kind::prefix)
            strength = qMax(strength, before.strength);
    }
    m_waiting.push_back({Waiting::Kind::prefix, strength, &op, range, -1, 0});
    m_expectingOperand = true;
    m_behindPostfix = false;
    m_callJustOpened = false;
    return true;
}

bool LineParser::open(Waiting::Kind kind, CharacterRange range)
{
    if (++m_depth > limits::kMaxNestingDepth)
        return false;
    m_waiting.push_back({kind, 0, nullptr, range, m_innermost, qint32(m_arguments.size())});
    m_innermost = qint32(m_waiting.size() - 1);
    m_expectingOperand = true;
    m_behindPostfix = false;
    m_callJustOpened = kind == Waiting::Kind::call;
    return true;
}

bool LineParser::close(CharacterRange range)
{
    // Only a call may be empty, "sum()"; "()" and "(1 +)" are mistakes.
    const bool emptyCall = m_expectingOperand && m_callJustOpened;
    if (m_expectingOperand && !emptyCall)
        return false;
    if (!emptyCall) {
        if (!settlePostfix(nullptr))
            return false;
        while (!m_waiting.empty() && m_waiting.back().kind != Waiting::Kind::group &&
               m_waiting.back().kind != Waiting::Kind::call) {
            if (!reduce())
                return false;
        }
    }
    if (m_waiting.empty())
        return false; // A ")" without its "(".
    const Waiting opening = m_waiting.back();
    m_waiting.pop_back();
    m_innermost = opening.enclosing;
    --m_depth;

    const CharacterRange whole = opening.range.united(range);
    if (opening.kind == Waiting::Kind::group) {
        m_operands.back().range = whole;
    } else {
        if (!emptyCall) {
            m_arguments.push_back(m_operands.back());
            m_operands.pop_back();
        }
        const std::size_t first = std::size_t(opening.firstArgument);
        Operand result;
        const bool called = call(opening.range, std::span(m_arguments).subspan(first), whole, result);
        m_arguments.resize(first);
        if (!called)
            return false;
        m_operands.push_back(result);
    }
    m_expectingOperand = false;
    m_behindPostfix = true;
    m_callJustOpened = false;
    return true;
}

bool LineParser::separateArgument()
{
    if (m_expectingOperand || !settlePostfix(nullptr))
        return false;
    while (m_waiting.back().kind != Waiting::Kind::call) {
        if (!reduce())
            return false;
    }
    m_arguments.push_back(m_operands.back());
    m_operands.pop_back();
    m_expectingOperand = true;
    m_behindPostfix = false;
    m_callJustOpened = false;
    return true;
}

bool LineParser::callWithoutParentheses()
{
    if (!m_argumentlessFunctions)
        return false;
    Operand result;
    if (!call(m_name, {}, m_name, result))
        return false;
    pushOperand(result);
    m_behindPostfix = true;
    return true;
}

bool LineParser::call(CharacterRange name, std::span<const Operand> arguments, CharacterRange range, Operand &result)
{
    const QStringView written = textOf(name);
    const BuiltInFunctionTable &builtIns = BuiltInFunctionTable::instance();
    const qint16 builtIn = builtIns.find(written);
    qint32 height = 0;
    for (const Operand &argument : arguments)
        height = qMax(height, argument.height);
    result = {-1, height + 1, 0.0, range};
    if (result.height > limits::kMaxExpressionHeight)
        return false;

    if (!m_tree) {
        switch (arguments.size()) {
        case 0:
            return callDirectly(builtIn, nullptr, nullptr, result.value);
        case 1:
            return callDirectly(builtIn, &arguments[0].value, nullptr, result.value);
        case 2:
            return callDirectly(builtIn, &arguments[0].value, &arguments[1].value, result.value);
        default:
            return false;
        }
    }

    m_argumentNodes.clear();
    for (const Operand &argument : arguments)
        m_argumentNodes.push_back(argument.node);
    // Names written as the built-ins spell them share the built-in's text.
    QString nameString = builtIn != BuiltInFunctionTable::kNone && builtIns.name(builtIn) == written
                             ? builtIns.name(builtIn)
                             : written.toString();
    result.node = m_tree->addFunction(std::move(nameString), builtIn, m_argumentNodes, range);
    return true;
}

Q_ALWAYS_INLINE bool LineParser::settlePostfix(const Operator *next)
{
    return m_postfix.empty() || applyPostfix(next);
}

bool LineParser::applyPostfix(const Operator *next)
{
    // "2 ** 3! ** 2": a postfix operator before a stronger operator takes just what that
    // one leaves it, and so does every postfix operator before it.
    int strength = std::numeric_limits<int>::min();
    Operator::Associativity associativity = Operator::Associativity::left;
    if (next) {
        if (!next->precedence())
            return false;
        strength = *next->precedence();
        associativity = next->associativity();
    }
    for (auto postfix = m_postfix.rbegin(); postfix != m_postfix.rend(); ++postfix) {
        const std::optional<int> precedence = postfix->op->precedence();
        if (!precedence)
            return false;
        if (*precedence > strength) {
            strength = *precedence;
            associativity = postfix->op->associativity();
        }
        postfix->strength = strength;
        postfix->associativity = associativity;
    }
    for (const Postfix &postfix : m_postfix) {
        if (!reduceWhileStronger(postfix.strength, postfix.associativity))
            return false;
        Operand &operand = m_operands.back();
        if (!apply(*postfix.op, operand, nullptr, operand.range.united(postfix.range)))
            return false;
    }
    m_postfix.clear();
    return true;
}

Q_ALWAYS_INLINE bool LineParser::reduceWhileStronger(int strength, Operator::Associativity associativity)
{
    while (!m_waiting.empty()) {
        const Waiting &top = m_waiting.back();
        if (top.kind == Waiting::Kind::group || top.kind == Waiting::Kind::call || top.strength < strength ||
            (top.strength == strength && associativity == Operator::Associativity::right)) {
            break;
        }
        if (!reduce())
            return false;
    }
    return true;
}

Q_ALWAYS_INLINE bool LineParser::reduce()
{
    const Waiting &top = m_waiting.back();
    const Operator &op = *top.op;
    const CharacterRange range = top.range;
    const bool binary = top.kind == Waiting::Kind::binary;
    m_waiting.pop_back();
    if (binary) {
        const Operand right = m_operands.back();
        m_operands.pop_back();
        Operand &left = m_operands.back();
        return apply(op, left, &right, left.range.united(range).united(right.range));
    }
    Operand &operand = m_operands.back();
    return apply(op, operand, nullptr, range.united(operand.range));
}

Q_ALWAYS_INLINE bool LineParser::apply(const Operator &op, Operand &first, const Operand *second, CharacterRange range)
{
    first.height = (second ? qMax(first.height, second->height) : first.height) + 1;
    first.range = range;
    if (first.height > limits::kMaxExpressionHeight)
        return false;
    if (m_tree) {
        first.node = m_tree->addOperator(op, first.node, second ? second->node : -1, range);
        return true;
    }
    return callDirectly(op.builtInFunction(), &first.value, second ? &second->value : nullptr, first.value);
}

// The evaluator calls a built-in of one or two arguments with their values, and so does
// the parser; every other function evaluates its own arguments and needs the tree.
Q_ALWAYS_INLINE bool LineParser::callDirectly(qint16 builtIn, const double *x, const double *y, double &value)
{
    const Function *function = builtIn != BuiltInFunctionTable::kNone ? m_functions->findBuiltIn(builtIn) : nullptr;
    if (!function)
        return false;
    const NativeFunction *native = &function->native();
    EvaluationState &state = *m_state;
    switch (native->shape) {
    case NativeFunction::Shape::constant:
        if (x)
            return false;
        value = native->constant;
        return true;
    case NativeFunction::Shape::unary:
        if (!x || y)
            return false;
        value = native->unary(state, *x);
        break;
    case NativeFunction::Shape::binary:
        if (!y)
            return false;
        value = native->binary(state, *x, *y);
        break;
    case NativeFunction::Shape::none:
    case NativeFunction::Shape::variadic:
        return false;
    }
    // A failure is named by the tree walk, which knows where it happened.
    return !state.failed();
}

void LineParser::releaseLargeBuffers()
{
    releaseIfLarge(m_operands);
    releaseIfLarge(m_waiting);
    releaseIfLarge(m_postfix);
    releaseIfLarge(m_arguments);
    releaseIfLarge(m_argumentNodes);
}

} // namespace scrivlet::math
