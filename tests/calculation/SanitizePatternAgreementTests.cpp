// The rewrites scan the text by hand, in one pass, instead of running their regular
// expressions; these tests hold them against the expressions themselves, as a regex
// engine with Unicode digits, letters and blanks reads them, on many generated lines.

#include "calculation/SanitizeExpression.h"
#include "calculation/QStringPrinter.h"
#include "calculation/ShortestDecimal.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>

using namespace scrivlet;

namespace {

constexpr auto kUnicode = QRegularExpression::UseUnicodePropertiesOption;

// Replaces the matches of `pattern` from the last to the first, each by what `rewrite`
// makes of it, or leaves it when that is nothing.
QString replaceFromLast(const QString &text, const QRegularExpression &pattern,
                        const std::function<std::optional<QString>(const QRegularExpressionMatch &)> &rewrite)
{
    QList<QRegularExpressionMatch> matches;
    for (auto it = pattern.globalMatch(text); it.hasNext();)
        matches << it.next();
    QString result = text;
    for (auto m = matches.crbegin(); m != matches.crend(); ++m) {
        if (const auto replacement = rewrite(*m))
            result.replace(m->capturedStart(), m->capturedLength(), *replacement);
    }
    return result;
}

std::optional<QString> factor(QString percent, const NumberLocale &locale)
{
    percent.remove(locale.groupingSeparator().isEmpty() ? QStringLiteral(".") : locale.groupingSeparator());
    const auto number = locale.readNumber(percent);
    if (!number)
        return std::nullopt;
    QString p = shortestDecimal(*number / 100);
    if (locale.usesDecimalComma())
        p.replace(u'.', u',');
    return p;
}

QString referencePercentPhrases(const QString &text, const NumberLocale &locale)
{
    static const QRegularExpression change(QStringLiteral(R"(([\d.,]+)\s*([\+\-])\s*([\d.,]+)\s*%)"), kUnicode);
    static const QRegularExpression share(QStringLiteral(R"(([\d.,]+)\s*%\s*of\s*([\d.,]+))"),
                                          kUnicode | QRegularExpression::CaseInsensitiveOption);
    const QString changed = replaceFromLast(text, change, [&](const QRegularExpressionMatch &m) {
        const auto p = factor(m.captured(3), locale);
        return p ? std::optional<QString>(m.captured(1) + QStringLiteral("*(1") + m.captured(2) + *p + u')')
                 : std::nullopt;
    });
    return replaceFromLast(changed, share, [&](const QRegularExpressionMatch &m) {
        const auto p = factor(m.captured(1), locale);
        return p ? std::optional<QString>(u'(' + *p + u'*' + m.captured(2) + u')') : std::nullopt;
    });
}

QString referenceUnknownWords(const QString &text)
{
    static const QRegularExpression letters(QStringLiteral(R"(\p{L}+)"), kUnicode);
    static const QRegularExpression superscripts(QStringLiteral("(?<![0-9])[⁰¹²³⁴⁵⁶⁷⁸⁹]+"), kUnicode);
    const QString words = replaceFromLast(text, letters, [](const QRegularExpressionMatch &m) {
        return SanitizeExpression::isAllowedWord(m.capturedView()) ? std::nullopt : std::optional<QString>(QString());
    });
    return replaceFromLast(words, superscripts, [](const QRegularExpressionMatch &) { return QString(); });
}

QString referencePercentLiterals(const QString &text)
{
    static const QRegularExpression literal(QStringLiteral(R"((\d*\.?\d+)%)"), kUnicode);
    return replaceFromLast(text, literal, [](const QRegularExpressionMatch &m) {
        bool ok = false;
        const double number = m.captured(1).toDouble(&ok); // ASCII digits only, like the rewrite
        return shortestDecimal((ok ? number : 0) / 100);
    });
}

bool referenceSideBySide(const QString &text)
{
    static const QRegularExpression pair(QStringLiteral(R"(\d+\s+\d+)"), kUnicode);
    return pair.match(text).hasMatch();
}

// Lines made of the characters the patterns care about, a few of each kind.
QStringList generatedLines(int count)
{
    static const QStringList pieces = {
        QStringLiteral("1"),
        QStringLiteral("2"),
        QStringLiteral("05"),
        QStringLiteral("9"),
        QStringLiteral("."),
        QStringLiteral(","),
        QStringLiteral("%"),
        QStringLiteral("+"),
        QStringLiteral("-"),
        QStringLiteral(" "),
        QStringLiteral("\t"),
        QStringLiteral("\u00a0"),
        QStringLiteral("of"),
        QStringLiteral("OF"),
        QStringLiteral("o"),
        QStringLiteral("x"),
        QStringLiteral("e"),
        QStringLiteral("sin"),
        QStringLiteral("ab"),
        QStringLiteral("é"),
        QStringLiteral("²"),
        QStringLiteral("³"),
        QStringLiteral("⁹"),
        QStringLiteral("٣"),
        QStringLiteral("\U0001D7D8"),
        QStringLiteral("\U0001D465"),
        QStringLiteral("("),
        QStringLiteral(")"),
        QStringLiteral("*"),
        QStringLiteral("$"),
        // Whole pieces of phrases, so that many lines hold one.
        QStringLiteral(" + "),
        QStringLiteral("- "),
        QStringLiteral("% "),
        QStringLiteral("% of "),
        QStringLiteral("%Of"),
        QStringLiteral("1,200"),
        QStringLiteral("2.5"),
        QStringLiteral("1.2.3"),
        QStringLiteral("12%"),
    };
    std::uint64_t state = 0x5eed;
    auto next = [&state](int bound) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return int((state >> 33) % std::uint64_t(bound));
    };
    QStringList lines;
    for (int i = 0; i < count; ++i) {
        QString line;
        const int length = 1 + next(14);
        for (int j = 0; j < length; ++j)
            line += pieces.at(next(int(pieces.size())));
        lines << line;
    }
    return lines;
}

TEST(SanitizePatternAgreement, EachRewriteDoesWhatItsPatternSays)
{
    const NumberLocale locales[] = {*NumberLocale::fromName(QStringLiteral("en_US")),
                                    *NumberLocale::fromName(QStringLiteral("de_DE")),
                                    NumberLocale(QString(), QString())};
    int phrases = 0;
    int literals = 0;
    for (const QString &line : generatedLines(30000)) {
        for (const NumberLocale &locale : locales) {
            const QString expected = referencePercentPhrases(line, locale);
            ASSERT_EQ(SanitizeExpression::convertPercentPhrases(line, locale), expected) << line.toStdString();
            phrases += expected != line;
        }
        ASSERT_EQ(SanitizeExpression::removeUnknownWords(line), referenceUnknownWords(line)) << line.toStdString();
        const QString expected = referencePercentLiterals(line);
        ASSERT_EQ(SanitizeExpression::resolvePercentLiterals(line), expected) << line.toStdString();
        literals += expected != line;
        ASSERT_EQ(SanitizeExpression::holdsNumbersSideBySide(line), referenceSideBySide(line)) << line.toStdString();
    }
    // The generated lines do reach the rewrites, not only the texts they leave alone.
    EXPECT_GT(phrases, 1000) << phrases;
    EXPECT_GT(literals, 1000) << literals;
}

} // namespace
