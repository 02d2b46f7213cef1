#include "calculation/SanitizeExpression.h"
#include "calculation/QStringPrinter.h"

#include <gtest/gtest.h>

#include <ostream>

using namespace scrivlet;

namespace {

const NumberLocale &american()
{
    static const NumberLocale locale = *NumberLocale::fromName(QStringLiteral("en_US"));
    return locale;
}

const NumberLocale &german()
{
    static const NumberLocale locale = *NumberLocale::fromName(QStringLiteral("de_DE"));
    return locale;
}

enum class Locale { American, German };

const NumberLocale &numberLocale(Locale locale)
{
    return locale == Locale::German ? german() : american();
}

struct RewriteCase {
    const char16_t *input;
    const char16_t *expected;
    Locale locale = Locale::American;
};

void PrintTo(const RewriteCase &c, std::ostream *os)
{
    *os << '"' << QString::fromUtf16(c.input).toStdString() << '"'
        << (c.locale == Locale::German ? " (de_DE)" : " (en_US)");
}

QString text(const char16_t *s)
{
    return QString::fromUtf16(s);
}

// --- convertPercentPhrases ---------------------------------------------------------

class PercentPhrases : public ::testing::TestWithParam<RewriteCase> {};

TEST_P(PercentPhrases, BecomeArithmeticOfTheNumberBefore)
{
    const RewriteCase &c = GetParam();
    EXPECT_EQ(SanitizeExpression::convertPercentPhrases(text(c.input), numberLocale(c.locale)), text(c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Table, PercentPhrases,
    ::testing::Values(
        // A change is a percent of the number before it, not an absolute addition.
        RewriteCase{u"200 + 10%", u"200*(1+0.1)"}, RewriteCase{u"200 - 10%", u"200*(1-0.1)"},
        RewriteCase{u"200+10 %", u"200*(1+0.1)"}, RewriteCase{u"80 +\t12.5%", u"80*(1+0.125)"},
        RewriteCase{u"$1,200.50 + 10%", u"$1,200.50*(1+0.1)"},
        RewriteCase{u"1 + 2% + 3 - 4%", u"1*(1+0.02) + 3*(1-0.04)"},
        // The grouping separator of the percent is dropped before it is read.
        RewriteCase{u"100 + 1,000%", u"100*(1+10)"}, RewriteCase{u"1.000 + 2,5%", u"1.000*(1+0,025)", Locale::German},
        RewriteCase{u"200 + 10%", u"200*(1+0,1)", Locale::German},
        // A share of a base, "of" in any case.
        RewriteCase{u"20% of 50", u"(0.2*50)"}, RewriteCase{u"12.5 %OF 80", u"(0.125*80)"},
        RewriteCase{u"3% Of 1,000", u"(0.03*1,000)"}, RewriteCase{u"20% of 1.000", u"(0,2*1.000)", Locale::German},
        // The change is rewritten first and consumes the percent a share would need.
        RewriteCase{u"5 + 20% of 50", u"5*(1+0.2) of 50"},
        // What is no phrase, or whose percent the locale can't read, stays as typed.
        RewriteCase{u"5 + 1.2.3%", u"5 + 1.2.3%"}, RewriteCase{u"10% + 5", u"10% + 5"},
        RewriteCase{u"200 × 10%", u"200 × 10%"}, RewriteCase{u"200 − 10%", u"200 − 10%"},
        RewriteCase{u"20% from 50", u"20% from 50"}, RewriteCase{u"+ 10%", u"+ 10%"},
        RewriteCase{u"200 + %", u"200 + %"}, RewriteCase{u"no percent at all", u"no percent at all"}));

// --- removeUnknownWords ------------------------------------------------------------

class UnknownWords : public ::testing::TestWithParam<RewriteCase> {};

TEST_P(UnknownWords, DisappearWhileFunctionNamesAndPowersStay)
{
    const RewriteCase &c = GetParam();
    EXPECT_EQ(SanitizeExpression::removeUnknownWords(text(c.input)), text(c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Table, UnknownWords,
    ::testing::Values(
        RewriteCase{u"5 apples + 3 pears", u"5  + 3 "}, RewriteCase{u"sqrt(16) + sin(0)", u"sqrt(16) + sin(0)"},
        RewriteCase{u"max(1,2) mod gcd lcm e x", u"max(1,2) mod gcd lcm e x"},
        // Case matters: only the lower-case names are functions.
        RewriteCase{u"Sqrt(16)", u"(16)"}, RewriteCase{u"2E3", u"23"}, RewriteCase{u"2e3", u"2e3"},
        // Unknown function names and constants go too.
        RewriteCase{u"pi * 2", u" * 2"}, RewriteCase{u"ln(5)", u"(5)"}, RewriteCase{u"sqrtx(4)", u"(4)"},
        // Letters of any script, inside and outside the basic plane.
        RewriteCase{u"café 5", u" 5"}, RewriteCase{u"3 Äpfel", u"3 "}, RewriteCase{u"\U0001D465 + 1", u" + 1"},
        // The hex prefix is the allowed word "x", the letter digits are not.
        RewriteCase{u"0x1F", u"0x1"},
        // A superscript stands only behind a digit; the first of a run right after one.
        RewriteCase{u"2²", u"2²"}, RewriteCase{u"²", u""}, RewriteCase{u"(2)³", u"(2)"}, RewriteCase{u"2²³", u"2²"},
        RewriteCase{u"10⁰¹", u"10⁰"}, RewriteCase{u"a²", u""}, RewriteCase{u"2a²", u"2²"}, RewriteCase{u"x²", u"x"},
        RewriteCase{u"5 ⁹", u"5 "}, RewriteCase{u"٣²", u"٣"}, RewriteCase{u"2⁻¹", u"2⁻"}, RewriteCase{u"", u""}));

// --- normalizeOperators ------------------------------------------------------------

class Operators : public ::testing::TestWithParam<RewriteCase> {};

TEST_P(Operators, BecomeTheParsersOperators)
{
    const RewriteCase &c = GetParam();
    EXPECT_EQ(SanitizeExpression::normalizeOperators(text(c.input), numberLocale(c.locale)), text(c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Table, Operators,
    ::testing::Values(RewriteCase{u"3 x 4", u"3*4"}, RewriteCase{u"5X3", u"5*3"}, RewriteCase{u"5×3", u"5×3"},
                      RewriteCase{u"8 ÷ 2", u"8/2"}, RewriteCase{u"5 − 3", u"5-3"}, RewriteCase{u"2^3", u"2**3"},
                      RewriteCase{u"2 ** 3 ^ 2", u"2**3**2"},
                      // The rewrite of "x" is blind and reaches into words.
                      RewriteCase{u"exp(1)", u"e*p(1)"}, RewriteCase{u"max(1;2)", u"ma*(12)"},
                      RewriteCase{u"0x1F", u"0*1F"},
                      // Punctuation that is no operator goes.
                      RewriteCase{u"'1' + \"2\" + ‘3’ + “4”", u"1+2+3+4"},
                      RewriteCase{u"#1 @2 &3 ;4 :5 ?6 _7", u"1234567"}, RewriteCase{u"[1]+{2}|3~4\\5", u"1+2345"},
                      // Currency symbols go, wherever they stand.
                      RewriteCase{u"$5 + 3€ + £2 + ¥1 + ₹9 + ₽8 + ₩7 + ₺6", u"5+3+2+1+9+8+7+6"},
                      RewriteCase{u"₫1฿2₴3₦4₲5₵6₡7₭8₾9₱0₪1₸2", u"123456789012"},
                      RewriteCase{u"¢5", u"¢5"},
                      // The locale's separators become the parser's, even between a function's arguments.
                      RewriteCase{u"$1,200.50", u"1200.50"}, RewriteCase{u"1.200,50", u"1.20050"},
                      RewriteCase{u"1.200,50", u"1200.50", Locale::German}, RewriteCase{u"min(1,2)", u"min(12)"},
                      RewriteCase{u"min(1,2)", u"min(1.2)", Locale::German},
                      RewriteCase{u"€ 1.234.567,89", u"1234567.89", Locale::German},
                      // Other white space is the parser's to skip.
                      RewriteCase{u"1\t+\u00a02", u"1\t+\u00a02"}, RewriteCase{u"", u""}));

// --- resolvePercentLiterals ----------------------------------------------------------

class PercentLiterals : public ::testing::TestWithParam<RewriteCase> {};

TEST_P(PercentLiterals, BecomeFractionsAndNeverAModulo)
{
    const RewriteCase &c = GetParam();
    EXPECT_EQ(SanitizeExpression::resolvePercentLiterals(text(c.input)), text(c.expected));
}

INSTANTIATE_TEST_SUITE_P(Table, PercentLiterals,
                         ::testing::Values(RewriteCase{u"50%", u"0.5"}, RewriteCase{u"7%2", u"0.072"},
                                           RewriteCase{u"12.5%", u"0.125"}, RewriteCase{u".5%", u"0.005"},
                                           RewriteCase{u"200%", u"2"}, RewriteCase{u"0%", u"0"},
                                           RewriteCase{u"10%+20%", u"0.1+0.2"},
                                           RewriteCase{u"100*(1+5%)", u"100*(1+0.05)"}, RewriteCase{u"50%%", u"0.5%"},
                                           RewriteCase{u"0.001%", u"0.00001"},
                                           // Of a run with two points only the tail with one is the number.
                                           RewriteCase{u"1.2.3%", u"1.0.023"}, RewriteCase{u"1..5%", u"1.0.005"},
                                           // No digit right before the sign: no percentage.
                                           RewriteCase{u"%5", u"%5"}, RewriteCase{u"5.%", u"5.%"},
                                           RewriteCase{u"(5)%", u"(5)%"}, RewriteCase{u"%", u"%"},
                                           // Digits of another script match but read as no number, which counts as 0.
                                           RewriteCase{u"1+٥٠%", u"1+0"}, RewriteCase{u"", u""}));

// --- normalizeNumberSeparators -------------------------------------------------------

TEST(NumberSeparators, TheLocaleAloneDecidesWhatASeparatorMeans)
{
    EXPECT_EQ(SanitizeExpression::normalizeNumberSeparators(QStringLiteral("1.200,50"), german()),
              QStringLiteral("1200.50"));
    EXPECT_EQ(SanitizeExpression::normalizeNumberSeparators(QStringLiteral("1.200,50"), american()),
              QStringLiteral("1.20050"));
    EXPECT_EQ(SanitizeExpression::normalizeNumberSeparators(QStringLiteral("1,234.5 x 2"), american()),
              QStringLiteral("1234.5 x 2"));

    // A locale without separators groups with "," and has "." for decimals.
    const NumberLocale none{QString(), QString()};
    EXPECT_EQ(SanitizeExpression::normalizeNumberSeparators(QStringLiteral("1,000.5"), none), QStringLiteral("1000.5"));
    // The doubled comma counts as a comma.
    EXPECT_EQ(SanitizeExpression::normalizeNumberSeparators(QStringLiteral("1,,2,3.5"),
                                                            NumberLocale(QStringLiteral(",,"), QStringLiteral("."))),
              QStringLiteral("123.5"));
    EXPECT_EQ(SanitizeExpression::normalizeNumberSeparators(QStringLiteral("1.234,5"),
                                                            NumberLocale(QStringLiteral("."), QStringLiteral(",,"))),
              QStringLiteral("1234.5"));
    // Any other grouping separator leaves the digits alone; a decimal comma still turns.
    const NumberLocale narrowSpace{QStringLiteral("\u202f"), QStringLiteral(",")};
    EXPECT_EQ(SanitizeExpression::normalizeNumberSeparators(QStringLiteral("1\u202f000,5"), narrowSpace),
              QStringLiteral("1\u202f000.5"));
    EXPECT_EQ(SanitizeExpression::normalizeOperators(QStringLiteral("1\u202f000,5"), narrowSpace),
              QStringLiteral("1\u202f000.5"));
}

// --- the whole chain ---------------------------------------------------------------

class Sanitize : public ::testing::TestWithParam<RewriteCase> {};

TEST_P(Sanitize, RunsTheRewritesInTheirOrder)
{
    const RewriteCase &c = GetParam();
    EXPECT_EQ(SanitizeExpression::sanitize(text(c.input), numberLocale(c.locale)), text(c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Table, Sanitize,
    ::testing::Values(RewriteCase{u"$1,200.50 + 10%", u"1200.50*(1+0.1)"}, RewriteCase{u"50% of 200", u"(0.5*200)"},
                      RewriteCase{u"50%", u"0.5"}, RewriteCase{u"7 % 2", u"0.072"}, RewriteCase{u"2^3", u"2**3"},
                      RewriteCase{u"5 x 3", u"5*3"}, RewriteCase{u"5×3", u"5×3"},
                      // Only the lower-case "x" is an allowed word: a capital one is gone before it could
                      // become a product.
                      RewriteCase{u"5X3", u"53"}, RewriteCase{u"3 X 4", u""}, RewriteCase{u"sqrt(16)", u"sqrt(16)"},
                      RewriteCase{u"max(1,2)", u"ma*(12)"}, RewriteCase{u"max(1,2)", u"ma*(1.2)", Locale::German},
                      RewriteCase{u"1,5 + 1", u"1.5+1", Locale::German},
                      RewriteCase{u"€1.200,50 + 10%", u"1200.50*(1+0.1)", Locale::German},
                      // A symbol behind the base breaks the phrase: the percent is then a plain fraction.
                      RewriteCase{u"1.200,50 € + 10%", u"1200.50+0.1", Locale::German},
                      RewriteCase{u"5 apples + 3 pears", u"5+3"}, RewriteCase{u"2² + x²", u"2²+*"},
                      // A Unicode minus is no sign of a change, so the percent is a plain fraction.
                      RewriteCase{u"200 − 10%", u"200-0.1"},
                      // Hex numbers don't survive: the letter digits are words and "x" is a product.
                      RewriteCase{u"0x1F", u"0*1"},
                      // Two numbers side by side mean nothing, however they got there.
                      RewriteCase{u"10 20", u""}, RewriteCase{u"10 20 =", u""}, RewriteCase{u"1 \t 0", u""},
                      RewriteCase{u"5 apples 3 pears", u""}, RewriteCase{u"1\u00a02", u""}, RewriteCase{u"٣ ٤", u""},
                      RewriteCase{u"10 + 20", u"10+20"}, RewriteCase{u"10 (20)", u"10(20)"}, RewriteCase{u"", u""}));

// --- lines nobody types but anyone can paste -------------------------------------------

TEST(SanitizeBadInput, LongLinesAreRewrittenWholeAndInLinearTime)
{
    constexpr qsizetype kLength = 100000;

    const QString sum = QStringLiteral("1 + ").repeated(kLength / 4) + u'1';
    EXPECT_EQ(SanitizeExpression::sanitize(sum, american()), QStringLiteral("1+").repeated(kLength / 4) + u'1');

    const QString percents = QStringLiteral("5%").repeated(kLength / 2);
    EXPECT_EQ(SanitizeExpression::sanitize(percents, american()), QStringLiteral("0.05").repeated(kLength / 2));
    EXPECT_EQ(SanitizeExpression::sanitize(QString(kLength, u'%'), american()), QString(kLength, u'%'));

    // Long runs of number characters that almost form a phrase must not be rescanned from
    // every position.
    const QString digits(kLength / 2, u'7');
    const QString almostChange = digits + QStringLiteral(" + ") + digits + QStringLiteral(" x%");
    EXPECT_EQ(SanitizeExpression::convertPercentPhrases(almostChange, american()), almostChange);
    const QString almostShare = digits + QStringLiteral("% o") + digits;
    EXPECT_EQ(SanitizeExpression::convertPercentPhrases(almostShare, american()), almostShare);
    const QString points = QStringLiteral("1.").repeated(kLength / 2) + QStringLiteral("5%");
    EXPECT_EQ(SanitizeExpression::resolvePercentLiterals(points),
              QStringLiteral("1.").repeated(kLength / 2 - 1) + QStringLiteral("0.015"));

    EXPECT_EQ(SanitizeExpression::sanitize(QString(kLength, u'a'), american()), QString());
    EXPECT_EQ(SanitizeExpression::sanitize(QString(kLength, u'x'), american()), QString());
    EXPECT_EQ(SanitizeExpression::sanitize(QStringLiteral("x ").repeated(kLength / 2), american()),
              QString(kLength / 2, u'*'));
    EXPECT_EQ(SanitizeExpression::sanitize(QString(kLength, u'²'), american()), QString());
    EXPECT_EQ(SanitizeExpression::sanitize(QStringLiteral("1 ").repeated(kLength / 2), american()), QString());
    EXPECT_EQ(SanitizeExpression::sanitize(QString(kLength, u'^'), american()), QString(2 * kLength, u'*'));
}

TEST(SanitizeBadInput, NumbersTooLargeToHoldAndBrokenTextStayStrings)
{
    // A percentage past the range of a double is infinite, which the parser refuses.
    const QString huge = u'1' + QString(400, u'0');
    EXPECT_EQ(SanitizeExpression::resolvePercentLiterals(huge + u'%'), QStringLiteral("inf"));
    EXPECT_EQ(SanitizeExpression::resolvePercentLiterals(QStringLiteral("0.") + QString(400, u'0') + u"1%"),
              QStringLiteral("0"));
    EXPECT_EQ(SanitizeExpression::convertPercentPhrases(QStringLiteral("1 + ") + huge + u'%', american()),
              QStringLiteral("1*(1+inf)"));

    // Lone surrogates, control characters and NULs pass through the rewrites unharmed.
    const QString broken = QStringLiteral("1") + QChar(0xd800) + u"+2" + QChar(0xdc00) + QChar(0) + u"\x01";
    EXPECT_EQ(SanitizeExpression::sanitize(broken, american()), broken);
    const QString highAtEnd = QStringLiteral("5%") + QChar(0xd83d);
    EXPECT_EQ(SanitizeExpression::sanitize(highAtEnd, american()), QStringLiteral("0.05") + QChar(0xd83d));
}

TEST(SanitizeBadInput, TheCurrentLocaleIsWhatTheDefaultReads)
{
    const NumberLocale before = NumberLocale::current();
    NumberLocale::setCurrent(german());
    EXPECT_EQ(SanitizeExpression::sanitize(QStringLiteral("1.000,5 + 10%")), QStringLiteral("1000.5*(1+0.1)"));
    NumberLocale::setCurrent(american());
    EXPECT_EQ(SanitizeExpression::sanitize(QStringLiteral("1.000,5 + 10%")), QStringLiteral("1.0005*(1+0.1)"));
    NumberLocale::setCurrent(before);
}

TEST(SanitizeWords, TheAllowedWordsAndCurrencySymbolsAreExactlyTheLists)
{
    const QStringList allowed =
        QStringLiteral("sin cos tan asin acos atan sinh cosh tanh asinh acosh atanh log exp "
                       "pow sqrt cbrt abs ceil floor round sign min max avg sum mod gcd lcm e x")
            .split(u' ');
    ASSERT_EQ(allowed.size(), 31);
    for (const QString &word : allowed) {
        EXPECT_TRUE(SanitizeExpression::isAllowedWord(word)) << word.toStdString();
        EXPECT_FALSE(SanitizeExpression::isAllowedWord(word.toUpper())) << word.toStdString();
        EXPECT_FALSE(SanitizeExpression::isAllowedWord(QString(word + u's'))) << word.toStdString();
    }
    for (const char16_t *word : {u"ln", u"pi", u"tau", u"mean", u"median", u"of", u"", u"X", u"E"})
        EXPECT_FALSE(SanitizeExpression::isAllowedWord(QStringView(word))) << QString::fromUtf16(word).toStdString();

    const QString symbols = QStringLiteral("$€£¥₹₽₩₺₫฿₴₦₲₵₡₭₾₱₪₸");
    ASSERT_EQ(symbols.size(), 20);
    for (const QChar c : symbols)
        EXPECT_TRUE(SanitizeExpression::isCurrencySymbol(c)) << int(c.unicode());
    for (const QChar c : QStringLiteral("¢₿¤%x"))
        EXPECT_FALSE(SanitizeExpression::isCurrencySymbol(c)) << int(c.unicode());
}

} // namespace
