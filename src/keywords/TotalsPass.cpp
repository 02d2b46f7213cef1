#include "keywords/TotalsPass.h"

#include "keywords/AnalyzeText.h"
#include "keywords/EditorContext.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "keywords/StorageBatch.h"
#include "keywords/StyleMarks.h"
#include "keywords/TextChangePipeline.h"
#include "platform/TextStorage.h"
#include "shell/preferences/MathPreferences.h"

#include <QStringList>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace scrivlet {

namespace {

const QString kTotalTag = QStringLiteral("keywordTotal");

// Line feed, vertical tab, form feed, carriage return, next line and the Unicode line
// and paragraph separators all end a line. Each counts as one break, so "\r\n" leaves
// an empty line between its two halves and every line's start is its offset in the text.
bool isLineBreak(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 0x0A && u <= 0x0D) || u == 0x85 || u == 0x2028 || u == 0x2029;
}

// Blanks and tabs only: an indented "  // note" is still a comment.
QStringView trimmedOfBlanks(QStringView line)
{
    qsizetype from = 0;
    qsizetype to = line.size();
    while (from < to && (line.at(from) == u' ' || line.at(from) == u'\t'))
        ++from;
    while (to > from && (line.at(to - 1) == u' ' || line.at(to - 1) == u'\t'))
        --to;
    return line.sliced(from, to - from);
}

// The segments of `text` that the finder yields, as (start, end) pairs.
template <typename Visit> void forEachSegment(QTextBoundaryFinder::BoundaryType type, const QString &text, Visit visit)
{
    QTextBoundaryFinder finder(type, text);
    qsizetype start = 0;
    for (qsizetype end = finder.toNextBoundary(); end > 0; end = finder.toNextBoundary()) {
        visit(start, end);
        start = end;
    }
}

// A word has a letter, a digit or a pictograph in it; runs of blanks, punctuation and
// operators between words are no words.
bool isWord(QStringView segment)
{
    for (qsizetype i = 0; i < segment.size(); ++i) {
        char32_t c = segment.at(i).unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < segment.size() && segment.at(i + 1).isLowSurrogate()) {
            c = QChar::surrogateToUcs4(segment.at(i), segment.at(i + 1));
            ++i;
        }
        if (QChar::isLetterOrNumber(c) || QChar::category(c) == QChar::Symbol_Other)
            return true;
    }
    return false;
}

// The keyword alone, even with the line break typed after it, gets no block: the help
// text shows below it until something is written there.
bool isKeywordAlone(const std::vector<TotalsPass::Line> &lines)
{
    return lines.size() < 2 || (lines.size() == 2 && lines[1].text.isEmpty());
}

bool isBlank(QStringView segment)
{
    return std::all_of(segment.begin(), segment.end(), [](QChar c) { return c.isSpace(); });
}

QString twoDecimals(double value)
{
    return QString::asprintf("%.2f", value);
}

} // namespace

TotalsPass::TotalsPass(TextChangePipeline &pipeline, const EditorContext &context)
    : m_pipeline(pipeline), m_context(context)
{
    TextPasses &passes = pipeline.passes();
    passes.sum = [this](const TextPassInput &input) { processSum(input.storage); };
    passes.average = [this](const TextPassInput &input) { processAverage(input.storage); };
    passes.count = [this](const TextPassInput &input) { processCount(input.storage); };
}

std::vector<TotalsPass::Line> TotalsPass::splitLines(const QString &text)
{
    std::vector<Line> lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isLineBreak(text.at(i))) {
            lines.push_back({start, QStringView(text).sliced(start, i - start)});
            start = i + 1;
        }
    }
    lines.push_back({start, QStringView(text).sliced(start)});
    return lines;
}

TextAttributes TotalsPass::blockAttributes(const QString &subtag) const
{
    TextAttributes attributes = m_pipeline.defaultAttributes().plain();
    attributes.foreground = QStringLiteral("typeMain");
    attributes.custom = CustomAttribute{kTotalTag, subtag};
    return attributes;
}

void TotalsPass::processSum(TextStorage &storage) const
{
    processNumbers(storage, KeywordID::SUM);
}

void TotalsPass::processAverage(TextStorage &storage) const
{
    processNumbers(storage, KeywordID::AVG);
}

