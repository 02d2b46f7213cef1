#include "calculation/UnitConverter.h"

#include "calculation/CalculationLog.h"
#include "calculation/CurrencyRates.h"
#include "calculation/NumberFormat.h"
#include "calculation/SanitizeExpression.h"
#include "calculation/ShortestDecimal.h"
#include "calculation/UnitNotation.h"

#include <QHash>
#include <QSet>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace scrivlet {

namespace {

QStringList texts(std::initializer_list<const char16_t *> items)
{
    QStringList out;
    out.reserve(qsizetype(items.size()));
    for (const char16_t *item : items)
        out.append(QString::fromUtf16(item));
    return out;
}

const QString kTo = QStringLiteral(" to ");

bool containsAny(const QString &text, const QStringList &needles)
{
    for (const QString &needle : needles) {
        if (text.contains(needle))
            return true;
    }
    return false;
}

bool isWordCharacter(QChar c)
{
    return c.isLetterOrNumber() || c == u'_';
}

// The currency names in a text, each a whole word of its own ("\b" on both sides,
// case-insensitive). Most names are codes made of word characters only, and such a name
// stands in a text exactly where a maximal run of word characters equals it: those are
// found by one scan and a hash lookup, which keeps the test cheap on every line of a
// long math note. The few names with other characters ("$", "C$", "U.S.", "€") go
// through a small pattern. No word name is the letter part of another name, so the two
// searches never claim overlapping text.
class CurrencyNames final {
public:
    CurrencyNames()
    {
        QStringList others;
        for (int i = 0; i < kCurrencyUnitCount; ++i) {
            for (const QString &alias : Unit(currencyUnitAt(i)).aliases()) {
                if (std::all_of(alias.begin(), alias.end(), isWordCharacter))
                    m_words.insert(alias.toCaseFolded());
                else
                    others.append(QStringLiteral("\\b") + QRegularExpression::escape(alias) + QStringLiteral("\\b"));
            }
        }
        m_others = QRegularExpression(others.join(u'|'), QRegularExpression::CaseInsensitiveOption |
                                                             QRegularExpression::UseUnicodePropertiesOption);
        m_others.optimize();
    }

