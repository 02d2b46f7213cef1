#include "keywords/AnalyzeText.h"

#include "calculation/NumberFormat.h"
#include "calculation/SanitizeExpression.h"

#include <QRegularExpression>
#include <QStringBuilder>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

namespace scrivlet {

namespace {

// A number stands by itself: at the start of the text or behind white space, list or
// arithmetic punctuation, and likewise in front. A minus sign and one of the common
// currency symbols may lead it. Unicode-aware like the rest of the program's patterns,
// so a no-break space separates numbers as a blank does.
const QRegularExpression &numberPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral(R"((?<=^|[\s,;:|/\-+*()\[\]{}])[-]?[$€£]?(?:\d+\.\d+|\.\d+|\d+)(?=$|[\s,;:|/\-+*()\[\]{}]))"),
        QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

// Reads a match such as "-$12.50": its currency symbol is dropped, the digits behind
// the point are its decimals. Digits outside ASCII match the pattern but are no number.
std::optional<FoundNumber> readNumber(QStringView match)
{
    std::string ascii; // short enough for the string's own buffer in all but freak notes
    qsizetype point = -1;
    for (const QChar c : match) {
        const char16_t u = c.unicode();
        if (u == u'.') {
            point = qsizetype(ascii.size());
        } else if (u != u'-' && (u < u'0' || u > u'9')) {
            if (SanitizeExpression::isCurrencySymbol(c))
                continue;
            return std::nullopt;
        }
        ascii.push_back(char(u));
    }
    FoundNumber number;
    number.decimals = point < 0 ? 0 : int(qsizetype(ascii.size()) - point - 1);
    const char *begin = ascii.data();
    const char *end = begin + ascii.size();
    const auto [stop, error] = std::from_chars(begin, end, number.value, std::chars_format::fixed);
    if (error == std::errc::invalid_argument || stop != end)
        return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // A number longer than a double holds still counts: a huge one as infinity, a
        // fraction too small to hold as zero.
        const bool negative = ascii.front() == '-';
        const std::string_view whole(ascii.data(), point < 0 ? ascii.size() : std::size_t(point));
        const bool hasWholeDigits = whole.find_first_not_of("-0") != std::string_view::npos;
        number.value = hasWholeDigits ? std::numeric_limits<double>::infinity() : 0.0;
        if (negative)
            number.value = -number.value;
    }
    return number;
}

} // namespace

std::vector<FoundNumber> findNumbers(const QString &text, const NumberLocale &locale)
{
    const QString normalized = SanitizeExpression::normalizeNumberSeparators(text, locale);
    std::vector<FoundNumber> numbers;
    auto matches = numberPattern().globalMatch(normalized);
    while (matches.hasNext()) {
        if (const auto number = readNumber(matches.next().capturedView(0)))
            numbers.push_back(*number);
    }
    return numbers;
}

// Most characters of a note are far from any currency sign, which a first look at the
// code unit settles before the list is searched.
void CurrencyTally::add(QStringView text)
{
    static constexpr QStringView kCurrencyCharacters =
        u"$€£¥₩₹₽₫₴₪₦฿₲₵₡₺₸₮₭₼₾₿";
    const auto mayBeCurrency = [](char16_t u) {
        return u == u'$' || (u >= 0xA3 && u <= 0xA5) || u == 0x0E3F || (u >= 0x20A0 && u <= 0x20BF);
    };
    if (m_mixed)
        return;
    for (const QChar c : text) {
        if (!mayBeCurrency(c.unicode()) || !kCurrencyCharacters.contains(c))
            continue;
        if (m_found.isNull()) {
            m_found = c;
        } else if (m_found != c) {
            m_mixed = true;
            return;
        }
    }
}

QString CurrencyTally::symbol() const
{
    return m_mixed || m_found.isNull() ? QString() : QString(m_found);
}

QString currencySymbolOf(QStringView text)
{
    CurrencyTally tally;
    tally.add(text);
    return tally.symbol();
}

const std::vector<FoundNumber> &LineNumbersCache::numbersOf(QStringView line, const NumberLocale &locale)
{
    // A note read with other separators has other numbers; and a cache that only grows
    // would keep every line ever typed.
    if (locale.decimalSeparator() != m_decimalSeparator || locale.groupingSeparator() != m_groupingSeparator ||
        m_numbers.size() > 50000) {
        m_numbers.clear();
        m_decimalSeparator = locale.decimalSeparator();
        m_groupingSeparator = locale.groupingSeparator();
    }
    auto found = m_numbers.find(line);
    if (found == m_numbers.end()) {
        QString key = line.toString();
        std::vector<FoundNumber> numbers = findNumbers(key, locale);
        found = m_numbers.emplace(std::move(key), std::move(numbers)).first;
    }
    return found->second;
}

TextAnalysis analyzeText(const QString &text, const TotalsFormat &format)
{
    return analyzeNumbers(findNumbers(text, format.locale), currencySymbolOf(text), format);
}

TextAnalysis analyzeNumbers(const std::vector<FoundNumber> &numbers, const QString &symbol,
                            const TotalsFormat &format)
{
    TextAnalysis analysis;
    if (numbers.empty()) {
        analysis.average = QStringLiteral("0.0");
        return analysis;
    }

    double sum = 0;
    double minimum = numbers.front().value;
    double maximum = numbers.front().value;
    int maxDecimals = 0;
    for (const FoundNumber &number : numbers) {
        sum += number.value;
        minimum = std::min(minimum, number.value);
        maximum = std::max(maximum, number.value);
        maxDecimals = std::max(maxDecimals, number.decimals);
    }

    // A total shows as many decimals as the most precise number in it, whatever the
    // preference says: "1 + 2.5" is "3.5", and cents stay cents.
    const auto exact = [&](double value) {
        return formatNumber(value, maxDecimals, symbol, format.useThousandSeparators);
    };
    analysis.sum = exact(sum);
    if (numbers.size() == 2)
        analysis.difference = exact(std::fabs(numbers[0].value - numbers[1].value));
    analysis.minimum = exact(minimum);
    analysis.maximum = exact(maximum);

    // An average is a computed value, not a written one: it takes the preferred decimals.
    const double average = sum / double(numbers.size());
    const auto formatted = formatNumber(average, format.numberOfDecimalPoints, symbol, format.useThousandSeparators);
    analysis.average = formatted ? *formatted : QString::asprintf("%.*f", format.numberOfDecimalPoints, average);
    return analysis;
}

int countSyllables(QStringView word)
{
    // The vowels are all ASCII, so UTF-16 units serve as well as scalars: no unit of a
    // surrogate pair is a vowel, and either way it ends a run of vowels.
    const auto isVowel = [](QChar c) {
        const char16_t lower = c.toLower().unicode();
        return lower == u'a' || lower == u'e' || lower == u'i' || lower == u'o' || lower == u'u' || lower == u'y';
    };
    int count = 0;
    bool inVowels = false;
    for (const QChar c : word) {
        const bool vowel = isVowel(c);
        if (vowel && !inVowels)
            ++count;
        inVowels = vowel;
    }
    if (!word.isEmpty() && word.back().toLower() == u'e' && count > 1)
        --count;
    return std::max(count, 1);
}

} // namespace scrivlet
