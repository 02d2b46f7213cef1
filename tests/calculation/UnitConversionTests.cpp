#include "calculation/CurrencyRates.h"
#include "calculation/NumberLocale.h"
#include "calculation/UnitConverter.h"
#include "calculation/UnitNotation.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "shell/preferences/MathPreferences.h"

#include "calculation/QStringPrinter.h"

#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <random>

using namespace scrivlet;

namespace {

class UnitConversionTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        NumberLocale::setCurrent(*NumberLocale::fromName(QStringLiteral("en_US")));
        rates.useRates({{QStringLiteral("USD"), 1.0},
                        {QStringLiteral("CAD"), 1.35},
                        {QStringLiteral("JPY"), 150.0},
                        {QStringLiteral("EUR"), 0.9},
                        {QStringLiteral("HKD"), 7.8},
                        {QStringLiteral("CUP"), 24.0}});
    }
    void TearDown() override { NumberLocale::setCurrent(m_savedLocale); }

    QString convert(const QString &text, int decimals = 2) const { return converter.processConversion(text, decimals); }

    MemorySettingsStore store;
    ManualClock clock;
    NotificationBus bus;
    CurrencyRates rates{store, clock, bus};
    UnitConverter converter{store, rates};
    MathPreferences preferences{store};

private:
    NumberLocale m_savedLocale = NumberLocale::current();
};

struct GateCase {
    const char16_t *text;
    bool allowUnitless;
    bool expected;
};

TEST_F(UnitConversionTest, GateTellsConversionsFromArithmetic)
{
    const GateCase cases[] = {
        {u"89 miles to km ", false, true},
        {u"5 inches into cm ", false, true},
        {u"100 C in F ", false, true},
        // A "/" between plain numbers divides; next to a kitchen measure it is a fraction.
        {u"1/2 ", true, false},
        {u"1/2 cup to ml ", true, true},
        // A "-" between plain numbers subtracts; next to a temperature it is a sign.
        {u"10 - 3 ", true, false},
        {u"-5 C to F ", true, true},
        {u"10 - 3 to km ", true, false},
        // Any x, +, or * makes it arithmetic, even inside a word.
        {u"2 x 3 to cm ", true, false},
        {u"1 box to kg ", true, false},
        {u"2 + 3 to cm ", true, false},
        {u"2 * 3 to cm ", true, false},
        // Without a connector only a unitless line may be a quick conversion.
        {u"$24 ", false, false},
        {u"$24 ", true, true},
        {u"25 HKD ", true, true},
        {u"25 HKD ", false, false},
        {u"24 ", true, false},
        // Exactly one currency, and more than a lone letter unless it is a currency sign.
        {u"25 HKD and 3 JPY ", true, false},
        {u"Ξ 5 ", true, false},
        {u"ETH 5 ", true, true},
        {u"5€5 ", true, true},
    };
    for (const GateCase &c : cases) {
        const QString text = QString::fromUtf16(c.text);
        EXPECT_EQ(converter.isConversionRequest(text, c.allowUnitless), c.expected)
            << qPrintable(text) << " allowUnitless=" << c.allowUnitless;
    }

    // The bare amount follows the user's own currency sign.
    preferences.setPrimaryCurrencySymbol(QStringLiteral("€"));
    EXPECT_TRUE(converter.isConversionRequest(QStringLiteral("€24 "), true));
    EXPECT_FALSE(converter.isConversionRequest(QStringLiteral("$24 "), true));
}

