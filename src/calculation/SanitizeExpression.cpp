#include "calculation/SanitizeExpression.h"

#include "calculation/ShortestDecimal.h"

#include <array>
#include <charconv>
#include <limits>
#include <string>
#include <string_view>

namespace scrivlet {

namespace {

// The words a math line keeps. Everything else made of letters is a unit, a variable
// the user wrote as prose, or a word of a sentence, and disappears before parsing.
constexpr std::array<std::u16string_view, 31> kAllowedWords = {
    u"sin",   u"cos", u"tan", u"asin", u"acos", u"atan", u"sinh", u"cosh", u"tanh",  u"asinh", u"acosh",
    u"atanh", u"log", u"exp", u"pow",  u"sqrt", u"cbrt", u"abs",  u"ceil", u"floor", u"round", u"sign",
    u"min",   u"max", u"avg", u"sum",  u"mod",  u"gcd",  u"lcm",  u"e",    u"x",
};

// The currency symbols that a math line may carry in front of or behind its numbers.
// normalizeOperators drops the same symbols, spelled out in its switch for speed.
// clang-format off
constexpr std::array<char16_t, 20> kCurrencySymbols = {
    u'$', u'€', u'£', u'¥', u'₹', u'₽', u'₩', u'₺', u'₫', u'฿',
    u'₴', u'₦', u'₲', u'₵', u'₡', u'₭', u'₾', u'₱', u'₪', u'₸',
};
// clang-format on

bool isComma(const QString &separator)
{
    return separator == u"," || separator == u",,";
}

// Characters are Unicode code points: a letter or digit outside the basic plane is one
// character made of two UTF-16 units.
char32_t codePointAt(QStringView text, qsizetype i, qsizetype *length)
{
    const QChar c = text.at(i);
    if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
        *length = 2;
        return QChar::surrogateToUcs4(c, text.at(i + 1));
    }
    *length = 1;
    return c.unicode();
}

char32_t codePointBefore(QStringView text, qsizetype i, qsizetype *length)
{
    const QChar c = text.at(i - 1);
    if (c.isLowSurrogate() && i >= 2 && text.at(i - 2).isHighSurrogate()) {
        *length = 2;
        return QChar::surrogateToUcs4(text.at(i - 2), c);
    }
    *length = 1;
    return c.unicode();
}

// Digits and blanks of any script count, as the rewrites' patterns read "\d" and "\s";
// what the parser then makes of an Arabic-Indic digit is its own business.
bool isDigit(char32_t c)
{
    return (c >= u'0' && c <= u'9') || (c > 0x7f && QChar::isDigit(c));
}

bool isBlank(char32_t c)
{
    if (c < 0x80)
        return c == u' ' || (c >= u'\t' && c <= u'\r');
    return QChar::isSpace(c);
}

bool isLetter(char32_t c)
{
    if (c < 0x80)
        return (c | 0x20) >= u'a' && (c | 0x20) <= u'z';
    return QChar::isLetter(c);
}

bool isSuperscriptDigit(QChar c)
{
    const char16_t u = c.unicode();
    return u == u'⁰' || u == u'¹' || u == u'²' || u == u'³' || (u >= u'⁴' && u <= u'⁹');
}

// The percent as a factor, in the shortest form and the locale's decimal separator;
// nothing when the text is no number of the locale.
std::optional<QString> percentFactor(QString percentText, const NumberLocale &locale)
{
    const QString &grouping = locale.groupingSeparator();
    percentText.remove(grouping.isEmpty() ? QStringLiteral(".") : grouping);
    const std::optional<double> number = locale.readNumber(percentText);
    if (!number)
        return std::nullopt;
    QString factor = shortestDecimal(*number / 100);
    if (locale.usesDecimalComma())
        factor.replace(u'.', u',');
    return factor;
}

bool isNumberCharacter(char32_t c)
{
    return c == u'.' || c == u',' || isDigit(c);
}

qsizetype skipBlanks(QStringView text, qsizetype i)
{
    qsizetype length = 0;
    while (i < text.size() && isBlank(codePointAt(text, i, &length)))
        i += length;
    return i;
}

// The end of the run of digits, points and commas that starts at `i`; `i` itself when
// there is none.
qsizetype numberRunEnd(QStringView text, qsizetype i)
{
    qsizetype length = 0;
    while (i < text.size() && isNumberCharacter(codePointAt(text, i, &length)))
        i += length;
    return i;
}

// A percent phrase found in a text: the range it covers and the pieces it is made of.
struct PercentPhrase {
    qsizetype start = 0;
    qsizetype end = 0;
    QStringView base;
    QStringView percent;
    QChar sign; // for a change ("200 + 10%"); null for a share ("20% of 50")
};

// "base ± percent %": the number runs, blanks and the sign as the phrase
// "([\d.,]+)\s*([+-])\s*([\d.,]+)\s*%" reads them. A run of number characters can't
// be followed by more of them, so a match that starts anywhere in a run starts at its
// beginning, and each run is tried once: the scan is linear even on very long lines.
std::optional<PercentPhrase> changeAt(QStringView text, qsizetype start, qsizetype baseEnd)
{
    qsizetype i = skipBlanks(text, baseEnd);
    if (i >= text.size() || (text.at(i) != u'+' && text.at(i) != u'-'))
        return std::nullopt;
    const QChar sign = text.at(i);
    const qsizetype percentStart = skipBlanks(text, i + 1);
    const qsizetype percentEnd = numberRunEnd(text, percentStart);
    if (percentEnd == percentStart)
        return std::nullopt;
    i = skipBlanks(text, percentEnd);
    if (i >= text.size() || text.at(i) != u'%')
        return std::nullopt;
    return PercentPhrase{start, i + 1, text.mid(start, baseEnd - start),
                         text.mid(percentStart, percentEnd - percentStart), sign};
}

// "percent % of base", "of" in any case.
std::optional<PercentPhrase> shareAt(QStringView text, qsizetype start, qsizetype percentEnd)
{
    qsizetype i = skipBlanks(text, percentEnd);
    if (i >= text.size() || text.at(i) != u'%')
        return std::nullopt;
    i = skipBlanks(text, i + 1);
    if (i + 1 >= text.size() || text.at(i).toLower() != u'o' || text.at(i + 1).toLower() != u'f')
        return std::nullopt;
    const qsizetype baseStart = skipBlanks(text, i + 2);
    const qsizetype baseEnd = numberRunEnd(text, baseStart);
    if (baseEnd == baseStart)
        return std::nullopt;
    return PercentPhrase{start, baseEnd, text.mid(baseStart, baseEnd - baseStart), text.mid(start, percentEnd - start),
                         QChar()};
}

// Rewrites each phrase that `find` recognises, from the first to the last; as phrases
// never overlap, that gives what rewriting them from the last to the first would. A
// phrase whose percent is no number of the locale stays as it stands.
template <typename Find, typename Rewrite> QString rewritePhrases(const QString &expression, Find find, Rewrite rewrite)
{
    const QStringView text(expression);
    QString result;
    qsizetype copied = 0;
    qsizetype i = 0;
    qsizetype length = 0;
    while (i < text.size()) {
        if (!isNumberCharacter(codePointAt(text, i, &length))) {
            i += length;
            continue;
        }
        const qsizetype runEnd = numberRunEnd(text, i);
        const std::optional<PercentPhrase> phrase = find(text, i, runEnd);
        if (!phrase) {
            i = runEnd;
            continue;
        }
        if (const std::optional<QString> replacement = rewrite(*phrase)) {
            if (copied == 0)
                result.reserve(text.size() + 16);
            result += text.mid(copied, phrase->start - copied);
            result += *replacement;
            copied = phrase->end;
        }
        i = phrase->end;
    }
    if (copied == 0)
        return expression;
    result += text.mid(copied);
    return result;
}

double readPlainNumber(QStringView text)
{
    std::string ascii;
    ascii.reserve(size_t(text.size()));
    for (const QChar c : text) {
        if (c.unicode() > 0x7f)
            return 0; // a digit of another script: no number the line can use
        ascii.push_back(char(c.unicode()));
    }
    double value = 0;
    const auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
    if (error == std::errc::result_out_of_range) {
        const std::string whole = ascii.substr(0, ascii.find('.'));
        return whole.find_first_not_of('0') == std::string::npos ? 0.0 : std::numeric_limits<double>::infinity();
    }
    return error == std::errc() && end == ascii.data() + ascii.size() ? value : 0;
}

} // namespace

