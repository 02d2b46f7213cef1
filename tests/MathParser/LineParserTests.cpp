#include "MathTestSupport.h"

#include "MathParser/Configuration.h"
#include "MathParser/EvaluationState.h"
#include "MathParser/ExpressionTree.h"
#include "MathParser/Expressionizer.h"
#include "MathParser/FunctionSet.h"
#include "MathParser/LineParser.h"
#include "MathWorkload.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <utility>
#include <vector>

namespace scrivlet::math {
namespace {

using K = MathParserError::Kind;

// The one-pass parser must build the tree the staged parser builds, node for node in
// shape, kinds, names, values, ranges and built-in numbers (the order the nodes are stored
// in may differ), with no node left over, and must decline every line the staged parser
// rejects, since it cannot name the error.
::testing::AssertionResult sameAsStaged(const QString &line, const Configuration &configuration)
{
    const MathResult<Expression> staged = Expressionizer::parse(line, configuration);
    ExpressionTree tree;
    const std::optional<qint32> root = LineParser::parse(line, configuration, tree);
    if (!staged) {
        if (root) {
            return ::testing::AssertionFailure()
                   << "\"" << line.toStdString() << "\" fails with "
                   << MathParserError::kindName(staged.error().kind()).toStdString() << " but was read as "
                   << tree.toString(*root).toStdString();
        }
        return ::testing::AssertionSuccess();
    }
    if (!root)
        return ::testing::AssertionSuccess();

    const ExpressionTree &expected = staged->tree();
    if (expected.nodeCount() != tree.nodeCount()) {
        return ::testing::AssertionFailure() << "\"" << line.toStdString() << "\" has " << tree.nodeCount()
                                             << " nodes, expected " << expected.nodeCount();
    }
    if (tree.node(*root).parent != -1)
        return ::testing::AssertionFailure() << "\"" << line.toStdString() << "\" has a root with a parent";
    // Both trees walked side by side; each pair of nodes also checks the parent link of
    // the one-pass tree.
    std::vector<std::pair<qint32, qint32>> pending{{*root, staged->index()}};
    while (!pending.empty()) {
        const auto [i, j] = pending.back();
        pending.pop_back();
        const ExpressionTree::Node &a = tree.node(i);
        const ExpressionTree::Node &b = expected.node(j);
        bool same = a.kind == b.kind && a.notation == b.notation && tree.name(a) == expected.name(b) &&
                    tree.operatorToken(a) == expected.operatorToken(b) && a.argumentCount == b.argumentCount &&
                    a.height == b.height && a.range == b.range && a.builtInFunction == b.builtInFunction &&
                    (a.number == b.number || (std::isnan(a.number) && std::isnan(b.number)));
        for (qint32 argument = 0; same && argument < a.argumentCount; ++argument) {
            const qint32 child = tree.argumentIndex(a, argument);
            same = tree.node(child).parent == i;
            pending.emplace_back(child, expected.argumentIndex(b, argument));
        }
        if (!same) {
            return ::testing::AssertionFailure() << "\"" << line.toStdString() << "\" differs at "
                                                 << tree.toString(i).toStdString() << " instead of "
                                                 << expected.toString(j).toStdString();
        }
    }
    return ::testing::AssertionSuccess();
}

class LineParserAgreement : public ::testing::TestWithParam<const char16_t *> {};

TEST_P(LineParserAgreement, BuildsTheStagedTreeOrDeclines)
{
    EXPECT_TRUE(sameAsStaged(QString::fromUtf16(GetParam()), Configuration::shared()));
}

INSTANTIATE_TEST_SUITE_P(
    EveryBranch, LineParserAgreement,
    ::testing::Values(
        // Numbers in every notation, and the marks that only look like part of one.
        u"2 + 3 * 4", u"1.5e3 - .5", u"2e-3 * 2E+2", u"2e−3", u"1.5e", u"2e-x", u"0x1F + 0o17", u"0x", u"0o8", u"0XfF",
        u"1234567890123456", u"0.0000000000000001", u"00012.50", u"1e999", u"9.", u"1..2",
        // Operators: longest token, prefix and postfix forms, implicit products.
        u"2 ** 3 ** 2", u"2 ** -3 ** 2", u"-2 ** 2", u"--2", u"3!!", u"3! * 2", u"2 -3", u"1 << 2 + 1", u"2 <= 3",
        u"2 =< 1", u"6 & 3 | 8", u"1 < 2 && 3 > 4", u"5 % 3", u"2(3)", u"(2)(3)", u"2pi", u"pi 2", u"3!4", u"2√9",
        u"1/2(4)", u"-√4", u"√4!", u"7 − 2", u"6 × 7", u"4°", u"!0", u"~0",
        // Groups, calls, arguments and commas.
        u"((((7))))", u"max(1, 2 + 3, pi)", u"sum()", u"pi()", u"max(1, (2, 3))", u"1, 2", u"sin(cos(tan(1)))",
        u"SQRT(16)", u"Avg(1, 2)", u"sin⁻¹(1)", u"log2(8)", u"round(2.5)", u"foo(1)(2)", u"2 apples",
        // Superscripts: digits are read here, signs and parentheses by the staged parser.
        u"2²", u"2³ + 1", u"3²4", u"2²³", u"pi²", u"(1+1)²", u"2⁻¹", u"2⁽¹⁺²⁾", u"²",
        // Variables, quoted names, fractions.
        u"$a * 2", u"$a1.5sum", u"$ + 1", u"$", u"'unit price' * 2", u"1½", u"½",
        // Mistakes of every stage.
        u"", u"   ", u"(", u")", u"()", u"(1 + 2", u"1 + 2)", u"max(1", u"max(1,", u"max(,2)", u"max(1,,2)", u"max(1,)",
        u"1 +", u"* 2", u"°", u"2 * * 3", u"5 %", u"!!3", u"=!", u"2⁽⁾"));

// Lines made of random pieces reach the corners a table misses. The generator is fixed,
// so a failure names a line that fails on every run.
TEST(LineParserAgreement, RandomLinesAgree)
{
    static const char16_t *const pieces[] = {
        u"2",   u"0",   u"1.5", u".5",  u"1e3", u"2e-2", u"0x1F", u"0o17", u"10",   u"(",    u")",   u"(",   u")",
        u"-",   u"+",   u"*",   u"/",   u"**",  u"!",    u"!!",   u"%",    u"^",    u"&",    u"|",   u"<<",  u"==",
        u"=",   u"<",   u">=",  u"&&",  u"~",   u",",    u",",    u"sin",  u"pi",   u"max",  u"sqrt", u"if",  u"e",
        u"$a",  u"$",   u"'b'", u"½",   u"²",   u"⁻",    u"¹",    u"√",    u"°",    u"×",    u"−",   u" ",   u" ",
        u"x",   u"foo", u"PI",  u"Sin", u"sum", u"\t",   u"¬",    u"≠",    u"π",    u"ϕ",    u"#",   u"€"};
    std::uint64_t state = 20240229;
    const auto below = [&state](std::uint64_t bound) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return (state >> 33) % bound;
    };
    int read = 0;
    for (int i = 0; i < 4000; ++i) {
        QString line;
        for (std::uint64_t n = 1 + below(12); n > 0; --n)
            line += QString::fromUtf16(pieces[below(std::size(pieces))]);
        ASSERT_TRUE(sameAsStaged(line, Configuration::shared()));
        ExpressionTree tree;
        read += LineParser::parse(line, Configuration::shared(), tree) ? 1 : 0;
    }
    // Most of these lines are mistakes; the rest must really be read by the one-pass parser.
    EXPECT_GT(read, 400);
}

TEST(LineParserAgreement, OtherConfigurationsAgree)
{
    Configuration plain;
    plain.allowImplicitMultiplication = false;
    Configuration ordinaryProduct;
    ordinaryProduct.useHighPrecedenceImplicitMultiplication = false;
    Configuration strict;
    strict.allowArgumentlessFunctions = false;
    Configuration percent;
    percent.operatorSet = std::make_shared<OperatorSet>(false);
    for (const Configuration *configuration : {&plain, &ordinaryProduct, &strict, &percent}) {
        for (const char16_t *line : {u"2 3", u"1/2$x", u"2pi", u"pi + 1", u"pi() + 1", u"200 + 10%", u"50% * 4",
                                     u"sin(1) 2", u"3!4", u"2(3)", u"max(1, 2)"})
            EXPECT_TRUE(sameAsStaged(QString::fromUtf16(line), *configuration));
    }
}

// The lines people type must not fall back to the staged parser: that would be correct but
// cost several times as much on every keystroke.
TEST(LineParser, ReadsTypicalLinesItself)
{
    for (const char16_t *line : {u"2 + 3 * 4", u"(17.5 - 3) * 2 ** 3 / sqrt(16) + 12", u"12+15-3+4.75+100-1",
                                 u"2(3 + 4)", u"sin(1)**2 + cos(1)**2", u"5² + 3³", u"2pi", u"$rate * 2"}) {
        ExpressionTree tree;
        EXPECT_TRUE(LineParser::parse(QString::fromUtf16(line), Configuration::shared(), tree))
            << QString::fromUtf16(line).toStdString();
    }
}

// The evaluator finds built-ins by the number the parser gave their name; what a set has
// done to a name since must still count.
TEST(BuiltInNumbers, FollowChangesToTheFunctionSet)
{
    FunctionSet set = FunctionSet::builtIn();
    ASSERT_FALSE(set.removeFunction(QStringLiteral("avg")).has_value());
    const Evaluator withoutAverage(set);
    EXPECT_TRUE(testing::failsWith(QStringLiteral("mean(1, 2)"), K::unknownFunction, withoutAverage));
    EXPECT_TRUE(testing::hasValue(QStringLiteral("max(1, 2)"), 2, withoutAverage));
    EXPECT_TRUE(testing::hasValue(QStringLiteral("mean(1, 2)"), 1.5));

    const Evaluator caseSensitive(FunctionSet::builtIn(true));
    EXPECT_TRUE(testing::failsWith(QStringLiteral("SQRT(4)"), K::unknownFunction, caseSensitive));
    EXPECT_TRUE(testing::hasValue(QStringLiteral("sqrt(4) + 1"), 3, caseSensitive));
}

// A built-in handed out as a FunctionEvaluator keeps its argument rules.
TEST(BuiltInNumbers, BuiltInsWorkThroughTheirEvaluator)
{
    const Function *squareRoot = FunctionSet::builtIn().find(u"sqrt");
    ASSERT_NE(squareRoot, nullptr);
    Evaluator evaluator;
    const FunctionEvaluator body = squareRoot->evaluator();
    evaluator.setFunctionResolver([body](const QString &name) -> std::optional<Function> {
        if (name != QLatin1String("root"))
            return std::nullopt;
        return Function({name}, body);
    });
    EXPECT_TRUE(testing::hasValue(QStringLiteral("root(16)"), 4, evaluator));
    EXPECT_TRUE(testing::failsWith(QStringLiteral("root(1, 2)"), K::invalidArguments, evaluator));
    EXPECT_TRUE(testing::failsWith(QStringLiteral("root(1/0)"), K::divideByZero, evaluator));
}

// A line computed while it is read must have the value the evaluator gives the staged
// parser's tree, to the bit; and a line whose tree does not parse or fails to evaluate must
// not be computed at all, since only the walk knows which error comes first.
::testing::AssertionResult sameValueAsTreeWalk(const QString &line, const Configuration &configuration,
                                               const Evaluator &evaluator)
{
    const std::optional<double> computed = LineParser::evaluate(line, configuration, evaluator);
    const MathResult<Expression> staged = Expressionizer::parse(line, configuration);
    const MathResult<double> walked = staged ? evaluator.evaluate(*staged) : MathResult<double>(staged.error());
    if (!walked) {
        if (computed) {
            return ::testing::AssertionFailure() << "\"" << line.toStdString() << "\" fails with "
                                                 << MathParserError::kindName(walked.error().kind()).toStdString()
                                                 << " but was computed as " << *computed;
        }
        return ::testing::AssertionSuccess();
    }
    const bool same = !computed || std::bit_cast<quint64>(*computed) == std::bit_cast<quint64>(walked.value()) ||
                      (std::isnan(*computed) && std::isnan(walked.value()));
    if (!same) {
        return ::testing::AssertionFailure() << "\"" << line.toStdString() << "\" was computed as " << *computed
                                             << ", its tree is " << walked.value();
    }
    return ::testing::AssertionSuccess();
}

// Expressions as people build them, operands and operators taking turns, with prefix and
// postfix operators, groups, calls, products without a sign and superscripts at random
// places, and now and then a piece left out or put in twice: the shapes where the order of
// applying operators decides the tree. The generator is fixed, so a failure names a line
// that fails on every run.
class ExpressionGenerator {
public:
    explicit ExpressionGenerator(std::uint64_t seed, std::vector<const char16_t *> extraBinary = {})
        : m_state(seed), m_binary(std::move(extraBinary))
    {
        for (const char16_t *op :
             {u"+", u"-",  u"*",  u"/",  u"%", u"**", u"^", u"&", u"|",  u"<<", u">>", u"==", u"!=",
              u"<", u">=", u"&&", u"||", u",", u"×",  u"÷", u"−", u"**", u"**", u"+",  u"*"})
            m_binary.push_back(op);
    }

