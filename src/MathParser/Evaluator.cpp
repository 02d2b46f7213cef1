#include "MathParser/Evaluator.h"

#include "MathParser/BuiltInFunctionTable.h"
#include "MathParser/Configuration.h"
#include "MathParser/EvaluationState.h"
#include "MathParser/ExpressionTree.h"
#include "MathParser/Expressionizer.h"
#include "MathParser/LineParser.h"

#include <limits>

namespace scrivlet::math {

namespace {

// A line evaluated from its text is parsed and dropped at once, so every such line can use
// the same tree storage: no allocation per line once it has grown. Taken only when no
// Expression of an earlier line still holds it.
std::shared_ptr<ExpressionTree> reusableTree()
{
    constexpr qsizetype kLargestKeptTree = 4096;
    thread_local std::shared_ptr<ExpressionTree> tree;
    if (!tree || tree.use_count() > 1 || tree->nodeCount() > kLargestKeptTree)
        tree = std::make_shared<ExpressionTree>();
    else
        tree->clear();
    return tree;
}

} // namespace

Evaluator::Evaluator() : m_functionSet(FunctionSet::builtIn(false)) {}

Evaluator::Evaluator(FunctionSet functionSet) : m_functionSet(std::move(functionSet)) {}

const Evaluator &Evaluator::shared()
{
    static const Evaluator evaluator;
    return evaluator;
}

MathResult<double> Evaluator::evaluate(const Expression &expression, const Substitutions &substitutions,
                                       const VariableResolver &variableResolver) const
{
    Run run{expression, substitutions, variableResolver, std::nullopt};
    const double value = evaluateNode(run, expression.index());
    if (run.error)
        return std::move(*run.error);
    return value;
}

MathResult<double> Evaluator::evaluate(const QString &text, const Substitutions &substitutions) const
{
    const Configuration &configuration = Configuration::shared();
    // Nearly every line is computed while it is read; one with variables, functions of
    // many arguments or a failure gets its tree, whose walk tells what it means.
    if (const std::optional<double> value = LineParser::evaluate(text, configuration, *this))
        return *value;
    std::shared_ptr<ExpressionTree> tree = reusableTree();
    if (const std::optional<qint32> root = LineParser::parse(text, configuration, *tree))
        return evaluate(Expression(std::move(tree), *root), substitutions);
    MathResult<Expression> expression = Expressionizer::parse(text, configuration);
    if (!expression)
        return std::move(expression).error();
    return evaluate(expression.value(), substitutions);
}

double Evaluator::evaluateNode(Run &run, qint32 index) const
{
    if (run.error)
        return std::numeric_limits<double>::quiet_NaN();
    const ExpressionTree::Node &node = run.root.tree().node(index);
    switch (node.kind) {
    case Expression::Kind::number:
        return node.number;
    case Expression::Kind::variable:
        return evaluateVariable(run, index);
    case Expression::Kind::function:
        break;
    }

    // Operators and the common functions are built-ins of one or two arguments; without an
    // overrider to ask first, they are called right here. Anything else, and a wrong
    // argument count, takes the general way.
    if (!m_functionOverrider && node.builtInFunction != BuiltInFunctionTable::kNone && !m_functionSet.caseSensitive()) {
        if (const Function *function = m_functionSet.findBuiltIn(node.builtInFunction)) {
            const NativeFunction &native = function->native();
            const ExpressionTree &tree = run.root.tree();
            if (native.shape == NativeFunction::Shape::binary && node.argumentCount == 2) {
                const double x = evaluateNode(run, tree.argumentIndex(node, 0));
                const double y = evaluateNode(run, tree.argumentIndex(node, 1));
                if (run.error)
                    return x;
                EvaluationState state(*this, run, index);
                return native.binary(state, x, y);
            }
            if (native.shape == NativeFunction::Shape::unary && node.argumentCount == 1) {
                const double x = evaluateNode(run, tree.argumentIndex(node, 0));
                if (run.error)
                    return x;
                EvaluationState state(*this, run, index);
                return native.unary(state, x);
            }
        }
    }
    return evaluateFunction(run, index);
}

double Evaluator::evaluateVariable(Run &run, qint32 index) const
{
    const ExpressionTree::Node &node = run.root.tree().node(index);
    const QString &name = run.root.tree().name(node);
    const auto substitution = run.substitutions.constFind(name);
    if (substitution != run.substitutions.cend())
        return *substitution;
    for (const VariableResolver *resolver : {&run.variableResolver, &m_variableResolver}) {
        if (*resolver) {
            if (const std::optional<double> value = (*resolver)(name))
                return *value;
        }
    }
    run.error = MathParserError(MathParserError::Kind::unknownVariable, node.range, name);
    return std::numeric_limits<double>::quiet_NaN();
}

// The arguments of a one- or two-argument built-in are evaluated here, without a call
// through the state for each; the rules are those of NativeFunction.
double Evaluator::call(const Function &function, EvaluationState &state, Run &run,
                       const ExpressionTree::Node &node) const
{
    const NativeFunction &native = function.native();
    const ExpressionTree &tree = run.root.tree();
    switch (native.shape) {
    case NativeFunction::Shape::unary: {
        if (node.argumentCount != 1) {
            state.requireArgumentCount(1, 1);
            return 0.0;
        }
        const double x = evaluateNode(run, tree.argumentIndex(node, 0));
        return run.error ? x : native.unary(state, x);
    }
    case NativeFunction::Shape::binary: {
        if (node.argumentCount != 2) {
            state.requireArgumentCount(2, 2);
            return 0.0;
        }
        const double x = evaluateNode(run, tree.argumentIndex(node, 0));
        const double y = evaluateNode(run, tree.argumentIndex(node, 1));
        return run.error ? x : native.binary(state, x, y);
    }
    default:
        return function(state);
    }
}

double Evaluator::evaluateFunction(Run &run, qint32 index) const
{
    const ExpressionTree::Node &node = run.root.tree().node(index);
    const QString &name = run.root.tree().name(node);
    EvaluationState state(*this, run, index);
    if (m_functionOverrider) {
        if (const std::optional<Function> function = m_functionOverrider(name))
            return (*function)(state);
    }
    // The parser numbered the built-in names; a case-sensitive set must compare the text.
    const Function *function = node.builtInFunction != BuiltInFunctionTable::kNone && !m_functionSet.caseSensitive()
                                   ? m_functionSet.findBuiltIn(node.builtInFunction)
                                   : m_functionSet.find(name);
    if (function)
        return call(*function, state, run, node);
    if (m_functionResolver) {
        if (const std::optional<Function> function = m_functionResolver(name))
            return (*function)(state);
    }
    run.error = MathParserError(MathParserError::Kind::unknownFunction, node.range, name);
    return std::numeric_limits<double>::quiet_NaN();
}

} // namespace scrivlet::math