QString SanitizeExpression::sanitize(const QString &expression, const NumberLocale &locale)
{
    const QString cleaned = removeUnknownWords(convertPercentPhrases(expression, locale));
    if (holdsNumbersSideBySide(cleaned))
        return QString();
    return resolvePercentLiterals(normalizeOperators(cleaned, locale));
}

QString SanitizeExpression::convertPercentPhrases(const QString &expression, const NumberLocale &locale)
{
    // Both phrases end in or hold a percent sign; most lines have none.
    if (!expression.contains(u'%'))
        return expression;

    const QString changed = rewritePhrases(expression, changeAt, [&](const PercentPhrase &phrase) {
        const std::optional<QString> factor = percentFactor(phrase.percent.toString(), locale);
        if (!factor)
            return std::optional<QString>();
        return std::optional<QString>(phrase.base % u"*(1" % phrase.sign % *factor % u')');
    });
    return rewritePhrases(changed, shareAt, [&](const PercentPhrase &phrase) {
        const std::optional<QString> factor = percentFactor(phrase.percent.toString(), locale);
        if (!factor)
            return std::optional<QString>();
        return std::optional<QString>(u'(' % *factor % u'*' % phrase.base % u')');
    });
}

QString SanitizeExpression::removeUnknownWords(const QString &expression)
{
    const QStringView text(expression);
    QString withoutWords;
    qsizetype copied = 0;
    for (qsizetype i = 0; i < text.size();) {
        qsizetype length = 0;
        if (!isLetter(codePointAt(text, i, &length))) {
            i += length;
            continue;
        }
        const qsizetype start = i;
        while (i < text.size() && isLetter(codePointAt(text, i, &length)))
            i += length;
        const QStringView word = text.mid(start, i - start);
        if (isAllowedWord(word))
            continue;
        if (copied == 0 && withoutWords.isEmpty())
            withoutWords.reserve(text.size());
        withoutWords += text.mid(copied, start - copied);
        copied = i;
    }
    const QStringView words = copied == 0 ? text : QStringView(withoutWords += text.mid(copied));

    // A superscript is an exponent only right behind a digit; anywhere else it goes.
    QString result;
    bool removed = false;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QChar c = words.at(i);
        const bool stray = isSuperscriptDigit(c) && !(i > 0 && words.at(i - 1) >= u'0' && words.at(i - 1) <= u'9');
        if (stray && !removed) {
            result.reserve(words.size());
            result += words.left(i);
            removed = true;
        } else if (!stray && removed) {
            result += c;
        }
    }
    if (removed)
        return result;
    return copied == 0 ? expression : withoutWords;
}