    // How many names stand in `text`, and the first one found.
    std::pair<int, QString> find(const QString &text) const
    {
        int count = 0;
        QString found;
        const qsizetype size = text.size();
        for (qsizetype i = 0; i < size;) {
            if (!isWordCharacter(text.at(i))) {
                ++i;
                continue;
            }
            qsizetype end = i;
            while (end < size && isWordCharacter(text.at(end)))
                ++end;
            // No name is longer than a few letters; long words need no lookup.
            if (end - i <= kLongestWord && m_words.contains(text.mid(i, end - i).toCaseFolded())) {
                if (count++ == 0)
                    found = text.mid(i, end - i);
            }
            i = end;
        }
        for (auto it = m_others.globalMatch(text); it.hasNext();) {
            const QString match = it.next().captured(0);
            if (count++ == 0)
                found = match;
        }
        return {count, found};
    }

private:
    static constexpr qsizetype kLongestWord = 16;
    QSet<QString> m_words;
    QRegularExpression m_others;
};

// The signs that stand for a currency on their own; any other one-letter match ("a",
// "C") is too likely to be something else.
bool isCurrencySign(QStringView text)
{
    static const QString signs = QStringLiteral("$€£¥₩₹₽₫₴₪₦฿₲₵₡₺₸₮₭₼₾₿");
    return text.size() == 1 && signs.contains(text.at(0));
}

// An amount, a whole number with a fraction, or a fraction: "2.5", "1 1/2", "3/4".
const QRegularExpression &numberPattern()
{
    static const QRegularExpression pattern(QStringLiteral(R"((\d+ ?\d*\/\d+|(?:\d+(?:\.\d+)?|\.\d+)))"));
    return pattern;
}

// "1 1/2" is one and a half, "3/4" three quarters, "2.5" itself; a part that is no
// number counts as 0.
double mixedNumber(const QString &text)
{
    auto readPart = [](const QString &part) {
        const qsizetype slash = part.indexOf(u'/');
        if (slash < 0)
            return part.toDouble();
        return part.left(slash).toDouble() / part.mid(slash + 1).toDouble();
    };
    const qsizetype blank = text.indexOf(u' ');
    if (blank < 0)
        return readPart(text);
    return readPart(text.left(blank)) + readPart(text.mid(blank + 1));
}

QList<double> numbersIn(const QString &text)
{
    QList<double> numbers;
    for (auto it = numberPattern().globalMatch(text); it.hasNext();)
        numbers.append(mixedNumber(it.next().captured(1)));
    return numbers;
}

// Whether one of `aliases` stands in a text as a word of its own: not inside a longer
// word, though a digit may touch it ("5ft", "4\"").
QRegularExpression wordPattern(const QStringList &aliases)
{
    QStringList escaped;
    for (const QString &alias : aliases)
        escaped.append(QRegularExpression::escape(alias));
    return QRegularExpression(QStringLiteral("(?<![a-zA-Z])(?:") + escaped.join(u'|') + QStringLiteral(")(?![a-zA-Z])"),
                              QRegularExpression::CaseInsensitiveOption);
}

// Two units of one kind written side by side: feet and inches, or stones and pounds.
struct CompoundForm {
    QRegularExpression majorAliases;
    QRegularExpression minorAliases;
    double minorPerMajor;
    const char *noNumbersMessage;
    const char *invalidMessage;
};

// The amount of a compound such as "5' 3\"" or "10 st 4 lb" in the larger unit; nothing
// when the text is no such compound or doesn't give one number per unit.
std::optional<double> compoundAmount(const QString &left, const CompoundForm &form)
{
    const bool hasMajor = form.majorAliases.match(left).hasMatch();
    const bool hasMinor = form.minorAliases.match(left).hasMatch();
    if (!hasMajor && !hasMinor)
        return std::nullopt;
    const QList<double> numbers = numbersIn(left);
    if (numbers.isEmpty()) {
        qCCritical(lcCalculation).noquote() << QString::fromLatin1(form.noNumbersMessage).arg(left);
        return std::nullopt;
    }
    const qsizetype needed = hasMajor && hasMinor ? 2 : 1;
    if (numbers.size() != needed) {
        qCCritical(lcCalculation).noquote() << QString::fromLatin1(form.invalidMessage).arg(left);
        return std::nullopt;
    }
    if (hasMajor && hasMinor)
        return numbers.at(0) + numbers.at(1) / form.minorPerMajor;
    return hasMajor ? numbers.at(0) : numbers.at(0) / form.minorPerMajor;
}

const CompoundForm &feetAndInches()
{
    static const CompoundForm form{wordPattern(Unit(DistanceUnit::ft).aliases()),
                                   wordPattern(texts({u"\"", u"”", u"“", u"in", u"inches", u"inch"})), 12.0,
                                   "Distance input is not valid - no numbers involved: %1",
                                   "Distance input is not valid: %1"};
    return form;
}

const CompoundForm &stonesAndPounds()
{
    static const CompoundForm form{
        wordPattern(Unit(MassUnit::stone).aliases()), wordPattern(Unit(MassUnit::pound).aliases()), 14.0,
        "Weight (stones) input is not valid - no numbers involved: %1", "Weight (stones) input is not valid: %1"};
    return form;
}

// "5 sq ft" is an area, whatever the "ft" in it says.
bool namesSquareFeetOrInches(const QString &text)
{
    static const QRegularExpression squares =
        wordPattern(Unit(AreaUnit::sqft).aliases() + Unit(AreaUnit::sqin).aliases());
    return squares.match(text).hasMatch();
}

double toCelsius(double value, TemperatureUnit unit)
{
    switch (unit) {
    case TemperatureUnit::celsius:
        return value;
    case TemperatureUnit::kelvin:
        return value + (-273.15);
    case TemperatureUnit::fahrenheit:
        return (value + (-32.0)) * 5.0 / 9.0;
    }
    Q_UNREACHABLE();
}

double fromCelsius(double celsius, TemperatureUnit unit)
{
    switch (unit) {
    case TemperatureUnit::celsius:
        return celsius;
    case TemperatureUnit::kelvin:
        return celsius + 273.15;
    case TemperatureUnit::fahrenheit:
        return celsius * 9 / 5 + 32;
    }
    Q_UNREACHABLE();
}

} // namespace