void TotalsPass::processNumbers(TextStorage &storage, KeywordID id) const
{
    const KeywordDefinition *definition = m_context.keywords.definition(id);
    if (!definition)
        return;
    const bool isSum = id == KeywordID::SUM;
    const QString text = storage.string();
    m_pipeline.colorKeywordLine(id, text, storage);
    const TextAttributes attributes = blockAttributes(isSum ? QStringLiteral("sum") : QStringLiteral("average"));
    const std::vector<Line> lines = splitLines(text);
    if (isKeywordAlone(lines))
        return;

    std::vector<QStringView> counted;
    counted.reserve(lines.size() - 1);
    for (std::size_t i = 1; i < lines.size(); ++i) {
        if (!trimmedOfBlanks(lines[i].text).startsWith(u"//"))
            counted.push_back(lines[i].text);
    }
    // The old block is not a number of the note.
    if (!counted.empty() && counted.back().startsWith(definition->label))
        counted.pop_back();

    TotalsFormat format;
    if (const MathPreferences *math = m_context.mathPreferences) {
        format.numberOfDecimalPoints = math->numberOfDecimalPoints();
        format.useThousandSeparators = math->useThousandSeparatorsStorage();
    }
    std::vector<FoundNumber> numbers;
    CurrencyTally currency;
    for (const QStringView line : counted) {
        const std::vector<FoundNumber> &found = m_lineNumbers.numbersOf(line, format.locale);
        numbers.insert(numbers.end(), found.begin(), found.end());
        currency.add(line);
    }
    const TextAnalysis analysis = analyzeNumbers(numbers, currency.symbol(), format);
    const QString value = isSum ? analysis.sum.value_or(QStringLiteral("-")) : analysis.average;
    writeTotalBlock(storage, definition->label % u' ' % value, attributes, *definition, lines, 0);
}

CountFigures TotalsPass::countFigures(const QStringList &lines)
{
    CountFigures figures;
    for (const QString &line : lines) {
        if (!line.trimmed().isEmpty())
            ++figures.items;
    }

    const QString joined = lines.join(u'\n').trimmed();
    // "don't" is one word, not two.
    QString words = joined;
    words.remove(u'\'');
    words.remove(u'’');
    forEachSegment(QTextBoundaryFinder::Word, words, [&](qsizetype start, qsizetype end) {
        if (isWord(QStringView(words).sliced(start, end - start)))
            ++figures.words;
    });
    // Sentences are read over the text with its apostrophes, as far as the text without
    // them reaches: a sentence starting beyond that is not counted.
    const qsizetype reach = words.size();
    forEachSegment(QTextBoundaryFinder::Sentence, joined, [&](qsizetype start, qsizetype end) {
        if (start < reach && !isBlank(QStringView(joined).sliced(start, end - start)))
            ++figures.sentences;
    });
    forEachSegment(QTextBoundaryFinder::Grapheme, joined, [&](qsizetype, qsizetype) { ++figures.characters; });

    qsizetype pieceStart = -1;
    for (qsizetype i = 0; i <= joined.size(); ++i) {
        const bool space = i == joined.size() || joined.at(i).isSpace();
        if (!space && pieceStart < 0) {
            pieceStart = i;
        } else if (space && pieceStart >= 0) {
            figures.syllables += countSyllables(QStringView(joined).sliced(pieceStart, i - pieceStart));
            pieceStart = -1;
        }
    }

    if (figures.sentences > 0 && figures.words > 0) {
        const double wordsPerSentence = double(figures.words) / figures.sentences;
        const double syllablesPerWord = double(figures.syllables) / figures.words;
        figures.readingEase = 206.835 - 1.015 * wordsPerSentence - 84.6 * syllablesPerWord;
        figures.gradeLevel = 0.39 * wordsPerSentence + 11.8 * syllablesPerWord - 15.59;
    }
    return figures;
}

