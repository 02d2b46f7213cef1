#include "editor/ScrivlinkUpdate.h"

#include "editor/ScrivlinkExtraction.h"
#include "editor/ScrivlinkLog.h"
#include "editor/ScrivlinkShortening.h"
#include "editor/ScrivlinkStyles.h"
#include "keywords/StorageBatch.h"
#include "notes/ScrivlinkManager.h"
#include "platform/TextStorage.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace scrivlet {

namespace {

bool isLinkDelimiter(QChar ch)
{
    return ch.isSpace() || ch.category() == QChar::Other_Control || ch == u'(' || ch == u')' || ch == u',';
}

bool containsDelimiter(QStringView stretch)
{
    return std::any_of(stretch.begin(), stretch.end(), isLinkDelimiter);
}

// A link still being typed is left alone until a blank or the like stands between it
// and the caret: shortening it under the user's fingers would swallow the next key.
bool isClearOfCaret(const QString &text, const TextRange &link, qsizetype caret)
{
    if ((caret >= link.location && caret < link.end()) || caret == link.end())
        return false;
    const QStringView stretch = caret < link.location ? QStringView(text).mid(caret, link.location - caret)
                                                      : QStringView(text).mid(link.end(), caret - link.end());
    return containsDelimiter(stretch);
}

// The plain look of inserted text: whatever surrounds it, without the marks of a pass.
TextAttributes insertionAttributes(const TextStorage &storage, qsizetype location)
{
    TextAttributes attributes = storage.attributesAt(location);
    attributes.clear(TextAttributes::Custom);
    return attributes;
}

// Links whose short form touches code: a link is never kept short inside code.
void expandLinksInCode(TextStorage &storage, ScrivlinkManager &manager)
{
    const qsizetype length = storage.length();
    std::vector<Scrivlink> inCode;
    for (const Scrivlink &link : manager.scrivlinks) {
        const TextRange &range = link.currentRange;
        if (range.location < 0 || range.length <= 0 || range.end() > length) {
            logOutOfBoundsRange(QStringLiteral("scrivlink - skipping out-of-bounds range: "), range, length);
            continue;
        }
        if (rangeTouchesCode(storage, range))
            inCode.push_back(link);
    }
    if (inCode.empty())
        return;

    std::sort(inCode.begin(), inCode.end(),
              [](const Scrivlink &a, const Scrivlink &b) { return a.currentRange.location > b.currentRange.location; });
    const QString text = storage.string();
    uxTextStorage(&storage, [&](TextStorage &batch) {
        for (const Scrivlink &link : inCode) {
            if (text.mid(link.currentRange.location, link.currentRange.length) != link.shortenedUrl)
                continue;
            batch.replaceCharacters(link.currentRange, link.fullUrl,
                                    insertionAttributes(batch, link.currentRange.location));
        }
    });
    QSet<QUuid> expanded;
    for (const Scrivlink &link : inCode)
        expanded.insert(link.id);
    std::erase_if(manager.scrivlinks, [&](const Scrivlink &link) { return expanded.contains(link.id); });
}

} // namespace

void updateScrivlinkRanges(const QString &text, ScrivlinkManager &manager)
{
    if (!manager.scrivlinks.empty())
        updateScrivlinkRanges(text, extractShortenedLinks(text), manager);
}

void updateScrivlinkRanges(const QString &text, const std::vector<Scrivlink> &shortForms, ScrivlinkManager &manager)
{
    if (manager.scrivlinks.empty())
        return;
    // One scan gives the first place of every short form: the same answer as searching
    // the text once per link, without the cost of it in a note with many links.
    QHash<QString, TextRange> firstPlace;
    firstPlace.reserve(qsizetype(shortForms.size()));
    for (const Scrivlink &found : shortForms) {
        if (!firstPlace.contains(found.shortenedUrl))
            firstPlace.insert(found.shortenedUrl, found.currentRange);
    }
    for (Scrivlink &link : manager.scrivlinks) {
        const auto it = firstPlace.constFind(link.shortenedUrl);
        if (it != firstPlace.cend()) {
            link.currentRange = *it;
            continue;
        }
        // The scan can swallow a form into a damaged neighbour ("+a.com/x and +b.com+"
        // once the "+" behind x is deleted): the plain search still finds it.
        const qsizetype found = link.shortenedUrl.isEmpty() ? -1 : text.indexOf(link.shortenedUrl);
        if (found >= 0)
            link.currentRange = {found, link.shortenedUrl.size()};
        else
            qCInfo(lcScrivlink, "Warning: Could not find shortened URL %s in updatedText.",
                   qUtf8Printable(link.shortenedUrl));
    }
}

