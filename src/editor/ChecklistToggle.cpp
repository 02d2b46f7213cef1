#include "editor/ChecklistToggle.h"

#include "editor/CheckTriggers.h"

namespace scrivlet {

namespace {

QString trimmedOfBlanksAndTabs(QStringView text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && (text.at(start) == u' ' || text.at(start) == u'\t'))
        ++start;
    while (end > start && (text.at(end - 1) == u' ' || text.at(end - 1) == u'\t'))
        --end;
    return text.mid(start, end - start).toString();
}

} // namespace

std::optional<ChecklistToggle::Edit> ChecklistToggle::edit(const QString &text, qsizetype lineLocation, bool checked,
                                                           const CheckTriggers &triggers)
{
    if (lineLocation < 0 || lineLocation > text.size())
        return std::nullopt;
    if (lineLocation > 0 && text.at(lineLocation - 1) != u'\n')
        return std::nullopt;
    const qsizetype feed = text.indexOf(u'\n', lineLocation);
    const qsizetype end = feed < 0 ? text.size() : feed;
    const QString line = text.mid(lineLocation, end - lineLocation);

    Edit edit{{lineLocation, line.size()}, line};
    if (checked) {
        edit.replacement = line + u' ' + triggers.mainTrigger();
    } else if (const auto trigger = triggers.triggerAtEnd(line.toLower())) {
        // The check word is cut by its length, whatever case it was typed in.
        edit.replacement = trimmedOfBlanksAndTabs(QStringView(line).chopped(trigger->size()));
    }
    return edit;
}

} // namespace scrivlet
