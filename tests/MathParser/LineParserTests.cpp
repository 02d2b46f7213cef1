#include "MathTestSupport.h"

#include "MathParser/Configuration.h"
#include "MathParser/ExpressionTree.h"
#include "MathParser/Expressionizer.h"
#include "MathParser/FunctionSet.h"
#include "MathParser/LineParser.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace scrivlet::math
