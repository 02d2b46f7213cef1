#include "editor/ScrivlinkExpansion.h"

#include "editor/ScrivlinkExtraction.h"
#include "editor/ScrivlinkLog.h"
#include "editor/ScrivlinkUpdate.h"
#include "keywords/StorageBatch.h"
#include "notes/ScrivlinkManager.h"
#include "platform/TextStorage.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace scrivlet {

namespace {

struct Replacement {
    TextRange range;
    QString text;
};

// Where each link's short form stands in `text`, in text order, without overlaps. The
// ranges are found afresh by a scan rather than trusted: a stale range must never
// replace text that isn't the link.
std::vector<Replacement> expansionsIn(const QString &text, const std::vector<Scrivlink> &scrivlinks)
{
    std::vector<Replacement> replacements;
    if (scrivlinks.empty())
        return replacements;
    QHash<QString, const Scrivlink *> byForm;
    byForm.reserve(qsizetype(scrivlinks.size()));
    for (const Scrivlink &link : scrivlinks)
        byForm.insert(link.shortenedUrl, &link);
    QSet<QString> matched;
    for (const Scrivlink &found : extractShortenedLinks(text)) {
        const auto it = byForm.constFind(found.shortenedUrl);
        if (it != byForm.cend()) {
            replacements.push_back({found.currentRange, (*it)->fullUrl});
            matched.insert(found.shortenedUrl);
        }
    }
    // A form the scan took into a damaged neighbour is looked for as plain text.
    bool searched = false;
    for (const Scrivlink &link : scrivlinks) {
        if (link.shortenedUrl.isEmpty() || matched.contains(link.shortenedUrl))
            continue;
        const qsizetype found = text.indexOf(link.shortenedUrl);
        if (found >= 0) {
            replacements.push_back({{found, link.shortenedUrl.size()}, link.fullUrl});
            searched = true;
        }
    }
    if (searched) {
        std::sort(replacements.begin(), replacements.end(),
                  [](const Replacement &a, const Replacement &b) { return a.range.location < b.range.location; });
        std::vector<Replacement> apart;
        for (Replacement &replacement : replacements) {
            if (apart.empty() || replacement.range.location >= apart.back().range.end())
                apart.push_back(std::move(replacement));
        }
        replacements = std::move(apart);
    }
    return replacements;
}

void replaceFromLastToFirst(TextStorage &storage, const std::vector<Replacement> &replacements)
{
    if (replacements.empty())
        return;
    uxTextStorage(&storage, [&](TextStorage &batch) {
        for (auto it = replacements.rbegin(); it != replacements.rend(); ++it) {
            TextAttributes attributes = batch.attributesAt(it->range.location);
            attributes.clear(TextAttributes::Custom);
            batch.replaceCharacters(it->range, it->text, attributes);
        }
    });
}

} // namespace

QString expandAllScrivlinks(const QString &text, const std::vector<Scrivlink> &scrivlinks)
{
    const std::vector<Replacement> replacements = expansionsIn(text, scrivlinks);
    if (replacements.empty())
        return text;
    QString result;
    qsizetype extra = 0;
    for (const Replacement &replacement : replacements)
        extra += replacement.text.size() - replacement.range.length;
    result.reserve(text.size() + std::max<qsizetype>(0, extra));
    qsizetype copied = 0;
    for (const Replacement &replacement : replacements) {
        result += QStringView(text).mid(copied, replacement.range.location - copied);
        result += replacement.text;
        copied = replacement.range.end();
    }
    result += QStringView(text).mid(copied);
    return result;
}

void expandAllScrivlinks(TextStorage &storage, const ScrivlinkManager &manager)
{
    replaceFromLastToFirst(storage, expansionsIn(storage.string(), manager.scrivlinks));
}

void unshrinkLinks(TextStorage &storage, ScrivlinkManager &manager)
{
    expandAllScrivlinks(storage, manager);
    manager.scrivlinks.clear();
}

void toggleShowAllFullLinksTemporarily(bool show, TextStorage &storage, ScrivlinkManager &manager)
{
    if (show) {
        const QString text = storage.string();
        for (const Scrivlink &link : manager.scrivlinks) {
            const TextRange &range = link.currentRange;
            if (range.location < 0 || range.end() > text.size())
                logOutOfBoundsRange(
                    QStringLiteral("scrivlink - toggleShowAllFullLinksTemporarily: skipping out-of-bounds range: "),
                    range, text.size());
        }
        replaceFromLastToFirst(storage, expansionsIn(text, manager.scrivlinks));
        // While shown in full the links are not in the text: the update must not take
        // them for damaged ones and forget them.
        for (Scrivlink &link : manager.scrivlinks)
            manager.temporarilyUnshortenedScrivlinks.push_back(std::move(link));
        manager.scrivlinks.clear();
        return;
    }

    if (manager.temporarilyUnshortenedScrivlinks.empty())
        return;
    // Each full URL is looked for after the previous one, so that two links to the same
    // address get their own short forms back in order.
    std::vector<Scrivlink> links = std::move(manager.temporarilyUnshortenedScrivlinks);
    manager.temporarilyUnshortenedScrivlinks.clear();
    std::stable_sort(links.begin(), links.end(), [](const Scrivlink &a, const Scrivlink &b) {
        return a.currentRange.location < b.currentRange.location;
    });
    const QString text = storage.string();
    std::vector<Replacement> replacements;
    qsizetype from = 0;
    for (const Scrivlink &link : links) {
        const qsizetype found = text.indexOf(link.fullUrl, from);
        if (found < 0)
            continue;
        replacements.push_back({{found, link.fullUrl.size()}, link.shortenedUrl});
        from = found + link.fullUrl.size();
        manager.scrivlinks.push_back(link);
    }
    replaceFromLastToFirst(storage, replacements);
    updateScrivlinkRanges(storage.string(), manager);
}

} // namespace scrivlet