QString SanitizeExpression::normalizeOperators(const QString &expression, const NumberLocale &locale)
{
    // Every replacement maps one character to a fixed text that no later replacement
    // touches, so one pass gives what the replacements one after the other would.
    const QString &grouping = locale.groupingSeparator().isEmpty() ? QStringLiteral(",") : locale.groupingSeparator();
    const QString &decimal = locale.decimalSeparator().isEmpty() ? QStringLiteral(".") : locale.decimalSeparator();
    const bool dropCommas = isComma(grouping);
    const bool dropPoints = grouping == u".";
    const char16_t comma = isComma(decimal) ? u'.' : u',';

    // Only "^" grows, to "**": twice the length always suffices.
    QString result(expression.size() * 2, Qt::Uninitialized);
    char16_t *const begin = reinterpret_cast<char16_t *>(result.data());
    char16_t *out = begin;
    for (const QChar qc : expression) {
        const char16_t c = qc.unicode();
        switch (c) {
        case u' ':
        case u'\'':
        case u'"':
        case u'‘':
        case u'’':
        case u'“':
        case u'”':
        case u'#':
        case u'@':
        case u'&':
        case u';':
        case u':':
        case u'?':
        case u'_':
        case u'|':
        case u'~':
        case u'\\':
        case u'[':
        case u']':
        case u'{':
        case u'}':
        // The currency symbols.
        case u'$':
        case u'€':
        case u'£':
        case u'¥':
        case u'₹':
        case u'₽':
        case u'₩':
        case u'₺':
        case u'₫':
        case u'฿':
        case u'₴':
        case u'₦':
        case u'₲':
        case u'₵':
        case u'₡':
        case u'₭':
        case u'₾':
        case u'₱':
        case u'₪':
        case u'₸':
            break;
        case u'x':
        case u'X':
            *out++ = u'*';
            break;
        case u'÷':
            *out++ = u'/';
            break;
        case u'−':
            *out++ = u'-';
            break;
        case u'^':
            *out++ = u'*';
            *out++ = u'*';
            break;
        case u',':
            if (!dropCommas)
                *out++ = comma;
            break;
        case u'.':
            if (!dropPoints)
                *out++ = u'.';
            break;
        default:
            *out++ = c;
        }
    }
    result.truncate(out - begin);
    return result;
}