TEST_F(UnitConversionTest, CurrencyCodesTakePrecedenceOverEveryOtherUnit)
{
    EXPECT_EQ(converter.unitNamed(QStringLiteral("cup")), Unit(CurrencyUnit::cup));
    EXPECT_EQ(converter.unitNamed(QStringLiteral("cups")), Unit(VolumeUnit::cup));
    EXPECT_EQ(converter.unitNamed(QStringLiteral("ton")), Unit(CurrencyUnit::ton));
    EXPECT_EQ(converter.unitNamed(QStringLiteral("short ton")), Unit(MassUnit::shortTon));
    EXPECT_EQ(converter.unitNamed(QStringLiteral("坪")), Unit(AreaUnit::tsubo));
    EXPECT_EQ(converter.unitNamed(QStringLiteral("pyeong")), Unit(AreaUnit::ping));
    // Names compare without regard to case.
    EXPECT_EQ(converter.unitNamed(QStringLiteral("cad")), Unit(CurrencyUnit::cad));
    EXPECT_EQ(converter.unitNamed(QStringLiteral("ML")), Unit(VolumeUnit::milliliter));
    EXPECT_EQ(converter.unitNamed(QStringLiteral("Degrees celsius")), Unit(TemperatureUnit::celsius));
    EXPECT_EQ(converter.unitNamed(QStringLiteral("1inch")), Unit(CurrencyUnit::_1inch));
    EXPECT_EQ(converter.unitNamed(QStringLiteral("parsec")), std::nullopt);
    // The primary sign stands for the fallback when there is one, else for the dollar.
    EXPECT_EQ(converter.unitNamed(QStringLiteral("$"), Unit(CurrencyUnit::eur)), Unit(CurrencyUnit::eur));
    EXPECT_EQ(converter.unitNamed(QStringLiteral("$")), Unit(CurrencyUnit::usd));

    // So "1/2 cup to ml" asks for pesos in millilitres, which has no answer.
    EXPECT_EQ(convert(QStringLiteral("1/2 cup to ml ")), u"N/A");
    EXPECT_EQ(convert(QStringLiteral("1 ton to kg ")), u"N/A");
}

TEST_F(UnitConversionTest, ConvertsWithinAFamilyByFactors)
{
    EXPECT_EQ(convert(QStringLiteral("89 miles to km ")), u"143.23 km");
    EXPECT_EQ(convert(QStringLiteral("89 miles to km "), 0), u"143 km");
    EXPECT_EQ(convert(QStringLiteral("1 1/2 cups to ml ")), u"354.88 mL");
    EXPECT_EQ(convert(QStringLiteral("3/4 tsp to ml ")), u"3.70 mL");
    EXPECT_EQ(convert(QStringLiteral("2 sq ft to sq m ")), u"0.19 m²");
    EXPECT_EQ(convert(QStringLiteral("1 kg into g ")), u"1,000.00 g");
    EXPECT_EQ(convert(QStringLiteral("5 kg to km ")), u"N/A");
    EXPECT_EQ(convert(QStringLiteral("10 apples to km ")), u"N/A");
    EXPECT_EQ(convert(QStringLiteral("24 ")), u"Not a conversion request.");

    preferences.setUseThousandSeparatorsStorage(false);
    EXPECT_EQ(convert(QStringLiteral("1 kg to g ")), u"1000.00 g");

    const auto value = converter.convertedValue(QStringLiteral("89 miles to km "));
    ASSERT_TRUE(value.has_value());
    EXPECT_NEAR(*value, 143.2316603, 1e-6);
}

TEST_F(UnitConversionTest, TemperaturesConvertThroughCelsius)
{
    EXPECT_EQ(convert(QStringLiteral("0 C to F ")), u"32.00 °F");
    EXPECT_EQ(convert(QStringLiteral("-40 F to C ")), u"-40.00 °C");
    EXPECT_EQ(convert(QStringLiteral("300 K to celsius ")), u"26.85 °C");
    EXPECT_EQ(convert(QStringLiteral("100 C in F ")), u"212.00 °F");
    EXPECT_EQ(convert(QStringLiteral("-5 C to kelvin ")), u"268.15 K");
    EXPECT_EQ(convert(QStringLiteral("212 fahrenheit to kelvin ")), u"373.15 K");
}

