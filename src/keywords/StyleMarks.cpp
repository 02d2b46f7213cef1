#include "keywords/StyleMarks.h"

#include "platform/TextStorage.h"

#include <vector>

namespace scrivlet {

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

    for (const Marked &run : marked) {
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
