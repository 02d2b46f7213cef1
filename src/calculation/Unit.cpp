#include "calculation/Unit.h"

#include <QJsonObject>

#include <array>

namespace scrivlet {

namespace {

struct UnitRow {
    QString name;
    double factor;
    QString symbol;
    QStringList aliases;
};

using Rows = std::vector<UnitRow>;

QString s(const char16_t *text)
{
    return QString::fromUtf16(text);
}

QStringList list(std::initializer_list<const char16_t *> texts)
{
    QStringList out;
    out.reserve(qsizetype(texts.size()));
    for (const char16_t *text : texts)
        out.append(QString::fromUtf16(text));
    return out;
}

const Rows &distanceRows()
{
    static const Rows rows = {
        {s(u"m"), 1.0, s(u"m"), list({u"m", u"meter", u"metre", u"meters", u"metres"})},
        {s(u"mm"), 1000.0, s(u"mm"), list({u"mm", u"millimeter", u"millimetre", u"millimeters", u"millimetres"})},
        {s(u"cm"), 100.0, s(u"cm"), list({u"cm", u"centimeter", u"centimetre", u"centimeters", u"centimetres"})},
        {s(u"km"), 0.001, s(u"km"), list({u"km", u"kilometer", u"kilometre", u"kilometers", u"kilometres"})},
        {s(u"inch"), 39.3701, s(u"in"), list({u"in", u"inch", u"inches", u"\"", u"″"})},
        {s(u"ft"), 3.28084, s(u"ft"), list({u"ft", u"foot", u"feet", u"'", u"′"})},
        {s(u"mile"), 0.000621371, s(u"mi"), list({u"mile", u"miles", u"mi"})},
        {s(u"yard"), 1.09361, s(u"yd"), list({u"yard", u"yards", u"yd"})},
    };
    return rows;
}

// The square units share one pattern of names: "sqft", "ft²", "sq ft", "square foot",
// "square feet", "sq feet", "sq foot", "square ft".
UnitRow squareRow(const char16_t *name, double factor, const char16_t *shortName, const char16_t *singular,
                  const char16_t *plural)
{
    const QString shortText = s(shortName);
    const QString one = s(singular);
    const QString many = s(plural);
    const QString symbol = shortText + u'²';
    return {s(name),
            factor,
            symbol,
            {u"sq" + shortText, symbol, u"sq " + shortText, u"square " + one, u"square " + many, u"sq " + many,
             u"sq " + one, u"square " + shortText}};
}

const Rows &areaRows()
{
    static const Rows rows = {
        squareRow(u"sqm", 1.0, u"m", u"meter", u"meters"),
        squareRow(u"sqcm", 10000.0, u"cm", u"centimeter", u"centimeters"),
        squareRow(u"sqmm", 1000000.0, u"mm", u"millimeter", u"millimeters"),
        {s(u"hectare"), 0.0001, s(u"ha"), list({u"ha", u"hectare", u"hectares"})},
        squareRow(u"sqkm", 0.000001, u"km", u"kilometer", u"kilometers"),
        squareRow(u"sqft", 10.7639, u"ft", u"foot", u"feet"),
        squareRow(u"sqin", 1550.0031, u"in", u"inch", u"inches"),
        squareRow(u"sqyd", 1.19599, u"yd", u"yard", u"yards"),
        squareRow(u"sqmi", 0.000000386102, u"mi", u"mile", u"miles"),
        {s(u"acre"), 0.000247105, s(u"ac"), list({u"acre", u"acres"})},
        {s(u"are"), 0.01, s(u"a"), list({u"are", u"ares"})},
        {s(u"dunam"), 0.001, s(u"dunam"), list({u"dunam", u"dunams", u"donum", u"donums"})},
        {s(u"tsubo"), 0.3025, s(u"tsubo"), list({u"tsubo", u"坪", u"坪数", u"tsubos"})},
        {s(u"ping"), 0.3025, s(u"ping"), list({u"ping", u"坪", u"pyeong", u"坪数", u"pings", u"pyong"})},
        {s(u"bigha"), 0.000024711, s(u"bigha"), list({u"bigha", u"bighas"})},
        {s(u"cuerda"), 0.000254452, s(u"cuerda"), list({u"cuerda", u"cuerdas"})},
        {s(u"rood"), 0.000098842152, s(u"rood"), list({u"rood", u"roods"})},
        {s(u"perch"), 0.0039537, s(u"perch"), list({u"perch", u"perches"})},
        {s(u"section"), 0.0000000386102, s(u"section"), list({u"section", u"sections"})},
        {s(u"township"), 0.00000000107293, s(u"township"), list({u"township", u"townships"})},
    };
    return rows;
}

const Rows &volumeRows()
{
    static const Rows rows = {
        {s(u"liter"), 1.0, s(u"L"), list({u"liter", u"L", u"Ls", u"litre", u"liters", u"litres"})},
        {s(u"milliliter"), 1000.0, s(u"mL"), list({u"milliliter", u"mL", u"mLs", u"milliliters"})},
        {s(u"cubicMeter"), 0.001, s(u"m³"), list({u"cubicMeter", u"m³", u"cubic meter", u"cubic meters"})},
        {s(u"cubicCentimeter"), 1000.0, s(u"cm³"),
         list({u"cubicCentimeter", u"cm³", u"cubic centimeter", u"cubic centimeters", u"cc", u"cubic cm"})},
        {s(u"cubicMillimeter"), 1000000.0, s(u"mm³"),
         list({u"cubicMillimeter", u"mm³", u"cubic millimeter", u"cubic millimeters", u"cubic mm"})},
        {s(u"gallon"), 0.264172, s(u"gal"),
         list({u"gallon", u"gal", u"gals", u"gallons", u"us gallon", u"us gallons"})},
        {s(u"quart"), 1.05669, s(u"qt"), list({u"quart", u"qt", u"qts", u"quarts"})},
        {s(u"pint"), 2.11338, s(u"pt"), list({u"pint", u"pt", u"pts", u"pints"})},
        {s(u"cup"), 4.22675, s(u"cup"), list({u"cup", u"cups"})},
        {s(u"fluidOunce"), 33.814, s(u"fl oz"),
         list({u"fluidOunce", u"fl oz", u"fl ozs", u"fluid ounce", u"fluid ounces", u"floz"})},
        {s(u"tablespoon"), 67.628, s(u"tbsp"), list({u"tablespoon", u"tbsp", u"tbsps", u"tablespoons"})},
        {s(u"teaspoon"), 202.884, s(u"tsp"), list({u"teaspoon", u"tsp", u"tsps", u"teaspoons"})},
        {s(u"cubicInch"), 61.0237, s(u"in³"), list({u"cubicInch", u"in³", u"cubic inch", u"cubic inches", u"cu in"})},
        {s(u"cubicFoot"), 0.0353147, s(u"ft³"), list({u"cubicFoot", u"ft³", u"cubic foot", u"cubic feet", u"cu ft"})},
        {s(u"cubicYard"), 0.00130795, s(u"yd³"), list({u"cubicYard", u"yd³", u"cubic yard", u"cubic yards", u"cu yd"})},
        {s(u"ukGallon"), 0.219969, s(u"UK gal"),
         list({u"ukGallon", u"UK gal", u"imperial gallon", u"uk gallon", u"uk gallons", u"imperial gallons"})},
        {s(u"ukQuart"), 0.879877, s(u"UK qt"),
         list({u"ukQuart", u"UK qt", u"imperial quart", u"uk quart", u"uk quarts", u"imperial quarts"})},
        {s(u"ukPint"), 1.75975, s(u"UK pt"),
         list({u"ukPint", u"UK pt", u"imperial pint", u"uk pint", u"uk pints", u"imperial pints"})},
        {s(u"ukCup"), 3.51951, s(u"UK cup"),
         list({u"ukCup", u"UK cup", u"imperial cup", u"uk cup", u"uk cups", u"imperial cups"})},
        {s(u"ukFluidOunce"), 35.1951, s(u"UK fl oz"),
         list({u"ukFluidOunce", u"UK fl oz", u"imperial fluid ounce", u"uk fluid ounce", u"uk fluid ounces",
               u"imperial fluid ounces"})},
        {s(u"ukTablespoon"), 56.3121, s(u"UK tbsp"),
         list({u"ukTablespoon", u"UK tbsp", u"imperial tablespoon", u"uk tablespoon", u"uk tablespoons",
               u"imperial tablespoons"})},
        {s(u"ukTeaspoon"), 168.936, s(u"UK tsp"),
         list(
             {u"ukTeaspoon", u"UK tsp", u"imperial teaspoon", u"uk teaspoon", u"uk teaspoons", u"imperial teaspoons"})},
    };
    return rows;
}

const Rows &massRows()
{
    static const Rows rows = {
        {s(u"kilogram"), 1.0, s(u"kg"), list({u"kilogram", u"kg", u"kgs", u"kilograms"})},
        {s(u"gram"), 1000.0, s(u"g"), list({u"gram", u"g", u"grams", u"gs"})},
        {s(u"milligram"), 1000000.0, s(u"mg"), list({u"milligram", u"mg", u"milligrams", u"mgs"})},
        {s(u"microgram"), 1000000000.0, s(u"µg"), list({u"microgram", u"µg", u"micrograms", u"ug", u"mcg"})},
        {s(u"metricTon"), 0.001, s(u"t"), list({u"metric ton", u"t", u"tonne", u"tonnes", u"metric tons"})},
        {s(u"pound"), 2.20462, s(u"lb"), list({u"pound", u"lb", u"lbs", u"pounds"})},
        {s(u"ounce"), 35.274, s(u"oz"), list({u"ounce", u"oz", u"ounces", u"ozs"})},
        {s(u"stone"), 0.157473, s(u"st"), list({u"stone", u"st", u"stones"})},
        {s(u"shortTon"), 0.00110231, s(u"US ton"),
         list({u"ton", u"short ton", u"us ton", u"us tons", u"tons", u"short tons"})},
        {s(u"longTon"), 0.000984207, s(u"UK ton"),
         list({u"long ton", u"uk ton", u"imperial ton", u"imperial tons", u"long tons"})},
    };
    return rows;
}

// Temperatures have no factor: they convert through Celsius by formula.
const Rows &temperatureRows()
{
    static const Rows rows = {
        {s(u"celsius"), 0.0, s(u"°C"),
         list({u"celsius", u"°C", u"C", u"centigrade", u"degrees Celsius", u"degrees C"})},
        {s(u"kelvin"), 0.0, s(u"K"), list({u"kelvin", u"K", u"kelvins", u"degrees K"})},
        {s(u"fahrenheit"), 0.0, s(u"°F"), list({u"fahrenheit", u"°F", u"F", u"degrees Fahrenheit", u"degrees F"})},
    };
    return rows;
}

// A currency is named by its code, and a few by their signs and common names as well.
const Rows &currencyRows()
{
    static const Rows rows = [] {
        const QHash<QString, QStringList> extra = {
            {s(u"USD"), list({u"US", u"U.S.", u"$"})},
            {s(u"CAD"), list({u"C$", u"CA$"})},
            {s(u"TWD"), list({u"NT$", u"NTD"})},
            {s(u"AUD"), list({u"A$", u"AU$"})},
            {s(u"EUR"), list({u"€", u"euros"})},
            {s(u"GBP"), list({u"£"})},
            {s(u"BTC"), list({u"₿"})},
            {s(u"ETH"), list({u"Ξ"})},
            {s(u"LTC"), list({u"Ł"})},
            {s(u"XRP"), list({u"ᙇ"})},
            {s(u"ADA"), list({u"₳"})},
            {s(u"ILS"), list({u"NIS"})},
        };
        Rows out;
        out.reserve(kCurrencyUnitCount);
        for (int i = 0; i < kCurrencyUnitCount; ++i) {
            const QString code = currencyCode(currencyUnitAt(i));
            out.push_back({code, 0.0, code, QStringList{code} + extra.value(code)});
        }
        return out;
    }();
    return rows;
}

const std::array<QString, 6> &familyNames()
{
    static const std::array<QString, 6> names = {s(u"currency"), s(u"distance"), s(u"area"),
                                                 s(u"volume"),   s(u"mass"),     s(u"temperature")};
    return names;
}

const Rows &rowsOf(Unit::Family family)
{
    switch (family) {
    case Unit::Family::currency:
        return currencyRows();
    case Unit::Family::distance:
        return distanceRows();
    case Unit::Family::area:
        return areaRows();
    case Unit::Family::volume:
        return volumeRows();
    case Unit::Family::mass:
        return massRows();
    case Unit::Family::temperature:
        return temperatureRows();
    }
    Q_UNREACHABLE();
}

Unit unitOf(Unit::Family family, int index)
{
    switch (family) {
    case Unit::Family::currency:
        return Unit(currencyUnitAt(index));
    case Unit::Family::distance:
        return Unit(DistanceUnit(index));
    case Unit::Family::area:
        return Unit(AreaUnit(index));
    case Unit::Family::volume:
        return Unit(VolumeUnit(index));
    case Unit::Family::mass:
        return Unit(MassUnit(index));
    case Unit::Family::temperature:
        return Unit(TemperatureUnit(index));
    }
    Q_UNREACHABLE();
}

constexpr std::array kFamilies = {Unit::Family::currency, Unit::Family::distance, Unit::Family::area,
                                  Unit::Family::volume,   Unit::Family::mass,     Unit::Family::temperature};

int indexOf(const Unit &unit)
{
    switch (unit.family()) {
    case Unit::Family::currency:
        return int(*unit.as<CurrencyUnit>());
    case Unit::Family::distance:
        return int(*unit.as<DistanceUnit>());
    case Unit::Family::area:
        return int(*unit.as<AreaUnit>());
    case Unit::Family::volume:
        return int(*unit.as<VolumeUnit>());
    case Unit::Family::mass:
        return int(*unit.as<MassUnit>());
    case Unit::Family::temperature:
        return int(*unit.as<TemperatureUnit>());
    }
    Q_UNREACHABLE();
}

const UnitRow &rowOf(const Unit &unit)
{
    return rowsOf(unit.family()).at(std::size_t(indexOf(unit)));
}

} // namespace

QString Unit::symbol() const
{
    return rowOf(*this).symbol;
}

const QStringList &Unit::aliases() const
{
    return rowOf(*this).aliases;
}

std::optional<double> Unit::factor() const
{
    if (family() == Family::currency || family() == Family::temperature)
        return std::nullopt;
    return rowOf(*this).factor;
}

QString Unit::name() const
{
    return rowOf(*this).name;
}

QJsonObject Unit::toJson() const
{
    return QJsonObject{{familyNames()[std::size_t(family())], name()}};
}

std::optional<Unit> Unit::fromJson(const QJsonObject &object)
{
    if (object.size() != 1)
        return std::nullopt;
    for (Family family : kFamilies) {
        const QJsonValue value = object.value(familyNames()[std::size_t(family)]);
        if (!value.isString())
            continue;
        const Rows &rows = rowsOf(family);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].name == value.toString())
                return unitOf(family, int(i));
        }
        return std::nullopt;
    }
    return std::nullopt;
}

const std::vector<Unit> &Unit::all()
{
    static const std::vector<Unit> units = [] {
        std::vector<Unit> out;
        for (Family family : kFamilies) {
            const int count = int(rowsOf(family).size());
            for (int i = 0; i < count; ++i)
                out.push_back(unitOf(family, i));
        }
        return out;
    }();
    return units;
}

} // namespace scrivlet
