#include "calculation/NumberLocale.h"

#include <charconv>
#include <limits>
#include <string>

namespace scrivlet {

namespace {

NumberLocale &currentStorage()
{
    static NumberLocale locale;
    return locale;
}

bool isComma(const QString &separator)
{
    return separator == u"," || separator == u",,";
}

} // namespace

NumberLocale::NumberLocale() : NumberLocale(QLocale()) {}

NumberLocale::NumberLocale(const QLocale &locale)
    : m_groupingSeparator(locale.groupSeparator()), m_decimalSeparator(locale.decimalPoint())
{
}

NumberLocale::NumberLocale(QString groupingSeparator, QString decimalSeparator)
    : m_groupingSeparator(std::move(groupingSeparator)), m_decimalSeparator(std::move(decimalSeparator))
{
}

std::optional<NumberLocale> NumberLocale::fromName(const QString &name)
{
    if (name.isEmpty())
        return std::nullopt;
    const QLocale locale(name);
    // QLocale falls back to "C" for a name it does not know; only "C" itself may give it.
    if (locale.language() == QLocale::C && name != u"C" && name != u"POSIX")
        return std::nullopt;
    return NumberLocale(locale);
}

bool NumberLocale::usesDecimalComma() const
{
    return isComma(m_decimalSeparator);
}

std::optional<double> NumberLocale::readNumber(QStringView text) const
{
    const QStringView decimal = m_decimalSeparator.isEmpty() ? QStringView(u".") : QStringView(m_decimalSeparator);
    std::string ascii;
    ascii.reserve(size_t(text.size()));
    bool seenDecimal = false;
    bool seenDigit = false;
    for (qsizetype i = 0; i < text.size();) {
        const QChar c = text.at(i);
        if (c >= u'0' && c <= u'9') {
            ascii.push_back(char(c.unicode()));
            seenDigit = true;
            ++i;
        } else if (!seenDecimal && text.mid(i).startsWith(decimal)) {
            ascii.push_back('.');
            seenDecimal = true;
            i += decimal.size();
        } else {
            return std::nullopt;
        }
    }
    if (!seenDigit)
        return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
    if (error == std::errc::invalid_argument || end != ascii.data() + ascii.size())
        return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // Too many digits to hold: a huge whole part overflows, a tiny fraction underflows.
        const std::string whole = ascii.substr(0, ascii.find('.'));
        return whole.find_first_not_of('0') == std::string::npos ? 0.0 : std::numeric_limits<double>::infinity();
    }
    return value;
}

const NumberLocale &NumberLocale::current()
{
    return currentStorage();
}

void NumberLocale::setCurrent(const NumberLocale &locale)
{
    currentStorage() = locale;
}

} // namespace scrivlet
