#pragma once

#include "platform/TextStorage.h"

#include <algorithm>
#include <vector>

namespace scrivlet {

// Attributed text held in memory: the editor of the command line and of the tests.
// Attributes are kept as runs, so a long plain note costs one run, not one entry
// per character.
class AttributedText final : public TextStorage {
public:
    AttributedText() = default;
    explicit AttributedText(const QString &text, const TextAttributes &attributes = {});

    QString string() const override { return m_text; }
    const QString &text() const { return m_text; }
    qsizetype length() const override { return m_text.size(); }

    TextRange selectedRange() const override { return m_selection; }
    void setSelectedRange(const TextRange &range) override;

    TextAttributes attributesAt(qsizetype index, TextRange *effectiveRange = nullptr) const override;
    void enumerateRuns(const TextRange &range, const RunVisitor &visit) const override;
    void addAttributes(const TextRange &range, const TextAttributes &attributes) override;
    void setAttributes(const TextRange &range, const TextAttributes &attributes) override;
    void removeAttributes(const TextRange &range, unsigned fields) override;

    void replaceCharacters(const TextRange &range, const QString &text, const TextAttributes &attributes) override;
    void setText(const QString &text, const TextAttributes &attributes) override;

    void beginEditing() override { ++m_editingDepth; }
    void endEditing() override;
    int editingDepth() const { return m_editingDepth; }

    TextStorageDelegate *delegate() const override { return m_delegate; }
    void setDelegate(TextStorageDelegate *delegate) override { m_delegate = delegate; }

    TextAttributes typingAttributes() const override { return m_typingAttributes; }
    void setTypingAttributes(const TextAttributes &attributes) override { m_typingAttributes = attributes; }

    void invalidateDisplay(const TextRange &range) override { m_invalidated.push_back(range); }
    const std::vector<TextRange> &invalidatedRanges() const { return m_invalidated; }

    // A fixed layout, the same on every machine: a paragraph takes one line per started
    // `layoutColumns()` UTF-16 units (an empty one still takes a line), and a line is the
    // typing font's size times the paragraph's line-height multiple tall (16 points and
    // 1.2 when the typing attributes have none).
    std::vector<double> paragraphHeights(const QString &text) const override;
    static constexpr int kDefaultLayoutColumns = 60;
    int layoutColumns() const { return m_layoutColumns; }
    void setLayoutColumns(int columns) { m_layoutColumns = std::max(1, columns); }

    // Types `text` over the selection as a user would: the delegate hears of it.
    void type(const QString &text);

    int runCount() const { return int(m_runs.size()); }

private:
    struct Run {
        qsizetype start;
        TextAttributes attributes;
    };

    TextRange clamp(const TextRange &range) const;
    // Makes a run boundary at `position` and returns the index of the run starting there.
    std::size_t splitAt(qsizetype position);
    std::size_t runIndexAt(qsizetype position) const;
    template<typename Change>
    void changeRuns(const TextRange &range, Change change);
    void coalesce();
    // The same for the runs with indexes in [from, to) and their neighbours: an edit
    // leaves the runs away from it as they were, so a note with many runs doesn't pay
    // for all of them on each change.
    void coalesceAround(std::size_t from, std::size_t to);

    QString m_text;
    std::vector<Run> m_runs; // sorted by start; the first starts at 0; never empty
    TextRange m_selection;
    TextAttributes m_typingAttributes;
    TextStorageDelegate *m_delegate = nullptr;
    int m_editingDepth = 0;
    int m_layoutColumns = kDefaultLayoutColumns;
    std::vector<TextRange> m_invalidated;
};

} // namespace scrivlet