TEST_F(UnitConversionTest, FeetAndInchesAreReadAndWrittenAsOneLength)
{
    EXPECT_EQ(convert(QStringLiteral("10 ft to in ")), u"120\"");
    EXPECT_EQ(convert(QStringLiteral("10 ft to ft ")), u"10'");
    EXPECT_EQ(convert(QStringLiteral("5 ft 3 in to cm ")), u"160.02 cm");
    // The marks may come in either order; the first number is the feet.
    EXPECT_EQ(convert(QStringLiteral("4\" 2' to cm ")), u"127.00 cm");
    EXPECT_EQ(convert(QStringLiteral("6 inches to ft ")), u"6\"");
    EXPECT_EQ(convert(QStringLiteral("170 cm to ft ")), u"5' 6 15/16\"");
    EXPECT_EQ(convert(QStringLiteral("1 m to in ")), u"39 3/8\"");
    // A square foot is an area, not a length with a stray mark.
    EXPECT_EQ(convert(QStringLiteral("2 sq ft to sq in ")), u"288.00 in²");
    // Three numbers make no compound; the plain reading takes the first number.
    EXPECT_EQ(convert(QStringLiteral("5 ft 3 in 2 to cm ")), u"152.40 cm");
    EXPECT_EQ(convert(QStringLiteral("ft to cm ")), u"N/A");
}

TEST_F(UnitConversionTest, StonesAndPoundsAreReadAndWrittenAsOneWeight)
{
    EXPECT_EQ(convert(QStringLiteral("100 kg to st ")), u"15 st 10.46 lb");
    EXPECT_EQ(convert(QStringLiteral("32 oz to lbs ")), u"2.00 lb");
    EXPECT_EQ(convert(QStringLiteral("12 st 3 lb to kg ")), u"77.56 kg");
    EXPECT_EQ(convert(QStringLiteral("14 lb to st ")), u"1 st");
    EXPECT_EQ(convert(QStringLiteral("10 lbs to kg ")), u"4.54 kg");
    EXPECT_EQ(convert(QStringLiteral("3 kg to stone ")), u"6.61 lb");
}

TEST_F(UnitConversionTest, KitchenMeasuresComeAsFractions)
{
    EXPECT_EQ(convert(QStringLiteral("1 L to cups ")), u"4 1/4 cup");
    EXPECT_EQ(convert(QStringLiteral("2 tbsp to tsp ")), u"6 tsp");
    EXPECT_EQ(convert(QStringLiteral("1 tsp to tbsp ")), u"1/3 tbsp");
    EXPECT_EQ(convert(QStringLiteral("100 ml to uk tablespoons ")), u"5 2/3 UK tbsp");
}

TEST_F(UnitConversionTest, CurrenciesConvertThroughTheRateTable)
{
    EXPECT_EQ(convert(QStringLiteral("$32 USD to JPY ")), u"4,800.00 JPY");
    EXPECT_EQ(convert(QStringLiteral("$32 to JPY ")), u"4,800.00 JPY");
    EXPECT_EQ(convert(QStringLiteral("100 euros to cad ")), u"150.00 CAD");
    // Quick conversions: the primary currency goes to the secondary, anything else home.
    EXPECT_EQ(convert(QStringLiteral("$24 ")), u"32.40 CAD");
    EXPECT_EQ(convert(QStringLiteral("25 HKD ")), u"3.21 USD");
    EXPECT_EQ(convert(QStringLiteral("25 CAD ")), u"18.52 USD");
    // A quick conversion of something that is no currency still aims at one.
    EXPECT_EQ(convert(QStringLiteral("20 C ")), u"N/A");

    preferences.setPrimaryCurrency(QStringLiteral("EUR"));
    preferences.setSecondaryCurrency(QStringLiteral("JPY"));
    preferences.setPrimaryCurrencySymbol(QStringLiteral("€"));
    EXPECT_EQ(convert(QStringLiteral("€10 ")), u"1,666.67 JPY");
    EXPECT_EQ(convert(QStringLiteral("10 USD ")), u"9.00 EUR");

    // Unknown codes in the settings fall back to the dollar and the Canadian dollar.
    preferences.setPrimaryCurrency(QStringLiteral("XXX"));
    preferences.setSecondaryCurrency(QStringLiteral(""));
    preferences.setPrimaryCurrencySymbol(QStringLiteral("$"));
    EXPECT_EQ(convert(QStringLiteral("$10 ")), u"13.50 CAD");
}

TEST_F(UnitConversionTest, WithoutRatesEveryCurrencyConversionIsNotAvailable)
{
    CurrencyRates empty(store, clock, bus);
    const UnitConverter noRates(store, empty);
    EXPECT_EQ(noRates.processConversion(QStringLiteral("$24 "), 2), u"N/A");
    EXPECT_EQ(noRates.processConversion(QStringLiteral("$32 USD to JPY "), 2), u"N/A");
    EXPECT_EQ(noRates.processConversion(QStringLiteral("89 miles to km "), 2), u"143.23 km");
}