UnitConverter::UnitConverter(SettingsStore &store, const CurrencyRates &rates) : m_preferences(store), m_rates(rates) {}

const QStringList &UnitConverter::connectors()
{
    static const QStringList list = texts({u" to ", u" into ", u" in "});
    return list;
}

const QStringList &UnitConverter::slashUnits()
{
    static const QStringList list = texts({
        u"\"",
        u"”",
        u"“",
        u"in",
        u"inches",
        u"cup",
        u"cups",
        u"tbsp",
        u"tbsps",
        u"tablespoon",
        u"tablespoons",
        u"tsp",
        u"teaspoon",
        u"teaspoons",
        u"fl oz",
        u"fl ozs",
        u"fluid ounce",
        u"fluid ounces",
        u"UK cup",
        u"imperial cup",
        u"uk cup",
        u"uk cups",
        u"imperial cups",
        u"UK fl oz",
        u"UK fl ozs",
        u"imperial fluid ounce",
        u"uk fluid ounce",
        u"uk fluid ounces",
        u"imperial fluid ounces",
        u"gallon",
        u"gal",
        u"gals",
        u"gallons",
        u"us gallon",
        u"us gallons",
        u"ukGallon",
        u"UK gal",
        u"imperial gallon",
        u"uk gallon",
        u"uk gallons",
        u"imperial gallons",
        u"pint",
        u"pt",
        u"pts",
        u"pints",
        u"ukPint",
        u"UK pt",
        u"imperial pint",
        u"uk pint",
        u"uk pints",
        u"imperial pints",
        u"pound",
        u"lb",
        u"lbs",
        u"pounds",
        u"ounce",
        u"oz",
        u"ounces",
        u"ozs",
        u"stone",
        u"st",
        u"stones",
    });
    return list;
}

const QStringList &UnitConverter::minusUnits()
{
    static const QStringList list = [] {
        QStringList all;
        for (TemperatureUnit unit : {TemperatureUnit::celsius, TemperatureUnit::kelvin, TemperatureUnit::fahrenheit})
            all += Unit(unit).aliases();
        return all;
    }();
    return list;
}

bool UnitConverter::mentionsOneCurrency(const QString &text)
{
    static const CurrencyNames names;
    const auto [count, match] = names.find(text);
    if (count != 1)
        return false;
    const QString found = match.trimmed();
    return found.size() > 1 || isCurrencySign(found);
}

bool UnitConverter::isConversionRequest(const QString &text, bool allowUnitless) const
{
    // A "/" or "-" between plain numbers divides or subtracts; next to a kitchen measure
    // or a temperature it belongs to the amount ("1/2 cup", "-5 C").
    const bool bareSlash = text.contains(u'/') && !containsAny(text, slashUnits());
    const bool bareMinus = text.contains(u'-') && !containsAny(text, minusUnits());
    // Any letter x ends a conversion, inside a word ("box") as surely as between numbers.
    if (text.contains(u'+') || text.contains(u'*') || text.contains(u'x'))
        return false;
    if (bareSlash || bareMinus)
        return false;
    const bool hasConnector = containsAny(text, connectors());
    if (!allowUnitless)
        return hasConnector;
    const QString symbol = m_preferences.primaryCurrencySymbol();
    // The cheap tests first: the currency names are one long pattern.
    return hasConnector || (!symbol.isEmpty() && text.contains(symbol)) || mentionsOneCurrency(text);
}

CurrencyUnit UnitConverter::primaryCurrency() const
{
    return currencyUnitFromCode(m_preferences.primaryCurrency()).value_or(CurrencyUnit::usd);
}

CurrencyUnit UnitConverter::secondaryCurrency() const
{
    return currencyUnitFromCode(m_preferences.secondaryCurrency()).value_or(CurrencyUnit::cad);
}

