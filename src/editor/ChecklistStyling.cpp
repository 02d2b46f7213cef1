#include "editor/ChecklistStyling.h"

#include "editor/CheckTriggers.h"
#include "editor/ChecklistLog.h"
#include "keywords/StyleMarks.h"
#include "platform/TextStorage.h"

namespace scrivlet {

namespace {

const QString kCheckboxTag = QStringLiteral("checkbox");

qsizetype characterCount(QStringView text)
{
    qsizetype count = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!(text.at(i).isLowSurrogate() && i > 0 && text.at(i - 1).isHighSurrogate()))
            ++count;
    }
    return count;
}

QStringView withoutTrailingSpace(QStringView text)
{
    qsizetype end = text.size();
    while (end > 0 && text.at(end - 1).isSpace())
        --end;
    return text.left(end);
}

bool isBlankOrTab(QChar c)
{
    return c == u' ' || c == u'\t';
}

} // namespace

void ChecklistStyling::applyCheckboxStyling(TextStorage *storage, const CheckTriggers &triggers,
                                            const TextAttributes &defaults)
{
    if (!storage) {
        qCCritical(lcChecklist, "Failed to retrieve textStorage.");
        return;
    }
    const QString text = storage->string();
    qsizetype location = 0;
    while (location <= text.size()) {
        const qsizetype feed = text.indexOf(u'\n', location);
        const qsizetype end = feed < 0 ? text.size() : feed;
        const QStringView line = QStringView(text).mid(location, end - location);

        if (location > 0) {
            QStringView trimmed = line;
            while (!trimmed.isEmpty() && (isBlankOrTab(trimmed.front()) || trimmed.front() == u'\r'))
                trimmed = trimmed.mid(1);
            while (!trimmed.isEmpty() && (isBlankOrTab(trimmed.back()) || trimmed.back() == u'\r'))
                trimmed.chop(1);
            const auto trigger = triggers.isDefined() ? triggers.triggerAtEnd(trimmed.toString().toLower())
                                                      : std::optional<QString>();
            const QStringView visible = withoutTrailingSpace(line);
            if (trigger) {
                // The counts below are of characters, the locations of UTF-16 units, as
                // the editor this look was made for counts them: past the basic plane
                // the struck span falls a little short, which is accepted.
                const qsizetype triggerCount = characterCount(*trigger);
                QStringView words = visible;
                words.chop(std::min(words.size(), trigger->size()));
                words = withoutTrailingSpace(words);

                TextAttributes struck;
                struck.custom = CustomAttribute{kCheckboxTag, QStringLiteral("text")};
                struck.custom->color = QStringLiteral("typeLight");
                struck.custom->strikethroughStyle = 1;
                struck.foreground = QStringLiteral("typeLight");
                struck.strikethroughStyle = 1;
                storage->addAttributes({location, characterCount(words)}, struck);

                TextAttributes mark;
                mark.custom = CustomAttribute{kCheckboxTag, QStringLiteral("tag")};
                mark.custom->color = QStringLiteral("typeSuperlight");
                mark.foreground = QStringLiteral("typeSuperlight");
                storage->addAttributes({location + characterCount(visible) - triggerCount, triggerCount}, mark);
            } else {
                removeStyles(*storage, {location, line.size()}, kCheckboxTag, defaults);
            }
        }
        if (feed < 0)
            break;
        location = feed + 1;
    }
}

} // namespace scrivlet
