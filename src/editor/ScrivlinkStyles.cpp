#include "editor/ScrivlinkStyles.h"

#include "editor/ScrivlinkExtraction.h"
#include "editor/ScrivlinkLog.h"
#include "keywords/StyleMarks.h"
#include "platform/TextStorage.h"

namespace scrivlet {

namespace {

// Links are drawn in the secondary tone of the first accent, underlined in it.
const QString &linkColorRole()
{
    static const QString role = QStringLiteral("accent1Secondary");
    return role;
}

bool isCodeMark(const CustomAttribute &mark)
{
    if (mark.tag == u"code")
        return true;
    return mark.tag == u"markdown" && (mark.subtag.startsWith(u"inlineCode") || mark.subtag.startsWith(u"codeBlock"));
}

TextAttributes linkAttributes(const QString &subtag)
{
    CustomAttribute mark;
    mark.tag = scrivlinkTag();
    mark.subtag = subtag;
    mark.color = linkColorRole();
    mark.underlineStyle = 1;
    mark.underlineColor = linkColorRole();

    TextAttributes attributes;
    attributes.custom = mark;
    attributes.foreground = linkColorRole();
    attributes.underlineStyle = 1;
    attributes.underlineColor = linkColorRole();
    return attributes;
}

} // namespace

QString scrivlinkTag()
{
    return QStringLiteral("scrivlink");
}

QString fullLinkSubtag()
{
    return QStringLiteral("fullLink");
}

bool rangeTouchesCode(const TextStorage &storage, const TextRange &range)
{
    bool code = false;
    storage.enumerateRuns(range, [&](const TextRange &, const TextAttributes &attributes) {
        if (attributes.custom && isCodeMark(*attributes.custom))
            code = true;
    });
    return code;
}

void applyScrivlinkStyles(TextStorage &storage, const std::vector<Scrivlink> &scrivlinks,
                          const TextAttributes &defaults)
{
    const qsizetype length = storage.length();
    removeStyles(storage, {0, length}, scrivlinkTag(), defaults);
    const TextAttributes attributes = linkAttributes(QString());
    for (const Scrivlink &link : scrivlinks) {
        const TextRange &range = link.currentRange;
        if (range.location < 0 || range.length <= 0 || range.end() > length) {
            logOutOfBoundsRange(QStringLiteral("scrivlink - skipping out-of-bounds range: "), range, length);
            continue;
        }
        storage.addAttributes(range, attributes);
    }
}

void highlightFullLinks(TextStorage &storage, bool disableLinkHighlighting)
{
    if (disableLinkHighlighting)
        return;
    const TextAttributes attributes = linkAttributes(fullLinkSubtag());
    for (const Scrivlink &link : extractFullLinks(storage.string())) {
        if (!rangeTouchesCode(storage, link.currentRange))
            storage.addAttributes(link.currentRange, attributes);
    }
}

} // namespace scrivlet
