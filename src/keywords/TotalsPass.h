#pragma once

#include "keywords/AnalyzeText.h"
#include "keywords/KeywordID.h"
#include "platform/TextAttributes.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace scrivlet {

class TextChangePipeline;
class TextStorage;
struct EditorContext;
struct KeywordDefinition;

// What a count note reports about its text.
struct CountFigures {
    int items = 0;
    int words = 0;
    int characters = 0;
    int sentences = 0;
    int syllables = 0;
    double readingEase = 0;
    double gradeLevel = 0;
};

// The totals of sum, average and count notes, plugged into one editor's pipeline: each
// keeps a small block of totals as the last lines of the note and renews it after every
// change. The block is ordinary text, marked "keywordTotal" so it can be told apart.
class TotalsPass final {
    Q_DISABLE_COPY_MOVE(TotalsPass)

public:
    // One line of a note: where it starts and its text, without the line break.
    struct Line {
        qsizetype start = 0;
        QStringView text;
    };

    TotalsPass(TextChangePipeline &pipeline, const EditorContext &context);

    // "Total: " and the sum of every number below the keyword line.
    void processSum(TextStorage &storage) const;
    // "Avg: " and their average.
    void processAverage(TextStorage &storage) const;
    // "Items: " and five more lines: words, characters, sentences and two readability scores.
    void processCount(TextStorage &storage) const;

    // Puts `block` at the end of the note. The old block is the line `blockLines` lines
    // above the last one when it starts with the keyword's label: it and everything
    // below it make way for the new block. Without one the block goes one blank line
    // below the text. Nothing is written when the block already reads right, so a
    // keystroke in a long note changes the block at most. `lines` are views of the
    // storage's current text, as `splitLines` gives them.
    void writeTotalBlock(TextStorage &storage, const QString &block, const TextAttributes &attributes,
                         const KeywordDefinition &definition, const std::vector<Line> &lines, int blockLines) const;

    // The figures of a count note's text, its lines without keyword, comments or block.
    static CountFigures countFigures(const QStringList &lines);
    // Lines of `text`, split at every kind of line break.
    static std::vector<Line> splitLines(const QString &text);

private:
    void processNumbers(TextStorage &storage, KeywordID id) const;
    TextAttributes blockAttributes(const QString &subtag) const;

    TextChangePipeline &m_pipeline;
    const EditorContext &m_context;
    mutable LineNumbersCache m_lineNumbers;
};

} // namespace scrivlet
