#include "MathTestSupport.h"

#include "MathParser/Configuration.h"

#include <gtest/gtest.h>

#include <numbers>

namespace scrivlet::math {
namespace {

using testing::ErrorCase;
using testing::ValueCase;
using K = MathParserError::Kind;

class Precedence : public ::testing::TestWithParam<ValueCase> {};

TEST_P(Precedence, ValueFollowsOperatorStrength)
{
    EXPECT_TRUE(testing::hasValue(QString::fromUtf16(GetParam().expression), GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    OperatorTable, Precedence,
    ::testing::Values(ValueCase{u"2 + 3 * 4", 14}, ValueCase{u"(2 + 3) * 4", 20}, ValueCase{u"2 * 3 ** 2", 18},
                      ValueCase{u"10 - 4 - 3", 3}, ValueCase{u"64 / 4 / 2", 8}, ValueCase{u"2 ** 3 ** 2", 512},
                      ValueCase{u"(2 ** 3) ** 2", 64}, ValueCase{u"-2 ** 2", -4}, ValueCase{u"(-2) ** 2", 4},
                      ValueCase{u"2 ** -1", 0.5}, ValueCase{u"2 ** --2", 4}, ValueCase{u"2 ** -3 ** 2", 1.0 / 512},
                      ValueCase{u"2 * -3", -6}, ValueCase{u"2 - -3", 5}, ValueCase{u"2 -3", -1}, ValueCase{u"--2", 2},
                      ValueCase{u"-√4", -2}, ValueCase{u"√4!", std::sqrt(24.0)}, ValueCase{u"-3!", -6},
                      ValueCase{u"3! * 2", 12}, ValueCase{u"3! ** 2", 36}, ValueCase{u"2 ** 3!", 40320},
                      ValueCase{u"3!", 6}, ValueCase{u"3!!", 3}, ValueCase{u"!0", 1}, ValueCase{u"!5", 0},
                      ValueCase{u"+5", 5}, ValueCase{u"5 % 3", 2}, ValueCase{u"7 % 4 * 2", 6},
                      ValueCase{u"2 + 6 % 4", 4}, ValueCase{u"1 << 2 + 1", 5}, ValueCase{u"1 + 2 << 3", 17},
                      ValueCase{u"6 & 3 | 8", 10}, ValueCase{u"6 ^ 3", 5}, ValueCase{u"~0", -1},
                      ValueCase{u"1 + 1 == 2", 1}, ValueCase{u"1 < 2 && 3 > 4", 0}, ValueCase{u"1 < 2 || 3 > 4", 1},
                      ValueCase{u"2 <= 2", 1}, ValueCase{u"2 =< 1", 0}, ValueCase{u"3 >= 4", 0},
                      ValueCase{u"3 => 3", 1}, ValueCase{u"2 ≠ 3", 1}, ValueCase{u"2 ≤ 2", 1}, ValueCase{u"2 ≯ 3", 1},
                      ValueCase{u"2 ≮ 3", 0}, ValueCase{u"¬1", 0}, ValueCase{u"1 ∧ 0", 0}, ValueCase{u"1 ∨ 0", 1},
                      ValueCase{u"6 × 7", 42}, ValueCase{u"7 ÷ 2", 3.5}, ValueCase{u"7 − 2", 5}, ValueCase{u"−2", -2},
                      ValueCase{u"∛27", 3}, ValueCase{u"√16 + 1", 5}));

class ImplicitMultiplication : public ::testing::TestWithParam<ValueCase> {};

TEST_P(ImplicitMultiplication, JuxtapositionMultiplies)
{
    EXPECT_TRUE(testing::hasValue(QString::fromUtf16(GetParam().expression), GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Resolver, ImplicitMultiplication,
                         ::testing::Values(ValueCase{u"2(3)", 6}, ValueCase{u"(2)(3)", 6}, ValueCase{u"(2)3", 6},
                                           ValueCase{u"2pi", 2 * std::numbers::pi},
                                           ValueCase{u"2 pi", 2 * std::numbers::pi},
                                           ValueCase{u"pi 2", 2 * std::numbers::pi}, ValueCase{u"3!4", 24},
                                           ValueCase{u"2√9", 6}, ValueCase{u"1/2(4)", 0.125},
                                           ValueCase{u"8/2pi", 4 / std::numbers::pi}, ValueCase{u"2 sqrt(9)", 6},
                                           ValueCase{u"2e", 2 * std::numbers::e}, ValueCase{u"2e2", 200},
                                           ValueCase{u"4°", 4 * std::numbers::pi / 180}, ValueCase{u"2 3", 6}));

TEST(ImplicitMultiplication, HighPrecedenceBindsBeforeDivision)
{
    const Substitutions x{{QStringLiteral("x"), 4.0}};
    const MathResult<Expression> high = parse(QStringLiteral("1/2$x"));
    ASSERT_TRUE(high);
    EXPECT_DOUBLE_EQ(evaluate(high.value(), x).value(), 0.125);

    Configuration ordinary;
    ordinary.useHighPrecedenceImplicitMultiplication = false;
    const MathResult<Expression> low = parse(QStringLiteral("1/2$x"), ordinary);
    ASSERT_TRUE(low);
    EXPECT_DOUBLE_EQ(evaluate(low.value(), x).value(), 2.0);
}

TEST(ImplicitMultiplication, SwitchedOffJuxtapositionIsNoExpression)
{
    Configuration strict;
    strict.allowImplicitMultiplication = false;
    const MathResult<Expression> expression = parse(QStringLiteral("2 3"), strict);
    ASSERT_FALSE(expression);
    EXPECT_EQ(expression.error().kind(), K::invalidFormat);
    EXPECT_TRUE(parse(QStringLiteral("2 * 3"), strict));
}

TEST(ArgumentlessFunctions, NeedParenthesesWhenSwitchedOff)
{
    Configuration strict;
    strict.allowArgumentlessFunctions = false;
    const MathResult<Expression> bare = parse(QStringLiteral("pi + 1"), strict);
    ASSERT_FALSE(bare);
    EXPECT_EQ(bare.error().kind(), K::missingOpenParenthesis);
    EXPECT_TRUE(parse(QStringLiteral("pi() + 1"), strict));
}

class FractionsAndSuperscripts : public ::testing::TestWithParam<ValueCase> {};

TEST_P(FractionsAndSuperscripts, ReadAsWritten)
{
    EXPECT_TRUE(testing::hasValue(QString::fromUtf16(GetParam().expression), GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Resolver, FractionsAndSuperscripts,
                         ::testing::Values(ValueCase{u"1½", 1.5}, ValueCase{u"2¾ + 1", 3.75}, ValueCase{u"-1½", -1.5},
                                           ValueCase{u"½", 0.5}, ValueCase{u"⅓ * 3", 1}, ValueCase{u"2 ½", 1},
                                           ValueCase{u"1½²", 2.25}, ValueCase{u"2²", 4}, ValueCase{u"2³ + 1", 9},
                                           ValueCase{u"2⁻¹", 0.5}, ValueCase{u"10⁻²", 0.01}, ValueCase{u"2²³", 8388608},
                                           ValueCase{u"3²4", 36}, ValueCase{u"2⁽¹⁺²⁾", 8}, ValueCase{u"(1+1)²", 4},
                                           ValueCase{u"-3²", -9}, ValueCase{u"2^3", 1}, ValueCase{u"0x1F + 1", 32},
                                           ValueCase{u"0o17", 15}, ValueCase{u"0xff * 0o10", 2040}));

// The printed tree shows how the operators were grouped.
struct ShapeCase {
    const char16_t *expression;
    const char16_t *tree;
};

void PrintTo(const ShapeCase &c, std::ostream *os)
{
    *os << '"' << QString::fromUtf16(c.expression).toStdString() << '"';
}

class TreeShape : public ::testing::TestWithParam<ShapeCase> {};

TEST_P(TreeShape, OperatorsGroupAsIntended)
{
    const MathResult<Expression> expression = parse(QString::fromUtf16(GetParam().expression));
    ASSERT_TRUE(expression);
    EXPECT_EQ(expression->toString(), QString::fromUtf16(GetParam().tree));
}

INSTANTIATE_TEST_SUITE_P(Expressionizer, TreeShape,
                         ::testing::Values(ShapeCase{u"1 + 2 + 3", u"(1 + 2) + 3"},
                                           ShapeCase{u"2 ** 3 ** 4", u"2 ** (3 ** 4)"},
                                           ShapeCase{u"1/2x", u"1 / (2 * x())"}, ShapeCase{u"-2 ** 2", u"-(2 ** 2)"},
                                           ShapeCase{u"3! * 2", u"(3!) * 2"}, ShapeCase{u"2 * -3", u"2 * (-3)"},
                                           ShapeCase{u"max(1, 2 + 3, pi)", u"max(1, 2 + 3, pi())"},
                                           ShapeCase{u"1½", u"1 + 0.5"}, ShapeCase{u"($a)²", u"$a ** 2"},
                                           ShapeCase{u"sum()", u"sum()"}, ShapeCase{u"((((7))))", u"7"}));

TEST(Expressionizer, ChildrenKnowTheirParent)
{
    const MathResult<Expression> expression = parse(QStringLiteral("1 + max(2, 3)"));
    ASSERT_TRUE(expression);
    const Expression root = expression.value();
    EXPECT_FALSE(root.parent().has_value());
    const Expression call = root.argument(1);
    EXPECT_EQ(call.name(), QStringLiteral("max"));
    ASSERT_TRUE(call.parent().has_value());
    EXPECT_EQ(call.parent()->index(), root.index());
    EXPECT_EQ(call.argument(1).parent()->index(), call.index());
    EXPECT_EQ(call.range(), (CharacterRange{4, 13}));
}

class ParseErrors : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(ParseErrors, FailWithTheirKind)
{
    const MathResult<Expression> expression = parse(QString::fromUtf16(GetParam().expression));
    ASSERT_FALSE(expression) << expression->toString().toStdString();
    EXPECT_EQ(expression.error().kind(), GetParam().kind);
}

INSTANTIATE_TEST_SUITE_P(
    Grammar, ParseErrors,
    ::testing::Values(ErrorCase{u"(", K::missingCloseParenthesis}, ErrorCase{u")", K::missingOpenParenthesis},
                      ErrorCase{u"()", K::emptyGroup}, ErrorCase{u"(1 + 2", K::missingCloseParenthesis},
                      ErrorCase{u"1 + 2)", K::missingOpenParenthesis}, ErrorCase{u"max(1", K::missingCloseParenthesis},
                      ErrorCase{u"max(1,", K::missingCloseParenthesis}, ErrorCase{u"1 + ", K::missingRightOperand},
                      ErrorCase{u"* 2", K::missingLeftOperand}, ErrorCase{u"°", K::missingLeftOperand},
                      ErrorCase{u"2 + °", K::missingLeftOperand}, ErrorCase{u"-", K::missingRightOperand},
                      ErrorCase{u"2 ** ", K::missingRightOperand}, ErrorCase{u"5 %", K::missingRightOperand},
                      ErrorCase{u"!!3", K::missingLeftOperand}, ErrorCase{u"2 * * 3", K::missingRightOperand},
                      ErrorCase{u"max(1,,2)", K::emptyFunctionArgument},
                      ErrorCase{u"max(,2)", K::emptyFunctionArgument}, ErrorCase{u"max(1,)", K::emptyFunctionArgument},
                      ErrorCase{u"", K::invalidFormat}, ErrorCase{u"   ", K::invalidFormat},
                      ErrorCase{u"²", K::missingLeftOperand}, ErrorCase{u"2⁽⁾", K::emptyGroup}));

TEST(ParseErrors, MissingOperandNamesTheOperator)
{
    const MathResult<Expression> expression = parse(QStringLiteral("3 * 4 -"));
    ASSERT_FALSE(expression);
    EXPECT_EQ(expression.error().kind(), K::missingRightOperand);
    ASSERT_TRUE(expression.error().op().has_value());
    EXPECT_EQ(expression.error().op()->function(), QStringLiteral("subtract"));
    EXPECT_EQ(expression.error().range(), (CharacterRange{6, 7}));
}

TEST(ParseErrors, TokenWithNoFormForItsPositionIsAmbiguous)
{
    auto set = std::make_shared<OperatorSet>();
    const Operator &multiply = set->multiplyOperator();
    set->addOperator(
        Operator(QStringLiteral("hash"), Operator::Arity::binary, Operator::Associativity::left, {QStringLiteral("#")}),
        OperatorSet::Relation::equalTo, multiply);
    set->addOperator(Operator(QStringLiteral("hashed"), Operator::Arity::unary, Operator::Associativity::left,
                              {QStringLiteral("#")}),
                     OperatorSet::Relation::greaterThan, set->powerOperator());
    Configuration configuration;
    configuration.operatorSet = set;

    const MathResult<Expression> leading = parse(QStringLiteral("# 2"), configuration);
    ASSERT_FALSE(leading);
    EXPECT_EQ(leading.error().kind(), K::ambiguousOperator);
    // Behind an operand, and behind a postfix operator, the postfix form wins.
    const MathResult<Expression> postfix = parse(QStringLiteral("2 # # 3"), configuration);
    ASSERT_TRUE(postfix);
    EXPECT_EQ(postfix->toString(), QStringLiteral("((2#)#) * 3"));
}

TEST(OperatorSet, AddingRelativeToAnOperatorShiftsTheStrongerOnes)
{
    OperatorSet set;
    const int multiply = *set.multiplyOperator().precedence();
    const int power = *set.powerOperator().precedence();
    set.addOperator(Operator(QStringLiteral("between"), Operator::Arity::binary, Operator::Associativity::left,
                             {QStringLiteral("@")}),
                    OperatorSet::Relation::greaterThan, set.multiplyOperator());
    EXPECT_EQ(*set.multiplyOperator().precedence(), multiply);
    EXPECT_EQ(*set.powerOperator().precedence(), power + 1);
    ASSERT_EQ(set.operatorsForToken(u"@").size(), 1u);
    EXPECT_EQ(*set.operatorsForToken(u"@").front()->precedence(), multiply + 1);
    EXPECT_TRUE(set.operatorTokenSet().containsToken(u"@"));

    const OperatorSet percent(false);
    ASSERT_EQ(percent.operatorsForToken(u"%").size(), 1u);
    EXPECT_TRUE(percent.operatorsForToken(u"%").front()->isPostfix());
    EXPECT_EQ(percent.operatorsForToken(u"%").front()->precedence(),
              percent.builtIn(BuiltInOperator::factorial)->precedence());
}

TEST(OperatorSet, PercentSignAsPercentWhenNotModulo)
{
    Configuration configuration;
    configuration.operatorSet = std::make_shared<OperatorSet>(false);
    const MathResult<Expression> share = parse(QStringLiteral("200 + 10%"), configuration);
    ASSERT_TRUE(share);
    EXPECT_DOUBLE_EQ(evaluate(share.value()).value(), 220.0);
    const MathResult<Expression> alone = parse(QStringLiteral("50% * 4"), configuration);
    ASSERT_TRUE(alone);
    EXPECT_DOUBLE_EQ(evaluate(alone.value()).value(), 2.0);
}

// Lines nobody types but anyone can paste: each ends, with a value or an error, and the
// stack survives.
TEST(HostileInput, LongAndDeepLinesEndCleanly)
{
    const auto repeated = [](const QString &piece, int times) {
        QString text;
        for (int i = 0; i < times; ++i)
            text += piece;
        return text;
    };

    const MathResult<double> parentheses =
        evaluate(repeated(QStringLiteral("("), 10000) + u'1' + repeated(QStringLiteral(")"), 10000));
    ASSERT_FALSE(parentheses);
    EXPECT_EQ(parentheses.error().kind(), K::invalidFormat);

    const MathResult<double> calls =
        evaluate(repeated(QStringLiteral("sin("), 10000) + u'1' + repeated(QStringLiteral(")"), 10000));
    ASSERT_FALSE(calls);
    EXPECT_EQ(calls.error().kind(), K::invalidFormat);

    const MathResult<double> unclosed = evaluate(repeated(QStringLiteral("("), 100000));
    ASSERT_FALSE(unclosed);

    const MathResult<double> negations = evaluate(repeated(QStringLiteral("-"), 100000) + u'2');
    ASSERT_FALSE(negations);
    EXPECT_EQ(negations.error().kind(), K::invalidFormat);

    const MathResult<double> chain = evaluate(u'1' + repeated(QStringLiteral("+1"), 50000));
    ASSERT_FALSE(chain);
    EXPECT_EQ(chain.error().kind(), K::invalidFormat);

    EXPECT_FALSE(evaluate(repeated(QStringLiteral("*"), 100000)));
    EXPECT_FALSE(evaluate(repeated(QStringLiteral("!"), 100000)));
    EXPECT_FALSE(evaluate(repeated(QStringLiteral("x"), 100000)));
    EXPECT_FALSE(evaluate(u'2' + repeated(QStringLiteral("**"), 50000)));

    // Short of the limits, the same shapes have their values.
    EXPECT_TRUE(testing::hasValue(repeated(QStringLiteral("("), 150) + u'1' + repeated(QStringLiteral(")"), 150), 1));
    EXPECT_TRUE(testing::hasValue(u'1' + repeated(QStringLiteral("+1"), 500), 501));
    EXPECT_TRUE(testing::hasValue(repeated(QStringLiteral("-"), 500) + u'2', 2));

    // A 100,000-digit number is a number: too large for a double, so infinity.
    const MathResult<double> digits = evaluate(repeated(QStringLiteral("9"), 100000));
    ASSERT_TRUE(digits);
    EXPECT_TRUE(std::isinf(digits.value()));
    EXPECT_TRUE(testing::hasValue(QStringLiteral("0.") + repeated(QStringLiteral("0"), 400) + u'1', 0.0));
}

} // namespace
} // namespace scrivlet::math
