#include "MathTestSupport.h"

#include "MathParser/EvaluationState.h"

#include <gtest/gtest.h>

#include <limits>
#include <numbers>

namespace scrivlet::math {
namespace {

using testing::ErrorCase;
using testing::ValueCase;
using K = MathParserError::Kind;

constexpr double pi = std::numbers::pi;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class FunctionValue : public ::testing::TestWithParam<ValueCase> {};

TEST_P(FunctionValue, InRadians)
{
    EXPECT_TRUE(testing::hasValue(QString::fromUtf16(GetParam().expression), GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    Arithmetic, FunctionValue,
    ::testing::Values(ValueCase{u"add(2, 3)", 5}, ValueCase{u"subtract(2, 3)", -1}, ValueCase{u"multiply(4, 2.5)", 10},
                      ValueCase{u"implicitMultiply(4, 3)", 12}, ValueCase{u"divide(7, 2)", 3.5},
                      ValueCase{u"mod(7, 3)", 1}, ValueCase{u"modulo(-7, 3)", -1}, ValueCase{u"negate(4)", -4},
                      ValueCase{u"5!", 120}, ValueCase{u"0!", 1}, ValueCase{u"factorial(0.5)", std::tgamma(1.5)},
                      ValueCase{u"1!!", 1}, ValueCase{u"6!!", 48}, ValueCase{u"7!!", 105},
                      ValueCase{u"pow(2, 10)", 1024}, ValueCase{u"sqrt(16)", 4}, ValueCase{u"cuberoot(64)", 4},
                      ValueCase{u"nthroot(81, 4)", 3}, ValueCase{u"nthroot(-8, 3)", -2}, ValueCase{u"abs(-3.5)", 3.5},
                      ValueCase{u"percent(20)", 0.2}, ValueCase{u"100 + percent(10)", 110},
                      ValueCase{u"100 - percent(10)", 90}, ValueCase{u"100 * percent(10)", 10}, ValueCase{u"exp(0)", 1},
                      ValueCase{u"exp(1)", std::numbers::e}));

INSTANTIATE_TEST_SUITE_P(Logarithms, FunctionValue,
                         ::testing::Values(ValueCase{u"log(1000)", 3}, ValueCase{u"ln(e)", 1},
                                           ValueCase{u"log2(1024)", 10}, ValueCase{u"ln(1)", 0},
                                           ValueCase{u"log(0)", -kInf}, ValueCase{u"log(-1)", kNaN}));

INSTANTIATE_TEST_SUITE_P(Rounding, FunctionValue,
                         ::testing::Values(ValueCase{u"ceil(1.2)", 2}, ValueCase{u"ceil(-1.2)", -1},
                                           ValueCase{u"floor(1.8)", 1}, ValueCase{u"floor(-1.2)", -2},
                                           ValueCase{u"trunc(2.7)", 2}, ValueCase{u"trunc(-2.5)", -3}));

INSTANTIATE_TEST_SUITE_P(Aggregates, FunctionValue,
                         ::testing::Values(ValueCase{u"sum()", 0}, ValueCase{u"sum(1, 2, 3.5)", 6.5},
                                           ValueCase{u"∑(1, 2)", 3}, ValueCase{u"product()", 1},
                                           ValueCase{u"product(2, 3, 4)", 24}, ValueCase{u"∏(2, 5)", 10},
                                           ValueCase{u"count()", 0}, ValueCase{u"count(7, 7, 7)", 3},
                                           ValueCase{u"min(3, -1, 2)", -1}, ValueCase{u"max(3, -1, 2)", 3},
                                           ValueCase{u"max(4)", 4}, ValueCase{u"average(1, 2, 6)", 3},
                                           ValueCase{u"avg(2, 4)", 3}, ValueCase{u"mean(5)", 5},
                                           ValueCase{u"median(5, 1, 3)", 3}, ValueCase{u"median(4, 1, 3, 2)", 2.5},
                                           ValueCase{u"stddev(2, 4, 4, 4, 5, 5, 7, 9)", std::sqrt(32.0 / 7)},
                                           ValueCase{u"stddev(1, 1)", 0}, ValueCase{u"sum(1, max(2, 3), 4) * 2", 16}));

INSTANTIATE_TEST_SUITE_P(Constants, FunctionValue,
                         ::testing::Values(ValueCase{u"pi", pi}, ValueCase{u"PI", pi}, ValueCase{u"Pi()", pi},
                                           ValueCase{u"π", pi}, ValueCase{u"tau_2", pi}, ValueCase{u"pi_2", pi / 2},
                                           ValueCase{u"tau_4", pi / 2}, ValueCase{u"pi_4", pi / 4},
                                           ValueCase{u"tau_8", pi / 4}, ValueCase{u"tau", 2 * pi},
                                           ValueCase{u"τ", 2 * pi}, ValueCase{u"phi", 1.6180339887498948},
                                           ValueCase{u"ϕ", 1.6180339887498948}, ValueCase{u"e", std::numbers::e},
                                           ValueCase{u"E", std::numbers::e}, ValueCase{u"sqrt2", std::sqrt(2.0)},
                                           ValueCase{u"log2e", 1 / std::log(2.0)},
                                           ValueCase{u"log10e", 1 / std::log(10.0)}, ValueCase{u"ln2", std::log(2.0)},
                                           ValueCase{u"ln10", std::log(10.0)}, ValueCase{u"true", 1},
                                           ValueCase{u"yes", 1}, ValueCase{u"false", 0}, ValueCase{u"no", 0}));

INSTANTIATE_TEST_SUITE_P(
    BitwiseAndLogical, FunctionValue,
    ::testing::Values(ValueCase{u"and(12, 10)", 8}, ValueCase{u"or(12, 10)", 14}, ValueCase{u"xor(12, 10)", 6},
                      ValueCase{u"not(5)", -6}, ValueCase{u"lshift(3, 4)", 48}, ValueCase{u"rshift(48, 4)", 3},
                      ValueCase{u"rshift(-16, 2)", -4}, ValueCase{u"and(7.9, 3.2)", 3}, ValueCase{u"lshift(1, 64)", 0},
                      ValueCase{u"l_and(2, -1)", 1}, ValueCase{u"l_and(2, 0)", 0}, ValueCase{u"l_or(0, 0)", 0},
                      ValueCase{u"l_or(0, 3)", 1}, ValueCase{u"l_not(0)", 1}, ValueCase{u"l_not(0.5)", 0},
                      ValueCase{u"l_eq(2, 2)", 1}, ValueCase{u"l_neq(2, 2)", 0}, ValueCase{u"l_lt(1, 2)", 1},
                      ValueCase{u"l_gt(1, 2)", 0}, ValueCase{u"l_ltoe(2, 2)", 1}, ValueCase{u"l_gtoe(1, 2)", 0},
                      ValueCase{u"if(1, 10, 20)", 10}, ValueCase{u"if(0, 10, 20)", 20}, ValueCase{u"l_if(0, 10)", 0},
                      ValueCase{u"if(0, 1/0, 2)", 2}, ValueCase{u"if(1, 2, unknownThing)", 2}));

INSTANTIATE_TEST_SUITE_P(
    Trigonometry, FunctionValue,
    ::testing::Values(
        ValueCase{u"sin(90)", std::sin(90.0)}, ValueCase{u"sin(90°)", 1}, ValueCase{u"cos(pi)", -1},
        ValueCase{u"tan(pi/4)", std::tan(pi / 4)}, ValueCase{u"asin(1)", pi / 2}, ValueCase{u"sin⁻¹(1)", pi / 2},
        ValueCase{u"acos(1)", 0}, ValueCase{u"cos⁻¹(0)", pi / 2}, ValueCase{u"atan(1)", pi / 4},
        ValueCase{u"tan⁻¹(1)", pi / 4}, ValueCase{u"atan2(1, 1)", pi / 4}, ValueCase{u"atan2(1, -1)", 3 * pi / 4},
        ValueCase{u"csc(pi/2)", 1}, ValueCase{u"sec(0)", 1}, ValueCase{u"cotan(pi/4)", 1 / std::tan(pi / 4)},
        ValueCase{u"acsc(2)", std::asin(0.5)}, ValueCase{u"csc⁻¹(2)", std::asin(0.5)},
        ValueCase{u"asec(2)", std::acos(0.5)}, ValueCase{u"acotan(2)", std::atan(0.5)},
        ValueCase{u"cotan⁻¹(2)", std::atan(0.5)}, ValueCase{u"sinh(1)", std::sinh(1.0)},
        ValueCase{u"cosh(1)", std::cosh(1.0)}, ValueCase{u"tanh(1)", std::tanh(1.0)},
        ValueCase{u"asinh(1)", std::asinh(1.0)}, ValueCase{u"sinh⁻¹(1)", std::asinh(1.0)},
        ValueCase{u"acosh(2)", std::acosh(2.0)}, ValueCase{u"atanh(0.5)", std::atanh(0.5)},
        ValueCase{u"csch(1)", 1 / std::sinh(1.0)}, ValueCase{u"sech(1)", 1 / std::cosh(1.0)},
        ValueCase{u"cotanh(1)", 1 / std::tanh(1.0)}, ValueCase{u"acsch(2)", std::asinh(0.5)},
        ValueCase{u"asech(0.5)", std::acosh(2.0)}, ValueCase{u"acotanh(2)", std::atanh(0.5)},
        ValueCase{u"cotanh⁻¹(2)", std::atanh(0.5)}, ValueCase{u"versin(1)", 1 - std::cos(1.0)},
        ValueCase{u"vers(1)", 1 - std::cos(1.0)}, ValueCase{u"ver(1)", 1 - std::cos(1.0)},
        ValueCase{u"vercosin(1)", 1 + std::cos(1.0)}, ValueCase{u"vercos(1)", 1 + std::cos(1.0)},
        ValueCase{u"coversin(1)", 1 - std::sin(1.0)}, ValueCase{u"cvs(1)", 1 - std::sin(1.0)},
        ValueCase{u"covercosin(1)", 1 + std::sin(1.0)}, ValueCase{u"haversin(1)", (1 - std::cos(1.0)) / 2},
        ValueCase{u"havercosin(1)", (1 + std::cos(1.0)) / 2}, ValueCase{u"hacoversin(1)", (1 - std::sin(1.0)) / 2},
        ValueCase{u"hacovercosin(1)", (1 + std::sin(1.0)) / 2}, ValueCase{u"exsec(1)", 1 / std::cos(1.0) - 1},
        ValueCase{u"excsc(1)", 1 / std::sin(1.0) - 1}, ValueCase{u"crd(1)", 2 * std::sin(0.5)},
        ValueCase{u"chord(1)", 2 * std::sin(0.5)}, ValueCase{u"dtor(180)", pi}, ValueCase{u"rtod(pi)", 180}));

TEST(AngleMode, DegreesApplyToAnglesInAndOut)
{
    Evaluator degrees;
    degrees.setAngleMeasurementMode(Evaluator::AngleMode::degrees);
    const ValueCase cases[] = {
        {u"sin(90)", 1},
        {u"cos(180)", -1},
        {u"tan(45)", std::tan(pi / 4)},
        {u"asin(1)", 90},
        {u"acos(0)", 90},
        {u"atan(1)", 45},
        {u"atan2(1, 1)", 45},
        {u"csc(90)", 1},
        {u"sec(180)", -1},
        {u"acsc(1)", 90},
        {u"asec(1)", 0},
        {u"acotan(1)", 45},
        {u"versin(90)", 1},
        {u"crd(60)", 2 * std::sin(pi / 6)},
        {u"sin(90°)", 1},
        {u"dtor(30)", 30},
        {u"rtod(pi)", 180},
        {u"sinh(1)", std::sinh(1.0)},
    };
    for (const ValueCase &c : cases)
        EXPECT_TRUE(testing::hasValue(QString::fromUtf16(c.expression), c.expected, degrees));
}

class RuntimeErrors : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(RuntimeErrors, FailWithTheirKind)
{
    EXPECT_TRUE(testing::failsWith(QString::fromUtf16(GetParam().expression), GetParam().kind));
}

INSTANTIATE_TEST_SUITE_P(
    DivisionAndNames, RuntimeErrors,
    ::testing::Values(ErrorCase{u"1/0", K::divideByZero}, ErrorCase{u"0/0", K::divideByZero},
                      ErrorCase{u"1/(2-2)", K::divideByZero}, ErrorCase{u"csc(0)", K::divideByZero},
                      ErrorCase{u"cotan(0)", K::divideByZero}, ErrorCase{u"csch(0)", K::divideByZero},
                      ErrorCase{u"cotanh(0)", K::divideByZero}, ErrorCase{u"excsc(0)", K::divideByZero},
                      ErrorCase{u"foo(1)", K::unknownFunction}, ErrorCase{u"2 apples", K::unknownFunction},
                      ErrorCase{u"ma*(1,2)", K::unknownFunction}, ErrorCase{u"1, 2", K::unknownFunction},
                      ErrorCase{u"$x + 1", K::unknownVariable}, ErrorCase{u"'unit price' * 2", K::unknownVariable},
                      ErrorCase{u"0x", K::unknownFunction}, ErrorCase{u"sqrt(1/0)", K::divideByZero},
                      ErrorCase{u"max(foo(), 1/0)", K::unknownFunction},
                      ErrorCase{u"max(1/0, foo())", K::divideByZero}));

INSTANTIATE_TEST_SUITE_P(
    WrongArgumentCounts, RuntimeErrors,
    ::testing::Values(ErrorCase{u"sin()", K::invalidArguments}, ErrorCase{u"sin(1, 2)", K::invalidArguments},
                      ErrorCase{u"sin 30", K::invalidArguments}, ErrorCase{u"pi(1)", K::invalidArguments},
                      ErrorCase{u"add(1)", K::invalidArguments}, ErrorCase{u"atan2(1)", K::invalidArguments},
                      ErrorCase{u"min()", K::invalidArguments}, ErrorCase{u"max()", K::invalidArguments},
                      ErrorCase{u"average()", K::invalidArguments}, ErrorCase{u"median()", K::invalidArguments},
                      ErrorCase{u"stddev(1)", K::invalidArguments}, ErrorCase{u"if(1)", K::invalidArguments},
                      ErrorCase{u"if(1, 2, 3, 4)", K::invalidArguments},
                      ErrorCase{u"random(1, 2, 3)", K::invalidArguments},
                      ErrorCase{u"random(2, 1)", K::invalidArguments}, ErrorCase{u"random(1, 1)", K::invalidArguments},
                      ErrorCase{u"0!!", K::invalidArguments}, ErrorCase{u"2.5!!", K::invalidArguments},
                      ErrorCase{u"(-1)!!", K::invalidArguments}));

TEST(Evaluator, NaNAndInfinityAreValues)
{
    const ValueCase cases[] = {
        {u"3 % 0", kNaN},
        {u"sqrt(-1)", kNaN},
        {u"1e308 * 10", kInf},
        {u"-1e308 * 10", -kInf},
        {u"1e999", kInf},
        {u"1e999 - 1e999", kNaN},
        {u"171!", kInf},
        {u"exp(1000)", kInf},
        {u"max(1, sqrt(-1))", kNaN},
        {u"min(1e999, 2)", 2},
        {u"and(sqrt(-1), 1)", kNaN},
        {u"l_not(sqrt(-1))", 0},
        {u"1e999 > 1e308", 1},
        {u"sqrt(-1) == sqrt(-1)", 0},
    };
    for (const ValueCase &c : cases)
        EXPECT_TRUE(testing::hasValue(QString::fromUtf16(c.expression), c.expected));
}

TEST(Evaluator, RandomStaysWithinItsBounds)
{
    for (int i = 0; i < 200; ++i) {
        const double unit = evaluate(QStringLiteral("random()")).value();
        EXPECT_GE(unit, 0.0);
        EXPECT_LT(unit, 1.0);
        const double shifted = evaluate(QStringLiteral("random(5)")).value();
        EXPECT_GE(shifted, 5.0);
        EXPECT_LT(shifted, 6.0);
        const double narrow = evaluate(QStringLiteral("random(10, 10.5)")).value();
        EXPECT_GE(narrow, 10.0);
        EXPECT_LT(narrow, 10.5);
    }
}

TEST(Evaluator, VariablesComeFromSubstitutionsThenResolvers)
{
    const MathResult<Expression> expression = parse(QStringLiteral("$a * 'b c' + $d"));
    ASSERT_TRUE(expression);

    const Substitutions substitutions{{QStringLiteral("a"), 2.0}, {QStringLiteral("b c"), 3.0}};
    QStringList asked;
    const VariableResolver resolver = [&asked](const QString &name) -> std::optional<double> {
        asked.append(name);
        return name == QLatin1String("d") ? std::optional<double>(10.0) : std::nullopt;
    };
    const MathResult<double> value = evaluate(expression.value(), substitutions, resolver);
    ASSERT_TRUE(value);
    EXPECT_DOUBLE_EQ(value.value(), 16.0);
    EXPECT_EQ(asked, QStringList{QStringLiteral("d")});

    const MathResult<double> missing = evaluate(expression.value(), substitutions);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().kind(), K::unknownVariable);
    EXPECT_EQ(missing.error().name(), QStringLiteral("d"));
    EXPECT_EQ(missing.error().range(), (CharacterRange{13, 15}));
}

TEST(Evaluator, OverriderComesBeforeTheSetAndResolverAfter)
{
    Evaluator evaluator;
    evaluator.setFunctionOverrider([](const QString &name) -> std::optional<Function> {
        if (name != QLatin1String("sin"))
            return std::nullopt;
        return Function({name}, [](EvaluationState &) { return 42.0; });
    });
    evaluator.setFunctionResolver([](const QString &name) -> std::optional<Function> {
        if (name != QLatin1String("twice"))
            return std::nullopt;
        return Function({name}, [](EvaluationState &state) {
            if (!state.requireArgumentCount(1, 1))
                return 0.0;
            return 2 * state.evaluateArgument(0);
        });
    });
    EXPECT_TRUE(testing::hasValue(QStringLiteral("sin(0)"), 42, evaluator));
    EXPECT_TRUE(testing::hasValue(QStringLiteral("twice(cos(0))"), 2, evaluator));
    EXPECT_TRUE(testing::failsWith(QStringLiteral("thrice(1)"), K::unknownFunction, evaluator));
}

TEST(FunctionSet, NamesAreCaseInsensitiveUnlessAskedOtherwise)
{
    const FunctionSet insensitive = FunctionSet::builtIn();
    EXPECT_TRUE(insensitive.contains(u"SQRT"));
    EXPECT_TRUE(insensitive.contains(u"ImplicitMultiply"));
    EXPECT_EQ(insensitive.find(u"Avg"), insensitive.find(u"mean"));

    const FunctionSet sensitive = FunctionSet::builtIn(true);
    EXPECT_TRUE(sensitive.contains(u"implicitMultiply"));
    EXPECT_FALSE(sensitive.contains(u"PI"));
    EXPECT_TRUE(testing::failsWith(QStringLiteral("PI"), K::unknownFunction, Evaluator(sensitive)));

    FunctionSet set = FunctionSet::builtIn();
    const auto clash = set.registerFunction(Function({QStringLiteral("Sum")}, [](EvaluationState &) { return 0.0; }));
    ASSERT_TRUE(clash.has_value());
    EXPECT_EQ(clash->kind(), FunctionRegistrationError::Kind::functionAlreadyExists);
    EXPECT_FALSE(set.registerAlias(QStringLiteral("total"), QStringLiteral("sum")).has_value());
    EXPECT_TRUE(testing::hasValue(QStringLiteral("total(1, 2)"), 3, Evaluator(set)));
    const auto missing = set.registerAlias(QStringLiteral("x"), QStringLiteral("nothing"));
    ASSERT_TRUE(missing.has_value());
    EXPECT_EQ(missing->kind(), FunctionRegistrationError::Kind::functionDoesNotExist);
    EXPECT_FALSE(set.removeFunction(QStringLiteral("avg")).has_value());
    EXPECT_FALSE(set.contains(u"mean"));
    EXPECT_TRUE(insensitive.contains(u"mean"));
}

TEST(MathEngine, ErrorKindsHaveTheirCodeNames)
{
    EXPECT_EQ(errorKindName(K::divideByZero), QStringLiteral("divideByZero"));
    EXPECT_EQ(errorKindName(K::missingLeftOperand), QStringLiteral("missingLeftOperand"));
    EXPECT_EQ(errorKindName(K::invalidArguments), QStringLiteral("invalidArguments"));
    EXPECT_EQ(errorKindName(K::cannotParseLocalizedNumber), QStringLiteral("cannotParseLocalizedNumber"));
}

} // namespace
} // namespace scrivlet::math