std::optional<Unit> UnitConverter::unitNamed(const QString &name, const std::optional<Unit> &fallback) const
{
    const QString symbol = m_preferences.primaryCurrencySymbol();
    if (fallback && !symbol.isEmpty() && name == symbol)
        return fallback;
    // The first unit in lookup order that has the name: so "cup" is the Cuban peso and
    // "cups" the volume, and "坪" is a tsubo, not a ping.
    static const QHash<QString, Unit> byName = [] {
        QHash<QString, Unit> map;
        for (const Unit &unit : Unit::all()) {
            for (const QString &alias : unit.aliases()) {
                const QString key = alias.toCaseFolded();
                if (!map.contains(key))
                    map.insert(key, unit);
            }
        }
        return map;
    }();
    const auto found = byName.constFind(name.toCaseFolded());
    if (found == byName.constEnd())
        return std::nullopt;
    return *found;
}

std::optional<UnitConverter::ConversionRequest> UnitConverter::parseGeneric(const QString &text,
                                                                            const std::optional<Unit> &fallback) const
{
    static const QRegularExpression amountPattern(
        QStringLiteral(R"(\$?(-?[0-9]*\.?[0-9]+)\s*([°a-zA-Z²]+(?:\s+[°a-zA-Z²]+)*)?)"));

    QString normalized = SanitizeExpression::normalizeNumberSeparators(text);
    // Fractions become decimals, replaced from the last so earlier positions stay put.
    QList<QRegularExpressionMatch> fractions;
    for (auto it = numberPattern().globalMatch(normalized); it.hasNext();)
        fractions.append(it.next());
    for (auto it = fractions.crbegin(); it != fractions.crend(); ++it)
        normalized.replace(it->capturedStart(1), it->capturedLength(1), shortestDecimal(mixedNumber(it->captured(1))));

    const QRegularExpressionMatch amount = amountPattern.match(normalized);
    if (!amount.hasMatch())
        return std::nullopt;
    bool ok = false;
    const double value = amount.captured(1).toDouble(&ok);
    if (!ok)
        return std::nullopt;
    std::optional<Unit> unit;
    if (amount.hasCaptured(2))
        unit = unitNamed(amount.captured(2), fallback);
    if (!unit)
        unit = fallback;
    if (!unit)
        return std::nullopt;
    // The target is not known here; the callers set it.
    return ConversionRequest{value, *unit, *unit};
}

std::optional<UnitConverter::ConversionRequest> UnitConverter::parseQuickConversion(const QString &text) const
{
    const CurrencyUnit primary = primaryCurrency();
    const CurrencyUnit secondary = secondaryCurrency();
    const QString symbol = m_preferences.primaryCurrencySymbol();
    std::optional<Unit> fallback;
    if ((!symbol.isEmpty() && text.contains(symbol)) || text.contains(QStringLiteral("F ")) ||
        text.contains(QStringLiteral("C ")))
        fallback = Unit(primary);
    if (auto request = parseGeneric(text, fallback)) {
        // An amount in the primary currency goes to the secondary one; anything else
        // comes home to the primary currency.
        request->target = request->source == Unit(primary) ? Unit(secondary) : Unit(primary);
        return request;
    }
    static const QRegularExpression dollars(QStringLiteral(R"(^\$([0-9]*\.?[0-9]+)\s*(to\s*[a-zA-Z]*)?$)"));
    const QRegularExpressionMatch match = dollars.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return ConversionRequest{match.captured(1).toDouble(), Unit(primary), Unit(secondary)};
}

