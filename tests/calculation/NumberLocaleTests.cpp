#include "calculation/NumberLocale.h"
#include "calculation/ShortestDecimal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace scrivlet;

namespace {

TEST(NumberLocale, NamedLocalesGiveTheirSeparatorsAndUnknownNamesNone)
{
    const auto german = NumberLocale::fromName(QStringLiteral("de_DE"));
    ASSERT_TRUE(german);
    EXPECT_EQ(german->groupingSeparator(), QStringLiteral("."));
    EXPECT_EQ(german->decimalSeparator(), QStringLiteral(","));
    EXPECT_TRUE(german->usesDecimalComma());

    const auto american = NumberLocale::fromName(QStringLiteral("en_US"));
    ASSERT_TRUE(american);
    EXPECT_EQ(american->groupingSeparator(), QStringLiteral(","));
    EXPECT_EQ(american->decimalSeparator(), QStringLiteral("."));
    EXPECT_FALSE(american->usesDecimalComma());

    EXPECT_TRUE(NumberLocale::fromName(QStringLiteral("C")));
    EXPECT_EQ(NumberLocale::fromName(QStringLiteral("de-DE")), german);
    for (const char *bad : {"", "xx_YY", "klingon"})
        EXPECT_FALSE(NumberLocale::fromName(QString::fromLatin1(bad))) << bad;
}

TEST(NumberLocale, TheCurrentValueIsSetOnceForTheWholeProgram)
{
    const NumberLocale before = NumberLocale::current();
    EXPECT_EQ(before, NumberLocale(QLocale())); // until set, the system's locale

    const NumberLocale french(QStringLiteral("\u202f"), QStringLiteral(","));
    NumberLocale::setCurrent(french);
    EXPECT_EQ(NumberLocale::current(), french);
    EXPECT_NE(NumberLocale::current(), *NumberLocale::fromName(QStringLiteral("en_US")));
    NumberLocale::setCurrent(before);
    EXPECT_EQ(NumberLocale::current(), before);
}

TEST(NumberLocale, ReadsNumbersWithItsOwnDecimalSeparatorOnly)
{
    const NumberLocale german = *NumberLocale::fromName(QStringLiteral("de_DE"));
    const NumberLocale american = *NumberLocale::fromName(QStringLiteral("en_US"));
    EXPECT_EQ(german.readNumber(u"2,5"), 2.5);
    EXPECT_EQ(german.readNumber(u",5"), 0.5);
    EXPECT_EQ(american.readNumber(u"2.5"), 2.5);
    EXPECT_EQ(american.readNumber(u"12"), 12.0);
    EXPECT_EQ(american.readNumber(u"0.1"), 0.1);
    // No grouping, one separator, only ASCII digits.
    for (const char16_t *bad : {u"", u".", u"1.2.3", u"1,5", u"-1", u"1e5", u"٥", u" 1", u"1 "})
        EXPECT_FALSE(american.readNumber(bad)) << QString::fromUtf16(bad).toStdString();
    EXPECT_FALSE(german.readNumber(u"2.5"));
    EXPECT_FALSE(german.readNumber(u"1,2,3"));
    // Past the range of a double: infinite when large, zero when tiny.
    EXPECT_EQ(american.readNumber(QString(QString(u'9') + QString(400, u'0'))),
              std::numeric_limits<double>::infinity());
    EXPECT_EQ(american.readNumber(QString(QStringLiteral("0.") + QString(400, u'0') + u'1')), 0.0);
    // A locale without a decimal separator reads the parser's point.
    EXPECT_EQ(NumberLocale(QString(), QString()).readNumber(u"1.5"), 1.5);
}

TEST(ShortestDecimal, ReadsBackExactlyWithoutExponentForOrdinaryValues)
{
    const struct {
        double value;
        const char *text;
    } cases[] = {
        {0.1, "0.1"},
        {0.5, "0.5"},
        {2, "2"},
        {-3.25, "-3.25"},
        {1200.5, "1200.5"},
        {0.1 + 0.2, "0.30000000000000004"},
        {1e-5, "0.00001"},
        {1e15, "1000000000000000"},
        {1.5e20, "150000000000000000000"},
        {1e21, "1e+21"},
        {2.5e-8, "2.5e-08"},
        {0.0, "0"},
        {-0.0, "0"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(shortestDecimal(c.value).toStdString(), c.text) << c.value;

    // Round trip on values whose shortest form is long.
    for (double v : {1.0 / 3, 2.0 / 3 * 1e12, 123456.789e-3, 9007199254740993.0, 5e-324, 1.7976931348623157e308}) {
        bool ok = false;
        EXPECT_EQ(shortestDecimal(v).toDouble(&ok), v) << shortestDecimal(v).toStdString();
        EXPECT_TRUE(ok);
    }
    EXPECT_EQ(shortestDecimal(std::nan("")), QStringLiteral("nan"));
    EXPECT_EQ(shortestDecimal(std::numeric_limits<double>::infinity()), QStringLiteral("inf"));
    EXPECT_EQ(shortestDecimal(-std::numeric_limits<double>::infinity()), QStringLiteral("-inf"));
}

} // namespace
