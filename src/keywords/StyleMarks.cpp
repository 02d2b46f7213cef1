#include "keywords/StyleMarks.h"

#include "platform/TextStorage.h"

#include <vector>

namespace scrivlet {

void addStyle(TextStorage &storage, const TextRange &range, const CustomAttribute &mark)
{
    if (range.isEmpty())
        return;
    TextAttributes attributes;
    attributes.custom = mark;
    storage.addAttributes(range, attributes);
}

void removeStyles(TextStorage &storage, const TextRange &range, const QString &tag, const TextAttributes &defaults,
                  const std::optional<QString> &subtag)
{
    struct Marked {
        TextRange range;
        TextAttributes attributes;
    };
    std::vector<Marked> marked;
    storage.enumerateRuns(range, [&](const TextRange &run, const TextAttributes &attributes) {
        if (attributes.custom && attributes.custom->tag == tag && (!subtag || attributes.custom->subtag == *subtag))
            marked.push_back({run, attributes});
    });

    // From the end backwards: a run given back its plain look joins the plain text after
    // it, so each change touches only its neighbours, not every run that follows.
    for (auto it = marked.rbegin(); it != marked.rend(); ++it) {
        const Marked &run = *it;
        const CustomAttribute &mark = *run.attributes.custom;
        TextAttributes restored = run.attributes;
        restored.custom.reset();
        if ((mark.bold || mark.italic) && restored.font) {
            restored.font->bold = false;
            restored.font->italic = false;
        }
        if (mark.color)
            restored.foreground = defaults.foreground;
        if (mark.backgroundColor)
            restored.background.reset();
        if (mark.underlineStyle)
            restored.underlineStyle = 0;
        if (mark.strikethroughStyle)
            restored.strikethroughStyle = 0;
        if (mark.underlineColor)
            restored.underlineColor.reset();
        storage.setAttributes(run.range, restored);
    }
}

} // namespace scrivlet