TEST_F(UnitConversionTest, NumbersFollowTheLocale)
{
    NumberLocale::setCurrent(*NumberLocale::fromName(QStringLiteral("de_DE")));
    EXPECT_EQ(convert(QStringLiteral("1.200 m to km ")), u"1,20 km");
    EXPECT_EQ(convert(QStringLiteral("2,5 kg to g ")), u"2.500,00 g");
}

// The one-currency test as a plain pattern: every currency name as a whole word, and
// exactly one of them in the text.
bool mentionsOneCurrencyByPattern(const QString &text)
{
    static const QRegularExpression pattern = [] {
        QStringList alternatives;
        for (const Unit &unit : Unit::all()) {
            if (unit.family() != Unit::Family::currency)
                continue;
            for (const QString &alias : unit.aliases())
                alternatives.append(QStringLiteral("\\b") + QRegularExpression::escape(alias) + QStringLiteral("\\b"));
        }
        return QRegularExpression(alternatives.join(u'|'), QRegularExpression::CaseInsensitiveOption |
                                                               QRegularExpression::UseUnicodePropertiesOption);
    }();
    auto matches = pattern.globalMatch(text);
    if (!matches.hasNext())
        return false;
    const QString found = matches.next().captured(0).trimmed();
    if (matches.hasNext())
        return false;
    static const QString signs = QStringLiteral("$€£¥₩₹₽₫₴₪₦฿₲₵₡₺₸₮₭₼₾₿");
    return found.size() > 1 || (found.size() == 1 && signs.contains(found.at(0)));
}

TEST(UnitConverter, OneCurrencyTestAgreesWithThePlainPattern)
{
    const QStringList pieces = {
        QStringLiteral("25"), QStringLiteral("HKD"),   QStringLiteral("hkd"),   QStringLiteral("$"),
        QStringLiteral("C$"), QStringLiteral("CA$"),   QStringLiteral("NT$"),   QStringLiteral("U.S."),
        QStringLiteral("US"), QStringLiteral("€"),     QStringLiteral("euros"), QStringLiteral("Ξ"),
        QStringLiteral("₳"),  QStringLiteral("1inch"), QStringLiteral("cup"),   QStringLiteral("cups"),
        QStringLiteral("x"),  QStringLiteral("all"),   QStringLiteral("total"), QStringLiteral("_"),
        QStringLiteral("é"),  QStringLiteral("5"),     QStringLiteral("."),     QStringLiteral("USDT"),
    };
    const QStringList glue = {QString(), QStringLiteral(" "), QStringLiteral("-"), QStringLiteral("/")};
    std::mt19937 random(20260310);
    int agreedOnYes = 0;
    for (int round = 0; round < 4000; ++round) {
        QString text;
        const int words = 1 + int(random() % 4);
        for (int i = 0; i < words; ++i)
            text += pieces.at(qsizetype(random() % pieces.size())) + glue.at(qsizetype(random() % glue.size()));
        const bool expected = mentionsOneCurrencyByPattern(text);
        ASSERT_EQ(UnitConverter::mentionsOneCurrency(text), expected) << qPrintable(text);
        agreedOnYes += expected ? 1 : 0;
    }
    // The texts try both answers often enough to mean something.
    EXPECT_GT(agreedOnYes, 400);
    EXPECT_LT(agreedOnYes, 3600);
}