    QString line()
    {
        QString text = sequence(0);
        // A mistake: a piece lost or doubled somewhere.
        if (below(8) == 0 && !text.isEmpty()) {
            const qsizetype at = qsizetype(below(std::uint64_t(text.size())));
            if (below(2) == 0)
                text.remove(at, 1);
            else
                text.insert(at, text[at]);
        }
        return text;
    }

private:
    std::uint64_t below(std::uint64_t bound)
    {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return (m_state >> 33) % bound;
    }
    template <std::size_t N> QString pick(const char16_t *const (&choices)[N])
    {
        return QString::fromUtf16(choices[below(N)]);
    }
    QString space() { return below(3) == 0 ? QStringLiteral(" ") : QString(); }

    QString sequence(int depth)
    {
        QString text = operand(depth);
        for (std::uint64_t terms = below(5); terms > 0; --terms) {
            // Side by side, two operands multiply.
            if (below(10) == 0)
                text += space() + operand(depth);
            else
                text += space() + QString::fromUtf16(m_binary[below(m_binary.size())]) + space() + operand(depth);
        }
        return text;
    }

    QString operand(int depth)
    {
        static const char16_t *const prefixes[] = {u"-", u"-", u"+", u"~", u"!", u"√", u"∛", u"¬", u"−"};
        static const char16_t *const postfixes[] = {u"!", u"!!", u"°", u"%", u"²", u"³"};
        QString text;
        for (std::uint64_t n = below(6) == 0 ? 1 + below(3) : 0; n > 0; --n)
            text += pick(prefixes) + space();
        text += primary(depth);
        for (std::uint64_t n = below(6) == 0 ? 1 + below(3) : 0; n > 0; --n)
            text += space() + pick(postfixes);
        return text;
    }