std::optional<UnitConverter::ConversionRequest> UnitConverter::parseConversionRequest(const QString &text) const
{
    QString request = text;
    if (!request.contains(kTo)) {
        if (const qsizetype at = request.indexOf(QStringLiteral(" into ")); at >= 0)
            request.replace(at, 6, kTo);
    }
    if (!request.contains(kTo)) {
        if (const qsizetype at = request.indexOf(QStringLiteral(" in ")); at >= 0)
            request.replace(at, 4, kTo);
    }
    const qsizetype to = request.indexOf(kTo);
    if (to < 0)
        return parseQuickConversion(request);

    const QString left = request.left(to);
    const std::optional<Unit> target = unitNamed(request.mid(to + kTo.size()).trimmed());

    if (!namesSquareFeetOrInches(left)) {
        if (const auto feet = compoundAmount(left, feetAndInches())) {
            if (!target)
                return std::nullopt;
            return ConversionRequest{*feet, Unit(DistanceUnit::ft), *target};
        }
    }
    if (const auto stones = compoundAmount(left, stonesAndPounds())) {
        if (!target)
            return std::nullopt;
        return ConversionRequest{*stones, Unit(MassUnit::stone), *target};
    }

    // A bare amount in the primary currency's sign ("$32 to JPY") is in that currency.
    const QString symbol = m_preferences.primaryCurrencySymbol();
    std::optional<Unit> fallback;
    if (!symbol.isEmpty() && left.contains(symbol))
        fallback = Unit(primaryCurrency());
    auto parsed = parseGeneric(left, fallback);
    if (!parsed || !target)
        return std::nullopt;
    parsed->target = *target;
    return parsed;
}

std::optional<double> UnitConverter::convert(double value, const Unit &source, const Unit &target) const
{
    if (source.family() != target.family())
        return std::nullopt;
    switch (source.family()) {
    case Unit::Family::currency: {
        const auto sourceRate = m_rates.rate(*source.as<CurrencyUnit>());
        const auto targetRate = m_rates.rate(*target.as<CurrencyUnit>());
        if (!sourceRate || !targetRate)
            return std::nullopt;
        return value * *targetRate / *sourceRate;
    }
    case Unit::Family::temperature:
        return fromCelsius(toCelsius(value, *source.as<TemperatureUnit>()), *target.as<TemperatureUnit>());
    case Unit::Family::distance:
    case Unit::Family::area:
    case Unit::Family::volume:
    case Unit::Family::mass:
        return *target.factor() / *source.factor() * value;
    }
    Q_UNREACHABLE();
}

std::optional<double> UnitConverter::convertedValue(const QString &text) const
{
    const auto request = parseConversionRequest(text);
    if (!request)
        return std::nullopt;
    return convert(request->value, request->source, request->target);
}

QString UnitConverter::processConversion(const QString &text, int decimals) const
{
    const QString notAvailable = QStringLiteral("N/A");
    const QString symbol = m_preferences.primaryCurrencySymbol();
    if (!containsAny(text, connectors()) && (symbol.isEmpty() || !text.contains(symbol)) &&
        !text.contains(QStringLiteral("F ")) && !text.contains(QStringLiteral("C ")) && !mentionsOneCurrency(text))
        return QStringLiteral("Not a conversion request.");

    const auto request = parseConversionRequest(text);
    if (!request)
        return notAvailable;
    const auto value = convert(request->value, request->source, request->target);
    if (!value)
        return notAvailable;
    const Unit &target = request->target;

    if (const auto volume = target.as<VolumeUnit>()) {
        switch (*volume) {
        case VolumeUnit::cup:
        case VolumeUnit::teaspoon:
        case VolumeUnit::tablespoon:
        case VolumeUnit::ukTeaspoon:
        case VolumeUnit::ukTablespoon:
            // Nobody measures 0.27 of a cup: kitchen measures come as the fractions on
            // measuring cups and spoons.
            if (!std::isfinite(*value))
                return notAvailable;
            return UnitNotation::formatFraction(*value) + u' ' + target.symbol();
        default:
            break;
        }
    }
    if (target == Unit(MassUnit::stone) || target == Unit(MassUnit::pound)) {
        if (!std::isfinite(*value))
            return notAvailable;
        return target == Unit(MassUnit::stone) ? UnitNotation::formatStones(*value, false)
                                               : UnitNotation::formatStones(*value / 14.0, true);
    }
    if (target == Unit(DistanceUnit::ft) || target == Unit(DistanceUnit::inch)) {
        if (!std::isfinite(*value))
            return notAvailable;
        return target == Unit(DistanceUnit::ft) ? UnitNotation::formatFeetInches(*value, false)
                                                : UnitNotation::formatFeetInches(*value / 12.0, true);
    }
    const auto formatted = formatNumber(*value, decimals, u"", m_preferences.useThousandSeparatorsStorage());
    if (!formatted)
        return notAvailable;
    return *formatted + u' ' + target.symbol();
}

} // namespace scrivlet