TEST(UnitNotation, FractionsRoundToWhatCanBeMeasured)
{
    using Fraction = UnitNotation::Fraction;
    EXPECT_EQ(UnitNotation::toFraction(4.22675, 12, {2, 3, 4}), (Fraction{4, 1, 4}));
    EXPECT_EQ(UnitNotation::toFraction(2.5, 16), (Fraction{2, 1, 2}));
    EXPECT_EQ(UnitNotation::toFraction(2.99, 16), (Fraction{3, 0, 1}));
    EXPECT_EQ(UnitNotation::toFraction(7.0, 16), (Fraction{7, 0, 1}));
    // 5/12 is as near to 1/2 as to 1/3: the earlier candidate wins.
    EXPECT_EQ(UnitNotation::toFraction(5.0 / 12.0, 12, {2, 3, 4}), (Fraction{0, 1, 2}));
    // 11/12 is nearest to a whole: no "2/2".
    EXPECT_EQ(UnitNotation::toFraction(1.0 + 11.0 / 12.0, 12, {2, 3, 4}), (Fraction{2, 0, 1}));

    EXPECT_EQ(UnitNotation::formatFraction(0), u"0");
    EXPECT_EQ(UnitNotation::formatFraction(0.5), u"1/2");
    EXPECT_EQ(UnitNotation::formatFraction(2 + 1.0 / 3.0), u"2 1/3");
    EXPECT_EQ(UnitNotation::formatFraction(-1.75), u"-1 3/4");

    EXPECT_EQ(UnitNotation::formatFeetInches(4.5 / 12.0, false), u"4 1/2\"");
    EXPECT_EQ(UnitNotation::formatFeetInches(5.0 + 3.5 / 12.0, false), u"5' 3 1/2\"");
    EXPECT_EQ(UnitNotation::formatFeetInches(5.0 + 0.5 / 12.0, false), u"5' 1/2\"");
    EXPECT_EQ(UnitNotation::formatFeetInches(5.25, false), u"5' 3\"");
    EXPECT_EQ(UnitNotation::formatFeetInches(1.0 + 0.5 / 12.0, true), u"12 1/2\"");
    EXPECT_EQ(UnitNotation::formatFeetInches(-(5.0 + 3.5 / 12.0), false), u"-5' 3 1/2\"");

    EXPECT_EQ(UnitNotation::formatStones(15.74730, false), u"15 st 10.46 lb");
    EXPECT_EQ(UnitNotation::formatStones(2.0, false), u"2 st");
    EXPECT_EQ(UnitNotation::formatStones(0.5, false), u"7.00 lb");
    EXPECT_EQ(UnitNotation::formatStones(2.0, true), u"28.00 lb");
    EXPECT_EQ(UnitNotation::formatStones(-2.5, false), u"-2 st 7.00 lb");
}

TEST(Unit, TablesHoldEveryUnitOnceAndRoundTripTheirStoredForm)
{
    int counts[6] = {};
    for (const Unit &unit : Unit::all()) {
        ++counts[int(unit.family())];
        const auto back = Unit::fromJson(unit.toJson());
        ASSERT_TRUE(back.has_value()) << qPrintable(unit.name());
        EXPECT_EQ(*back, unit) << qPrintable(unit.name());
        EXPECT_FALSE(unit.aliases().isEmpty()) << qPrintable(unit.name());
    }
    EXPECT_EQ(counts[int(Unit::Family::currency)], 337);
    EXPECT_EQ(counts[int(Unit::Family::distance)], 8);
    EXPECT_EQ(counts[int(Unit::Family::area)], 20);
    EXPECT_EQ(counts[int(Unit::Family::volume)], 22);
    EXPECT_EQ(counts[int(Unit::Family::mass)], 10);
    EXPECT_EQ(counts[int(Unit::Family::temperature)], 3);

    EXPECT_EQ(Unit(CurrencyUnit::_1inch).toJson(),
              (QJsonObject{{QStringLiteral("currency"), QStringLiteral("1INCH")}}));
    EXPECT_EQ(Unit(VolumeUnit::cubicMeter).toJson(),
              (QJsonObject{{QStringLiteral("volume"), QStringLiteral("cubicMeter")}}));
    EXPECT_EQ(Unit::fromJson(QJsonObject{{QStringLiteral("distance"), QStringLiteral("parsec")}}), std::nullopt);
    EXPECT_EQ(Unit(AreaUnit::sqft).aliases().at(7), u"square ft");
    EXPECT_EQ(Unit(AreaUnit::sqmi).symbol(), u"mi²");
    EXPECT_EQ(Unit(CurrencyUnit::try_).symbol(), u"TRY");
    EXPECT_EQ(Unit(CurrencyUnit::zwl).symbol(), u"ZWL");
}

} // namespace