    QString primary(int depth)
    {
        static const char16_t *const numbers[] = {u"0", u"1", u"2", u"3", u"10", u"1.5", u".5", u"2e3", u"0x1F", u"7"};
        static const char16_t *const constants[] = {u"pi", u"e", u"PI", u"phi", u"true", u"foo", u"x"};
        static const char16_t *const unary[] = {u"sin", u"sqrt", u"abs", u"ln", u"Floor", u"round", u"factorial"};
        static const char16_t *const binary[] = {u"atan2", u"nthroot", u"max", u"mod", u"if", u"pow"};
        switch (depth < 3 ? below(10) : 0) {
        case 0:
        case 1:
        case 2:
        case 3:
            return pick(numbers);
        case 4:
            return pick(constants);
        case 5:
        case 6:
            return u'(' + space() + sequence(depth + 1) + space() + u')';
        case 7:
            return pick(unary) + u'(' + sequence(depth + 1) + u')';
        case 8:
            return pick(binary) + u'(' + sequence(depth + 1) + u',' + space() + sequence(depth + 1) + u')';
        default:
            return pick(numbers) + (below(2) == 0 ? pick(constants) : u'(' + sequence(depth + 1) + u')');
        }
    }

    std::uint64_t m_state;
    std::vector<const char16_t *> m_binary;
};

struct ConfiguredSet {
    const char *name;
    Configuration configuration;
};

std::vector<ConfiguredSet> configurations()
{
    std::vector<ConfiguredSet> result;
    result.push_back({"shared", Configuration::shared()});
    Configuration plain;
    plain.allowImplicitMultiplication = false;
    result.push_back({"no implicit products", plain});
    Configuration ordinaryProduct;
    ordinaryProduct.useHighPrecedenceImplicitMultiplication = false;
    result.push_back({"ordinary implicit products", ordinaryProduct});
    Configuration strict;
    strict.allowArgumentlessFunctions = false;
    result.push_back({"no argumentless functions", strict});
    Configuration percent;
    percent.operatorSet = std::make_shared<OperatorSet>(false);
    result.push_back({"percent sign as percent", percent});

    // Operators of a strength shared with prefix or postfix ones: which one applies first
    // then depends on the direction of that strength.
    auto shared = std::make_shared<OperatorSet>();
    shared->addOperator(Operator(QStringLiteral("pow"), Operator::Arity::binary, Operator::Associativity::right,
                                 {QStringLiteral("^^")}),
                        OperatorSet::Relation::equalTo, *shared->builtIn(BuiltInOperator::unaryMinus));
    shared->addOperator(
        Operator(QStringLiteral("mod"), Operator::Arity::binary, Operator::Associativity::left, {QStringLiteral("%%")}),
        OperatorSet::Relation::equalTo, *shared->builtIn(BuiltInOperator::factorial));
    shared->addOperator(Operator(QStringLiteral("subtract"), Operator::Arity::binary, Operator::Associativity::left,
                                 {QStringLiteral("--")}),
                        OperatorSet::Relation::greaterThan, *shared->builtIn(BuiltInOperator::power));
    Configuration sharedStrengths;
    sharedStrengths.operatorSet = shared;
    result.push_back({"operators sharing a strength with unary ones", sharedStrengths});
    return result;
}

TEST(LineParserAgreement, GeneratedExpressionsAgreeInEveryConfiguration)
{
    Evaluator degrees;
    degrees.setAngleMeasurementMode(Evaluator::AngleMode::degrees);
    for (const ConfiguredSet &set : configurations()) {
        SCOPED_TRACE(set.name);
        ExpressionGenerator generator(7919, {u"^^", u"%%", u"--"});
        int parsed = 0;
        int trees = 0;
        int values = 0;
        for (int i = 0; i < 1500; ++i) {
            const QString line = generator.line();
            ASSERT_TRUE(sameAsStaged(line, set.configuration));
            ASSERT_TRUE(sameValueAsTreeWalk(line, set.configuration, Evaluator::shared()));
            ASSERT_TRUE(sameValueAsTreeWalk(line, set.configuration, degrees));
            parsed += Expressionizer::parse(line, set.configuration) ? 1 : 0;
            ExpressionTree tree;
            trees += LineParser::parse(line, set.configuration, tree) ? 1 : 0;
            values += LineParser::evaluate(line, set.configuration, Evaluator::shared()) ? 1 : 0;
        }
        // Agreement by declining everything would prove nothing: the one-pass parser reads
        // nearly every line the staged one does, and computes many of them.
        EXPECT_GT(trees, parsed * 9 / 10);
        EXPECT_GT(values, parsed / 4);
    }
}

TEST(LineParserAgreement, RandomPiecesComputeTheirTreesValue)
{
    static const char16_t *const pieces[] = {u"2", u"0",  u"1.5", u"(",  u")",   u"(",    u")", u"-",   u"+",  u"*",
                                             u"/", u"**", u"!",   u"!!", u"%",   u"^",    u",", u"sin", u"pi", u"max",
                                             u"√", u"°",  u"²",   u"−",  u"1e3", u"0x1F", u" ", u"$a",  u"if", u"½"};
    std::uint64_t state = 104729;
    const auto below = [&state](std::uint64_t bound) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return (state >> 33) % bound;
    };
    for (int i = 0; i < 4000; ++i) {
        QString line;
        for (std::uint64_t n = 1 + below(10); n > 0; --n)
            line += QString::fromUtf16(pieces[below(std::size(pieces))]);
        ASSERT_TRUE(sameValueAsTreeWalk(line, Configuration::shared(), Evaluator::shared()));
    }
}

