#include "editor/ChecklistLayout.h"

#include "editor/ChecklistBuilder.h"
#include "editor/ChecklistLog.h"
#include "notes/ChecklistManager.h"
#include "platform/MessagePillTypes.h"
#include "platform/NotificationBus.h"
#include "platform/TextStorage.h"

#include <numeric>

namespace scrivlet {

namespace {

// The line (counted from 0) whose span, line feed included, holds `position`.
std::optional<qsizetype> lineNumberAt(QStringView text, qsizetype position)
{
    if (position < 0 || position > text.size())
        return std::nullopt;
    qsizetype number = 0;
    qsizetype start = 0;
    while (true) {
        const qsizetype feed = text.indexOf(u'\n', start);
        const qsizetype end = feed < 0 ? text.size() : feed;
        if (position >= start && position <= end)
            return number;
        if (feed < 0)
            return std::nullopt;
        start = feed + 1;
        ++number;
    }
}

} // namespace

std::vector<double> ChecklistLayout::positionsFromHeights(QStringView text, const std::vector<double> &heights,
                                                          qsizetype startingPosition, double spacing)
{
    const std::optional<qsizetype> startLine =
        startingPosition > 0 ? lineNumberAt(text, startingPosition) : std::optional<qsizetype>();
    std::vector<double> positions;
    double height = 0;
    qsizetype lineCounter = 0;
    qsizetype start = 0;
    for (std::size_t i = 0; i < heights.size() && start <= text.size(); ++i) {
        const qsizetype feed = text.indexOf(u'\n', start);
        const qsizetype end = feed < 0 ? text.size() : feed;
        const double h = heights[i];
        if (i == 0) {
            height += h;
            ++lineCounter;
        } else if (startLine && lineCounter < *startLine) {
            height += h + spacing;
            ++lineCounter;
        } else {
            height += spacing;
            // An empty line takes up room but has no row, so it has no position either.
            if (!ChecklistBuilder::isEmptyLine(text.mid(start, end - start)))
                positions.push_back(height);
            height += h;
        }
        if (feed < 0)
            break;
        start = feed + 1;
    }
    return positions;
}

void ChecklistLayout::insertVerticalPositions(const TextStorage &storage, const QString &text,
                                              qsizetype startingPosition, ChecklistManager &manager, double spacing,
                                              const NotificationBus &bus)
{
    int startIndex = 0;
    bool found = true;
    if (startingPosition != 0) {
        const auto index = ChecklistBuilder::startingChecklistIndex(text, startingPosition);
        if (index) {
            startIndex = *index;
            qCDebug(lcChecklist, "insertVerticalPositions: startingPosition is %lld. Setting startingChecklistIndex to %d",
                    qlonglong(startingPosition), startIndex);
        } else {
            qCCritical(lcChecklist, "insertVerticalPositions: No starting position found");
            found = false;
            startIndex = -1;
        }
    } else {
        qCDebug(lcChecklist, "insertVerticalPositions: startingPosition is 0. Setting startingChecklistIndex as 0");
    }

    std::vector<double> positions;
    qsizetype expected = 0;
    if (found) {
        positions = positionsFromHeights(text, storage.paragraphHeights(text), startingPosition, spacing);
        expected = qsizetype(manager.checklist.size()) - startIndex;
    }
    if (qsizetype(positions.size()) != expected) {
        qCCritical(lcChecklist,
                   "insertVerticalPositions: Mismatch between vertical positions (%lld) and expected checklist items "
                   "count (%lld).",
                   qlonglong(positions.size()), qlonglong(expected));
        bus.postMessagePill(QString::fromUtf16(kMismatchMessage), MessagePillTypes::error());
    }
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const qsizetype index = startIndex + qsizetype(i);
        if (index < 0 || index >= qsizetype(manager.checklist.size())) {
            qCCritical(lcChecklist, "insertVerticalPositions: Checklist index %lld out of bounds.", qlonglong(index));
            continue;
        }
        manager.checklist[std::size_t(index)]->verticalPosition = positions[i];
    }
}

double ChecklistLayout::textHeight(const QString &text, const TextStorage &storage)
{
    const std::vector<double> heights = storage.paragraphHeights(text);
    return std::accumulate(heights.begin(), heights.end(), 0.0);
}

bool ChecklistLayout::textHeightGrew(const QString &oldText, const QString &newText, const TextStorage &storage)
{
    return textHeight(oldText, storage) < textHeight(newText, storage);
}

} // namespace scrivlet
