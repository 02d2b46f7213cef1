#include "calculation/NumberFormat.h"
#include "calculation/NumberLocale.h"

#include "calculation/QStringPrinter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace scrivlet;

namespace {

class NumberFormatTest : public ::testing::Test {
protected:
    void SetUp() override { NumberLocale::setCurrent(*NumberLocale::fromName(QStringLiteral("en_US"))); }
    void TearDown() override { NumberLocale::setCurrent(m_saved); }

    static QString format(double value, int decimals, QStringView symbol = {}, bool grouping = true)
    {
        return formatNumber(value, decimals, symbol, grouping).value_or(QStringLiteral("<none>"));
    }

private:
    NumberLocale m_saved = NumberLocale::current();
};

TEST_F(NumberFormatTest, AlwaysWritesExactlyTheAskedDecimals)
{
    EXPECT_EQ(format(137, 2), u"137.00");
    EXPECT_EQ(format(137, 0), u"137");
    EXPECT_EQ(format(-2.0 / 3.0, 4), u"-0.6667");
    EXPECT_EQ(format(-0.0, 2), u"0.00");
    EXPECT_EQ(format(999.996, 2), u"1,000.00"); // the carry runs into a new digit and its group
    EXPECT_EQ(format(1234.5678, 16), u"1,234.5678000000000000");
    EXPECT_FALSE(formatNumber(1, -1, {}));
}

TEST_F(NumberFormatTest, TinyValuesShowTheirFirstDigits)
{
    EXPECT_EQ(format(0.001, 2), u"0.00100");
    EXPECT_EQ(format(-0.004, 2), u"-0.0040");
    EXPECT_EQ(format(0.01, 2), u"0.01"); // not below 10^-2: no extra digits
    EXPECT_EQ(format(0.3, 0), u"0");     // -log10(0.3) truncates to 0
    EXPECT_EQ(format(1e-20, 16), u"0.000000000000000000010000000000000000");
    // The smallest double still formats, with its first digits.
    const QString smallest = format(std::numeric_limits<double>::denorm_min(), 2);
    EXPECT_TRUE(smallest.startsWith(u"0.000")) << smallest.toStdString();
    EXPECT_TRUE(smallest.endsWith(u"00050")) << smallest.toStdString(); // shortest form "5e-324"
}

TEST_F(NumberFormatTest, RoundsTheShortestDecimalHalfToEven)
{
    // Exact ties in the shortest form go to the even digit...
    EXPECT_EQ(format(0.125, 2), u"0.12");
    EXPECT_EQ(format(0.375, 2), u"0.38");
    EXPECT_EQ(format(-2.5, 0), u"-2");
    EXPECT_EQ(format(1.005, 2), u"1.00"); // stored as 1.00499..., written 1.005
    EXPECT_EQ(format(1.015, 2), u"1.02");
    // ...anything past the half rounds up, anything short of it down.
    EXPECT_EQ(format(0.1251, 2), u"0.13");
    EXPECT_EQ(format(2.5000001, 0), u"3");
    EXPECT_EQ(format(0.1 + 0.2, 16), u"0.3000000000000000");
    EXPECT_EQ(format(0.1 + 0.2, 17), u"0.30000000000000004");
}

TEST_F(NumberFormatTest, GroupsWholeDigitsUnlessSwitchedOff)
{
    EXPECT_EQ(format(-1234567.891, 2), u"-1,234,567.89");
    EXPECT_EQ(format(123456, 0), u"123,456");
    EXPECT_EQ(format(1234567.891, 2, {}, false), u"1234567.89");
    EXPECT_EQ(format(1e21, 0), u"1,000,000,000,000,000,000,000");
    EXPECT_EQ(format(1.5e300, 0).size(), 301 + 100);
}

TEST_F(NumberFormatTest, SymbolGoesInFrontAndSpecialValuesPassThrough)
{
    EXPECT_EQ(format(10, 2, u"$"), u"$10.00");
    EXPECT_EQ(format(-10, 2, u"€"), u"€-10.00");
    EXPECT_EQ(format(std::numeric_limits<double>::infinity(), 2), u"∞");
    EXPECT_EQ(format(-std::numeric_limits<double>::infinity(), 2, u"$"), u"$-∞");
    EXPECT_EQ(format(std::nan(""), 2), u"NaN");
}

TEST_F(NumberFormatTest, FollowsTheCurrentLocaleSeparators)
{
    NumberLocale::setCurrent(*NumberLocale::fromName(QStringLiteral("de_DE")));
    EXPECT_EQ(format(1234567.891, 2), u"1.234.567,89");
    EXPECT_EQ(format(0.5, 1), u"0,5");
    EXPECT_EQ(format(1234.5, 1, {}, false), u"1234,5");
    NumberLocale::setCurrent(NumberLocale(QStringLiteral("\u202f"), QStringLiteral(",")));
    EXPECT_EQ(format(1234.5, 1), u"1\u202f234,5");
    NumberLocale::setCurrent(NumberLocale(QString(), QString()));
    EXPECT_EQ(format(1234.5, 1), u"1234.5");
}

} // namespace
