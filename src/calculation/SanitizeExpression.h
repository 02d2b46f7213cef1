#pragma once

#include "calculation/NumberLocale.h"

#include <QString>

namespace scrivlet {

// The string rewrites between what people type on a math line ("$1,200 + 5%",
// "20% of 50", "3 x 4", "2²") and what the expression parser reads. Each rewrite
// takes and returns a string, never fails, and depends on nothing but its input and
// the number locale; a step that cannot make sense of a piece of text leaves it as it
// is, and the parser then rejects the line, which shows as "n/a".
class SanitizeExpression final {
public:
    SanitizeExpression() = delete;

    // A math line's expression, ready for the parser: percent phrases, then unknown
    // words; a line with two bare numbers side by side ("10 20") becomes "", which the
    // parser refuses; otherwise operators and separators, then percent literals.
    static QString sanitize(const QString &expression, const NumberLocale &locale = NumberLocale::current());

    // "200 + 10%" is "200*(1+0.1)": the percent is of the number before it. "20% of 50"
    // is "(0.2*50)".
    static QString convertPercentPhrases(const QString &expression,
                                         const NumberLocale &locale = NumberLocale::current());
    // Runs of letters that are no allowed word disappear ("5 apples" is "5 "), and so do
    // superscript digits that stand behind no digit ("2²" stays a power, a stray "²" goes).
    static QString removeUnknownWords(const QString &expression);
    // Blanks go; "x" and "X" (everywhere, even inside words), "÷" and "−" become the
    // parser's "*", "/" and "-"; punctuation and currency symbols go; "^" is the power
    // "**"; and the locale's separators become the parser's.
    static QString normalizeOperators(const QString &expression, const NumberLocale &locale = NumberLocale::current());
    // "50%" is "0.5": on a math line "%" after a number is a percentage, never a modulo.
    static QString resolvePercentLiterals(const QString &expression);
    // The grouping separator goes ("," in an American locale, "." in a German one) and a
    // decimal comma becomes the parser's ".". The sum pass runs this on a whole note.
    static QString normalizeNumberSeparators(const QString &expression,
                                             const NumberLocale &locale = NumberLocale::current());

    // Whether two numbers stand side by side with only white space between them.
    static bool holdsNumbersSideBySide(QStringView expression);
    // The words that a math line keeps: function names, "e" and "x". Case matters.
    static bool isAllowedWord(QStringView word);
    // Whether `c` is one of the currency symbols that operators drop.
    static bool isCurrencySymbol(QChar c);
};

} // namespace scrivlet