void TotalsPass::processCount(TextStorage &storage) const
{
    const KeywordDefinition *definition = m_context.keywords.definition(KeywordID::COUNT);
    if (!definition)
        return;
    const QString text = storage.string();
    m_pipeline.colorKeywordLine(KeywordID::COUNT, text, storage);
    const TextAttributes attributes = blockAttributes(QStringLiteral("count"));
    const std::vector<Line> lines = splitLines(text);
    if (isKeywordAlone(lines))
        return;

    QStringList counted;
    counted.reserve(qsizetype(lines.size()) - 1);
    for (std::size_t i = 1; i < lines.size(); ++i) {
        // Only "// " with its blank is a comment here: "//x" is counted.
        if (!lines[i].text.trimmed().startsWith(u"// "))
            counted.append(lines[i].text.toString());
    }
    // The last "Items:" line is where the old block starts: it and all below it go.
    for (qsizetype i = counted.size() - 1; i >= 0; --i) {
        if (counted.at(i).startsWith(definition->label)) {
            counted.resize(i);
            break;
        }
    }

    const CountFigures figures = countFigures(counted);
    const QString block = definition->label % u' ' % QString::number(figures.items) % u"\nWords: " %
                          QString::number(figures.words) % u"\nCharacters: " % QString::number(figures.characters) %
                          u"\nSentences: " % QString::number(figures.sentences) % u"\nFlesch Reading Ease Score: " %
                          twoDecimals(figures.readingEase) % u"\nFlesch-Kincaid Grade Level: " %
                          twoDecimals(figures.gradeLevel);
    writeTotalBlock(storage, block, attributes, *definition, lines, 5);
}

void TotalsPass::writeTotalBlock(TextStorage &storage, const QString &block, const TextAttributes &attributes,
                                 const KeywordDefinition &definition, const std::vector<Line> &lines,
                                 int blockLines) const
{
    const qsizetype length = storage.length();
    const qsizetype index = qsizetype(lines.size()) - 1 - blockLines;
    const bool replacesOldBlock =
        index >= 0 && index < qsizetype(lines.size()) && lines[std::size_t(index)].text.startsWith(definition.label);
    const qsizetype blockStart = replacesOldBlock ? lines[std::size_t(index)].start : length;

    // Marks of an old block that is no block any more (the user edited it, or wrote
    // below it) must go; the block itself keeps its own as long as it reads right.
    std::vector<TextRange> strayMarks;
    storage.enumerateRuns({0, blockStart}, [&](const TextRange &run, const TextAttributes &runAttributes) {
        if (runAttributes.custom && runAttributes.custom->tag == kTotalTag)
            strayMarks.push_back(run);
    });
    // The lines are views of the note's current text, so the old block runs on from the
    // start of its line to the end of the text without another copy of a long note.
    const bool blockReadsRight =
        replacesOldBlock && QStringView(lines[std::size_t(index)].text.data(), length - blockStart) == block;
    bool blockLooksRight = blockReadsRight;
    if (blockReadsRight) {
        storage.enumerateRuns({blockStart, length - blockStart},
                              [&](const TextRange &, const TextAttributes &runAttributes) {
                                  if (!(runAttributes == attributes))
                                      blockLooksRight = false;
                              });
    }
    if (strayMarks.empty() && blockReadsRight && blockLooksRight)
        return;

    // The caret stays where the user was typing, above the block.
    const TextRange selection = storage.selectedRange();
    uxTextStorage(&storage, [&](TextStorage &batch) {
        const TextAttributes defaults = m_pipeline.defaultAttributes().plain();
        for (const TextRange &run : strayMarks)
            removeStyles(batch, run, kTotalTag, defaults);
        if (replacesOldBlock && !blockReadsRight) {
            batch.replaceCharacters({blockStart, length - blockStart}, block, attributes);
        } else if (!replacesOldBlock) {
            // A new block stands one blank line below the text; the blank line is no part
            // of the block, so it carries the look but not the mark.
            TextAttributes gap = attributes;
            gap.custom.reset();
            batch.replaceCharacters({length, 0}, QStringLiteral("\n\n"), gap);
            batch.replaceCharacters({length + 2, 0}, block, attributes);
        } else if (!blockLooksRight) {
            batch.setAttributes({blockStart, length - blockStart}, attributes);
        }
        batch.invalidateDisplay({blockStart, batch.length() - blockStart});
    });
    if (storage.selectedRange() != selection)
        storage.setSelectedRange(selection);
}

} // namespace scrivlet