// The benchmark's calculator lines, as typed and with "^" already made the power, as math
// lines hand them over.
TEST(LineParserAgreement, WorkloadLinesAgree)
{
    int computed = 0;
    const QStringList lines = bench::mathWorkload(1200);
    for (const QString &typed : lines) {
        QString power = typed;
        power.replace(u'^', QStringLiteral("**"));
        for (const QString &line : {typed, power}) {
            ASSERT_TRUE(sameAsStaged(line, Configuration::shared()));
            ASSERT_TRUE(sameValueAsTreeWalk(line, Configuration::shared(), Evaluator::shared()));
        }
        computed += LineParser::evaluate(power, Configuration::shared(), Evaluator::shared()) ? 1 : 0;
    }
    // Nearly all but the dialect lines, whose "x", "€" and "$" are rewritten for math lines.
    EXPECT_GT(computed, lines.size() * 2 / 3);
}

// Where the direction of one strength depends on the line, the staged parser decides.
TEST(LineParser, LeavesSetsMixingDirectionsAtOneStrengthToTheStagedParser)
{
    Configuration mixed;
    auto set = std::make_shared<OperatorSet>();
    set->addOperator(Operator(QStringLiteral("subtract"), Operator::Arity::binary, Operator::Associativity::left,
                              {QStringLiteral("--")}),
                     OperatorSet::Relation::equalTo, *set->builtIn(BuiltInOperator::power));
    mixed.operatorSet = set;
    ExpressionTree tree;
    EXPECT_FALSE(LineParser::parse(u"2 ** 3 -- 1", mixed, tree));
    EXPECT_FALSE(LineParser::evaluate(u"2 + 3", mixed, Evaluator::shared()));
    EXPECT_TRUE(sameAsStaged(QStringLiteral("2 ** 3 -- 1 ** 2"), mixed));
}