std::vector<Scrivlink> getAllNewFullLinksThatNeedConverting(const TextStorage &storage, qsizetype caret,
                                                            ScrivlinkManager &manager,
                                                            const ScrivlinkSettings &settings)
{
    const QString text = storage.string();
    std::vector<Scrivlink> links = extractFullLinks(text);
    std::erase_if(links, [&](const Scrivlink &link) { return !isClearOfCaret(text, link.currentRange, caret); });

    QSet<QString> skipped(manager.skippedURLs.cbegin(), manager.skippedURLs.cend());
    if (settings.disableLinkShortening) {
        // With shortening off, only the link the user just toggled is shortened; every
        // other link is remembered as one to keep in full.
        std::vector<Scrivlink> toggled;
        for (Scrivlink &link : links) {
            if (!manager.manualToggledUrl.isEmpty() && link.fullUrl == manager.manualToggledUrl) {
                toggled.push_back(std::move(link));
            } else if (!skipped.contains(link.fullUrl)) {
                skipped.insert(link.fullUrl);
                manager.skippedURLs.append(link.fullUrl);
            }
        }
        links = std::move(toggled);
        manager.manualToggledUrl.clear();
    }

    std::erase_if(links, [&](const Scrivlink &link) { return skipped.contains(link.fullUrl); });

    const qsizetype length = text.size();
    std::erase_if(links, [&](const Scrivlink &link) {
        if (link.currentRange.location < 0 || link.currentRange.end() > length) {
            logOutOfBoundsRange(
                QStringLiteral("scrivlink - getAllNewFullLinksThatNeedConverting: skipping out-of-bounds range: "),
                link.currentRange, length);
            return true;
        }
        return rangeTouchesCode(storage, link.currentRange);
    });
    return links;
}

bool updateTextWithTruncatedHyperlinks(TextStorage &storage, qsizetype caret, ScrivlinkManager &manager,
                                       const ScrivlinkSettings &settings)
{
    if (settings.textProcessingSuspended || settings.isCodeNote)
        return false;

    const qsizetype lengthBefore = storage.length();
    QString text = storage.string();

    // A short form that was edited or deleted no longer stands for its link: what is
    // left of it is plain text.
    const std::vector<Scrivlink> shortForms =
        manager.scrivlinks.empty() ? std::vector<Scrivlink>() : extractShortenedLinks(text);
    {
        QSet<QString> present;
        present.reserve(qsizetype(shortForms.size()));
        for (const Scrivlink &found : shortForms)
            present.insert(found.shortenedUrl);
        std::erase_if(manager.scrivlinks, [&](const Scrivlink &link) {
            if (present.contains(link.shortenedUrl))
                return false;
            // A form the scan took into a damaged neighbour is still whole in the text.
            return link.shortenedUrl.isEmpty() || !text.contains(link.shortenedUrl);
        });
    }

    // A URL kept in full is forgotten once it is no longer in the note.
    if (!manager.skippedURLs.isEmpty()) {
        QSet<QString> fullLinks;
        for (const Scrivlink &found : extractFullLinks(text))
            fullLinks.insert(found.fullUrl);
        manager.skippedURLs.removeIf([&](const QString &url) { return !fullLinks.contains(url); });
    }

    updateScrivlinkRanges(text, shortForms, manager);
    expandLinksInCode(storage, manager);
    if (storage.length() != lengthBefore)
        text = storage.string();

    std::vector<Scrivlink> candidates = getAllNewFullLinksThatNeedConverting(storage, caret, manager, settings);

    ShortFormIndex forms(manager.scrivlinks);
    std::vector<Scrivlink> created;
    created.reserve(candidates.size());
    for (Scrivlink &candidate : candidates) {
        const QString form = u'+' + shortenUrl(candidate.fullUrl) + u'+';
        // A URL whose short form couldn't be found again (a "+" in its last words) is
        // left in full rather than lost behind text that no link stands for.
        if (!isWholeShortForm(form))
            continue;
        // New links are numbered against each other too: two equal URLs pasted at once
        // must still be told apart when they are expanded again.
        candidate.shortenedUrl = forms.makeUnique(form);
        forms.add(candidate.shortenedUrl);
        created.push_back(candidate);
    }

    bool changed = storage.length() != lengthBefore;
    if (!created.empty()) {
        uxTextStorage(&storage, [&](TextStorage &batch) {
            for (auto it = created.rbegin(); it != created.rend(); ++it) {
                // Earlier text is untouched by the replacements behind it, so the range
                // found in `text` still holds the URL unless the text itself moved on.
                TextRange range = it->currentRange;
                if (range.location < 0 || range.end() > text.size()) {
                    qCInfo(lcScrivlink, "Skipping replacement. Range out of bounds for shortened URL %s",
                           qUtf8Printable(it->shortenedUrl));
                    continue;
                }
                if (QStringView(text).mid(range.location, range.length) != it->fullUrl) {
                    const qsizetype found = text.lastIndexOf(it->fullUrl, range.location);
                    if (found < 0) {
                        qCInfo(lcScrivlink, "Skipping replacement. Could not find valid range for shortened URL %s",
                               qUtf8Printable(it->shortenedUrl));
                        continue;
                    }
                    range = {found, it->fullUrl.size()};
                }
                batch.replaceCharacters(range, it->shortenedUrl, insertionAttributes(batch, range.location));
                changed = true;
            }
        });
        for (Scrivlink &link : created) {
            link.currentRange = {};
            manager.scrivlinks.push_back(std::move(link));
        }
        text = storage.string();
    }

    // Ranges only move when this update changed the text.
    if (changed)
        updateScrivlinkRanges(text, manager);

    if (!created.empty()) {
        const QUuid lastId = manager.scrivlinks.back().id;
        const auto last = std::find_if(manager.scrivlinks.begin(), manager.scrivlinks.end(),
                                       [&](const Scrivlink &link) { return link.id == lastId; });
        manager.locationOfLastShortenedLink = last->currentRange.end();
        if (manager.shorteningFromClick)
            manager.shorteningFromClick = false;
        else
            manager.locationOfLastShortenedLink += 1;
    }
    return changed;
}

} // namespace scrivlet
