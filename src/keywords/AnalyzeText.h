#pragma once

#include "calculation/NumberLocale.h"

#include <QHash>
#include <QString>
#include <QStringView>

#include <optional>
#include <unordered_map>
#include <vector>

namespace scrivlet {

// A number as a user wrote it in a sum or average note: its value and how many digits
// stood behind its decimal point, which decides how precisely the total is shown.
struct FoundNumber {
    double value = 0;
    int decimals = 0;

    friend bool operator==(const FoundNumber &, const FoundNumber &) = default;
};

// The totals of a note's numbers, each ready to show. Only `average` is always there:
// a note without numbers averages to "0.0".
struct TextAnalysis {
    std::optional<QString> sum;
    // Only for exactly two numbers: how far apart they are.
    std::optional<QString> difference;
    QString average;
    std::optional<QString> minimum;
    std::optional<QString> maximum;
};

// How totals are written: the decimals of an average (a sum shows as many as its most
// precise number instead), whether thousands are grouped, and the locale whose
// separators the note's numbers are read with.
struct TotalsFormat {
    int numberOfDecimalPoints = 2;
    bool useThousandSeparators = true;
    NumberLocale locale = NumberLocale::current();
};

// The numbers that stand by themselves in `text`, between white space, punctuation of
// lists and arithmetic, or the ends of the text: "$2 for apples" holds 2, while
// "abc123" and "12kg" hold none. The locale decides whether "4,25" is 4.25 or 425. A
// number too long for a double reads as infinity (or 0 for a fraction too small).
std::vector<FoundNumber> findNumbers(const QString &text, const NumberLocale &locale = NumberLocale::current());

// Sum, difference, average, minimum and maximum of the numbers in `text`. A currency
// symbol is shown when the text uses exactly one kind of currency.
TextAnalysis analyzeText(const QString &text, const TotalsFormat &format = {});

// The same for numbers already found, with the currency symbol to show them with.
TextAnalysis analyzeNumbers(const std::vector<FoundNumber> &numbers, const QString &symbol,
                            const TotalsFormat &format);

// The one currency of `text`: the symbol when exactly one kind of currency sign occurs
// in it, else "".
QString currencySymbolOf(QStringView text);

// The same over text seen in pieces, the lines of a note.
class CurrencyTally {
public:
    void add(QStringView text);
    QString symbol() const;

private:
    QChar m_found;
    bool m_mixed = false;
};

// The numbers of a note's lines, kept from one keystroke to the next: a keystroke
// changes one line of a long note, and only that line is read again. Numbers never
// span lines, so a note's numbers are its lines' numbers in order.
class LineNumbersCache {
public:
    const std::vector<FoundNumber> &numbersOf(QStringView line, const NumberLocale &locale);

private:
    // Looked up by the line as it stands in the note's text, without a copy of it.
    struct LineHash {
        using is_transparent = void;
        std::size_t operator()(QStringView line) const { return qHash(line); }
    };
    struct SameLine {
        using is_transparent = void;
        bool operator()(QStringView a, QStringView b) const { return a == b; }
    };
    std::unordered_map<QString, std::vector<FoundNumber>, LineHash, SameLine> m_numbers;
    QString m_decimalSeparator;
    QString m_groupingSeparator;
};

// A rough syllable count for readability scores: each run of vowels (y included) is a
// syllable, a final silent "e" is not, and every word has at least one.
int countSyllables(QStringView word);

} // namespace scrivlet