// Computing a line as it is read must be the common case, and must leave to the tree what
// only the tree can do: variables, functions that choose which arguments to evaluate,
// evaluators that look elsewhere first, and every error.
TEST(LineParser, ComputesTypicalLinesAndLeavesTheRestToTheTree)
{
    for (const char16_t *line : {u"2 + 3 * 4", u"(17.5 - 3) * 2 ** 3 / sqrt(16) + 12", u"12+15-3+4.75+100-1",
                                 u"2(3 + 4)", u"sin(1)**2 + cos(1)**2", u"5² + 3³", u"2pi", u"-2 ** 2", u"3! + 1"}) {
        EXPECT_TRUE(LineParser::evaluate(QString::fromUtf16(line), Configuration::shared(), Evaluator::shared()))
            << QString::fromUtf16(line).toStdString();
    }
    for (const char16_t *line :
         {u"$rate * 2", u"if(1, 2, 1/0)", u"max(1, 2)", u"random()", u"1/0", u"foo(2)", u"10 + percent(5)"}) {
        EXPECT_FALSE(LineParser::evaluate(QString::fromUtf16(line), Configuration::shared(), Evaluator::shared()))
            << QString::fromUtf16(line).toStdString();
    }

    // What the tree gives such lines, the engine gives them.
    EXPECT_TRUE(testing::hasValue(QStringLiteral("if(1, 2, 1/0) + max(1, 3)"), 5));
    EXPECT_TRUE(testing::failsWith(QStringLiteral("2 + 1/0 * foo(1)"), K::divideByZero));
    EXPECT_TRUE(testing::failsWith(QStringLiteral("round(1/0)"), K::unknownFunction));

    Evaluator overridden;
    overridden.setFunctionOverrider([](const QString &name) -> std::optional<Function> {
        if (name != QLatin1String("add"))
            return std::nullopt;
        return Function({name}, [](EvaluationState &state) { return state.evaluateArgument(0) * 10; });
    });
    EXPECT_TRUE(testing::hasValue(QStringLiteral("2 + 3"), 20, overridden));
    EXPECT_TRUE(testing::hasValue(QStringLiteral("sqrt(16) * 2"), 8, overridden));
}

} // namespace
} // namespace scrivlet::math
