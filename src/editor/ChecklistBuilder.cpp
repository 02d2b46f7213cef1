#include "editor/ChecklistBuilder.h"

#include "editor/CheckTriggers.h"
#include "editor/ChecklistLog.h"
#include "notes/ChecklistManager.h"
#include "platform/TextRange.h"

namespace scrivlet {

bool ChecklistBuilder::isEmptyLine(QStringView line)
{
    for (const QChar c : line) {
        if (c != u'\n' && c != u'\r')
            return false;
    }
    return true;
}

bool ChecklistBuilder::isHiddenLine(QStringView line)
{
    const QStringView trimmed = line.trimmed();
    return trimmed.startsWith(u"//") || trimmed.startsWith(u'#');
}

std::optional<int> ChecklistBuilder::startingChecklistIndex(QStringView text, qsizetype position)
{
    const qsizetype firstFeed = text.indexOf(u'\n');
    if (firstFeed < 0)
        return std::nullopt;
    int count = 0;
    qsizetype start = firstFeed + 1;
    while (true) {
        const qsizetype feed = text.indexOf(u'\n', start);
        const qsizetype end = feed < 0 ? text.size() : feed;
        if (!isEmptyLine(text.mid(start, end - start))) {
            if (start > position || end >= position)
                return count;
            ++count;
        }
        if (feed < 0)
            return std::nullopt;
        start = feed + 1;
    }
}

void ChecklistBuilder::createAllCheckboxesFromText(const QString &text, std::optional<qsizetype> startingPosition,
                                                   ChecklistManager &manager, const CheckTriggers &triggers)
{
    int startIndex = 0;
    if (startingPosition) {
        const auto found = startingChecklistIndex(text, *startingPosition);
        if (!found) {
            qCCritical(lcChecklist, "createAllCheckboxesFromText: No starting position found. Default or otherwise");
            return;
        }
        startIndex = *found;
    }
    auto &checklist = manager.checklist;
    if (std::size_t(startIndex) < checklist.size())
        checklist.erase(checklist.begin() + startIndex, checklist.end());

    bool reached = !startingPosition;
    qsizetype location = 0;
    int appended = 0;
    const QStringView all(text);
    while (location <= text.size()) {
        const qsizetype feed = text.indexOf(u'\n', location);
        const bool last = feed < 0;
        const qsizetype end = last ? text.size() : feed;
        const QStringView line = all.mid(location, end - location);
        const qsizetype responsibility = line.size() + (last ? 0 : 1);

        if (!reached) {
            const qsizetype at = *startingPosition;
            const bool within = location <= at && at - location < responsibility;
            // A caret at the very end of the note stands in its last line.
            const bool atEnd = last && location <= at - 1 && at - 1 - location < responsibility;
            reached = within || atEnd || location > at;
        }
        if (reached && location > 0 && !isEmptyLine(line)) {
            auto item = std::make_shared<ChecklistItem>();
            item->content = last ? line.toString() : line.toString() + u'\n';
            item->checked = triggers.isChecked(line);
            item->isHidden = isHiddenLine(line);
            item->responsibilityRange = {location, responsibility};
            item->index = startIndex + appended++;
            checklist.push_back(std::move(item));
        }
        if (last)
            break;
        location = feed + 1;
    }
}

bool ChecklistBuilder::checkStateDiffers(QStringView oldLine, QStringView newLine, const CheckTriggers &triggers)
{
    if (newLine.isEmpty())
        return true;
    if (!triggers.isDefined())
        return false;
    return triggers.isChecked(oldLine) != triggers.isChecked(newLine);
}

bool ChecklistBuilder::blankLineBecameText(QStringView text, const TextRange &range, QStringView insertedText)
{
    if (range.location < 0 || range.length < 0 || range.end() > text.size())
        return false;
    qsizetype start = range.location;
    while (start > 0 && text.at(start - 1) != u'\n')
        --start;
    qsizetype end = range.end();
    while (end < text.size() && text.at(end) != u'\n')
        ++end;
    return text.mid(start, end - start).trimmed().isEmpty() && !insertedText.trimmed().isEmpty();
}

} // namespace scrivlet
