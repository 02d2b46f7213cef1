// libFuzzer target over the whole way of a math line: the sanitiser's rewrites in every
// locale kind, then tokenize, parse and evaluate, of the sanitised and of the raw text.
// Beyond crashes and sanitizer reports it checks what the sanitiser promises the parser.

#include "MathParser/MathEngine.h"
#include "MathParser/Tokenizer.h"
#include "calculation/SanitizeExpression.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace scrivlet;

namespace {

const NumberLocale &localeFor(std::uint8_t selector)
{
    static const NumberLocale american = *NumberLocale::fromName(QStringLiteral("en_US"));
    static const NumberLocale german = *NumberLocale::fromName(QStringLiteral("de_DE"));
    static const NumberLocale none{QString(), QString()};
    static const NumberLocale narrowSpace{QStringLiteral("\u202f"), QStringLiteral(",")};
    switch (selector % 4) {
    case 0:
        return american;
    case 1:
        return german;
    case 2:
        return none;
    default:
        return narrowSpace;
    }
}

[[noreturn]] void broken(const char *what, const QString &input, const QString &output)
{
    std::fprintf(stderr, "sanitiser broke its promise: %s\n  input:  %s\n  output: %s\n", what,
                 input.toUtf8().constData(), output.toUtf8().constData());
    std::abort();
}

void checkSanitised(const QString &input, const QString &output)
{
    // Blanks, "x", "^", punctuation and currency symbols never reach the parser.
    static const QString kNeverLeft = QStringLiteral(
        " xX÷−^'\"‘’“”#@&;:?_|~\\[]{}$€£¥₹₽₩₺₫฿₴₦₲₵₡₭₾₱₪₸");
    for (const QChar c : output) {
        if (kNeverLeft.contains(c))
            broken("a character the operators step removes is left", input, output);
    }
}

void evaluate(const QString &text)
{
    const math::MathResult<double> result = math::evaluate(text);
    if (!result)
        (void)math::errorKindName(result.error().kind());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const NumberLocale &locale = localeFor(data[0]);
    const QString input = QString::fromUtf8(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));

    const QString sanitised = SanitizeExpression::sanitize(input, locale);
    checkSanitised(input, sanitised);
    // Each rewrite on its own takes any text too.
    (void)SanitizeExpression::convertPercentPhrases(input, locale);
    (void)SanitizeExpression::removeUnknownWords(input);
    const QString operators = SanitizeExpression::normalizeOperators(input, locale);
    (void)SanitizeExpression::resolvePercentLiterals(input);
    (void)SanitizeExpression::normalizeNumberSeparators(input, locale);
    if (&locale == &localeFor(0) && SanitizeExpression::normalizeOperators(operators, locale) != operators)
        broken("normalizeOperators is not idempotent in an American locale", input, operators);

    evaluate(sanitised);
    evaluate(input);

    // The tokenizer alone, also with a locale's number format, which math lines never use.
    math::Configuration localized = math::Configuration::shared();
    localized.locale = QLocale(data[0] % 2 ? QLocale::German : QLocale::English);
    try {
        math::Tokenizer tokenizer(input, localized);
        (void)tokenizer.tokenize();
    } catch (const math::MathParserError &) {
    }
    return 0;
}
