#include "platform/AttributedText.h"

#include <QList>

#include <algorithm>

namespace scrivlet {

AttributedText::AttributedText(const QString &text, const TextAttributes &attributes)
    : m_text(text), m_runs{{0, attributes}}, m_typingAttributes(attributes)
{
}

void AttributedText::setSelectedRange(const TextRange &range)
{
    m_selection = clamp(range);
}

TextRange AttributedText::clamp(const TextRange &range) const
{
    const qsizetype location = qBound<qsizetype>(0, range.location, m_text.size());
    const qsizetype end = qBound<qsizetype>(location, range.location + range.length, m_text.size());
    return {location, end - location};
}

std::size_t AttributedText::runIndexAt(qsizetype position) const
{
    if (m_runs.empty())
        return 0;
    auto it = std::upper_bound(m_runs.begin(), m_runs.end(), position,
                               [](qsizetype p, const Run &run) { return p < run.start; });
    return std::size_t(std::max<std::ptrdiff_t>(0, (it - m_runs.begin()) - 1));
}

std::size_t AttributedText::splitAt(qsizetype position)
{
    if (m_runs.empty())
        m_runs.push_back({0, {}});
    if (position >= m_text.size())
        return m_runs.size();
    const std::size_t index = runIndexAt(position);
    if (m_runs[index].start == position)
        return index;
    m_runs.insert(m_runs.begin() + std::ptrdiff_t(index) + 1, Run{position, m_runs[index].attributes});
    return index + 1;
}

void AttributedText::coalesce()
{
    std::vector<Run> merged;
    merged.reserve(m_runs.size());
    for (Run &run : m_runs) {
        if (!merged.empty() && (run.start >= m_text.size() || run.start == merged.back().start)) {
            // A run with nothing left to cover only survives as the attributes of an empty text.
            if (run.start == merged.back().start)
                merged.back().attributes = std::move(run.attributes);
            continue;
        }
        if (!merged.empty() && merged.back().attributes == run.attributes)
            continue;
        merged.push_back(std::move(run));
    }
    if (merged.empty())
        merged.push_back({0, {}});
    merged.front().start = 0;
    m_runs = std::move(merged);
}

void AttributedText::coalesceAround(std::size_t from, std::size_t to)
{
    // Runs that start at the end of the text only arise there; the whole pass knows them.
    if (m_runs.empty() || m_runs.back().start >= m_text.size()) {
        coalesce();
        return;
    }
    std::size_t kept = from > 0 ? from - 1 : 0;
    const std::size_t end = std::min(to + 1, m_runs.size());
    for (std::size_t read = kept + 1; read < end; ++read) {
        Run &run = m_runs[read];
        if (run.start == m_runs[kept].start) {
            m_runs[kept].attributes = std::move(run.attributes);
            continue;
        }
        if (m_runs[kept].attributes == run.attributes)
            continue;
        if (++kept != read)
            m_runs[kept] = std::move(run);
    }
    m_runs.erase(m_runs.begin() + std::ptrdiff_t(kept + 1), m_runs.begin() + std::ptrdiff_t(end));
    m_runs.front().start = 0;
}

template<typename Change>
void AttributedText::changeRuns(const TextRange &range, Change change)
{
    const TextRange r = clamp(range);
    if (r.isEmpty())
        return;
    const std::size_t first = splitAt(r.location);
    const std::size_t last = splitAt(r.end());
    for (std::size_t i = first; i < last; ++i)
        change(m_runs[i].attributes);
    coalesceAround(first, last);
}

TextAttributes AttributedText::attributesAt(qsizetype index, TextRange *effectiveRange) const
{
    if (m_runs.empty())
        return {};
    const std::size_t i = runIndexAt(qBound<qsizetype>(0, index, std::max<qsizetype>(0, m_text.size() - 1)));
    if (effectiveRange) {
        const qsizetype end = i + 1 < m_runs.size() ? m_runs[i + 1].start : m_text.size();
        *effectiveRange = {m_runs[i].start, end - m_runs[i].start};
    }
    return m_runs[i].attributes;
}

void AttributedText::enumerateRuns(const TextRange &range, const RunVisitor &visit) const
{
    const TextRange r = clamp(range);
    if (r.isEmpty())
        return;
    for (std::size_t i = runIndexAt(r.location); i < m_runs.size() && m_runs[i].start < r.end(); ++i) {
        const qsizetype end = i + 1 < m_runs.size() ? m_runs[i + 1].start : m_text.size();
        const qsizetype from = std::max(r.location, m_runs[i].start);
        const qsizetype to = std::min(r.end(), end);
        if (to > from)
            visit({from, to - from}, m_runs[i].attributes);
    }
}

void AttributedText::addAttributes(const TextRange &range, const TextAttributes &attributes)
{
    changeRuns(range, [&](TextAttributes &a) { a.merge(attributes); });
}

void AttributedText::setAttributes(const TextRange &range, const TextAttributes &attributes)
{
    changeRuns(range, [&](TextAttributes &a) { a = attributes; });
}

void AttributedText::removeAttributes(const TextRange &range, unsigned fields)
{
    changeRuns(range, [&](TextAttributes &a) { a.clear(fields); });
}

void AttributedText::replaceCharacters(const TextRange &range, const QString &text, const TextAttributes &attributes)
{
    const TextRange r = clamp(range);
    const qsizetype delta = text.size() - r.length;

    const std::size_t first = splitAt(r.location);
    const std::size_t last = splitAt(r.end());
    m_runs.erase(m_runs.begin() + std::ptrdiff_t(first), m_runs.begin() + std::ptrdiff_t(last));
    for (std::size_t i = first; i < m_runs.size(); ++i)
        m_runs[i].start += delta;
    if (!text.isEmpty())
        m_runs.insert(m_runs.begin() + std::ptrdiff_t(first), Run{r.location, attributes});

    m_text.replace(r.location, r.length, text);
    coalesceAround(first, first + 1);

    if (m_selection.location >= r.end())
        m_selection.location += delta;
    else if (m_selection.end() > r.location)
        m_selection = {std::min(m_selection.location, r.location + text.size()), 0};
    m_selection = clamp(m_selection);
}

void AttributedText::setText(const QString &text, const TextAttributes &attributes)
{
    m_text = text;
    m_runs = {{0, attributes}};
    m_selection = clamp(m_selection);
}

void AttributedText::endEditing()
{
    Q_ASSERT(m_editingDepth > 0);
    if (m_editingDepth > 0)
        --m_editingDepth;
}

void AttributedText::type(const QString &text)
{
    const TextRange at = m_selection;
    replaceCharacters(at, text, m_typingAttributes);
    m_selection = {at.location + text.size(), 0};
    if (m_delegate)
        m_delegate->textStorageDidChange(*this);
}

std::vector<double> AttributedText::paragraphHeights(const QString &text) const
{
    const double pointSize =
        m_typingAttributes.font && m_typingAttributes.font->pointSize > 0 ? m_typingAttributes.font->pointSize : 16;
    const double multiple = m_typingAttributes.paragraph ? m_typingAttributes.paragraph->lineHeightMultiple : 1.2;
    const double lineHeight = pointSize * multiple;
    std::vector<double> heights;
    heights.reserve(std::size_t(text.count(u'\n')) + 1);
    for (const QStringView paragraph : QStringView(text).split(u'\n')) {
        const qsizetype lines = std::max<qsizetype>(1, (paragraph.size() + m_layoutColumns - 1) / m_layoutColumns);
        heights.push_back(double(lines) * lineHeight);
    }
    return heights;
}

} // namespace scrivlet