QString SanitizeExpression::resolvePercentLiterals(const QString &expression)
{
    const QStringView text(expression);
    qsizetype percent = text.indexOf(u'%');
    if (percent < 0)
        return expression;

    QString result;
    qsizetype copied = 0;
    for (; percent >= 0; percent = text.indexOf(u'%', percent + 1)) {
        // The number is the run of digits and points right before the sign, at most one
        // point in it and a digit last; of a longer run it is the tail that fits.
        qsizetype start = percent;
        qsizetype points = 0;
        bool endsInDigit = false;
        while (start > copied) {
            qsizetype length = 0;
            const char32_t c = codePointBefore(text, start, &length);
            if (c == u'.') {
                if (++points == 2)
                    break;
            } else if (!isDigit(c)) {
                break;
            }
            if (start == percent)
                endsInDigit = c != u'.';
            start -= length;
        }
        if (!endsInDigit)
            continue;
        if (copied == 0)
            result.reserve(text.size() + 8);
        result += text.mid(copied, start - copied);
        result += shortestDecimal(readPlainNumber(text.mid(start, percent - start)) / 100);
        copied = percent + 1;
    }
    if (copied == 0)
        return expression;
    result += text.mid(copied);
    return result;
}

QString SanitizeExpression::normalizeNumberSeparators(const QString &expression, const NumberLocale &locale)
{
    const QString &grouping = locale.groupingSeparator().isEmpty() ? QStringLiteral(",") : locale.groupingSeparator();
    const QString &decimal = locale.decimalSeparator().isEmpty() ? QStringLiteral(".") : locale.decimalSeparator();
    QString result = expression;
    if (isComma(grouping))
        result.remove(u',');
    else if (grouping == u".")
        result.remove(u'.');
    if (isComma(decimal))
        result.replace(u',', u'.');
    return result;
}

bool SanitizeExpression::holdsNumbersSideBySide(QStringView expression)
{
    // A run of blanks with a digit right before and right after it.
    bool afterDigit = false;
    bool inBlanks = false;
    for (qsizetype i = 0; i < expression.size();) {
        qsizetype length = 0;
        const char32_t c = codePointAt(expression, i, &length);
        if (isDigit(c)) {
            if (inBlanks)
                return true;
            afterDigit = true;
        } else if (isBlank(c)) {
            inBlanks = afterDigit;
        } else {
            afterDigit = inBlanks = false;
        }
        i += length;
    }
    return false;
}

bool SanitizeExpression::isAllowedWord(QStringView word)
{
    const std::u16string_view view(word.utf16(), size_t(word.size()));
    for (const std::u16string_view allowed : kAllowedWords) {
        if (allowed == view)
            return true;
    }
    return false;
}

bool SanitizeExpression::isCurrencySymbol(QChar c)
{
    for (const char16_t symbol : kCurrencySymbols) {
        if (symbol == c.unicode())
            return true;
    }
    return false;
}

} // namespace scrivlet
