#include "editor/ScrivlinkExtraction.h"

#include "editor/TopLevelDomains.h"

#include <QRegularExpression>
#include <QUrl>

namespace scrivlet {

namespace {

// Only the whole match is ever read, so the groups are not captured: a note with
// thousands of links is scanned on each update.
// A link starts at the beginning of the text or after a blank, never right after an
// "@", so that e-mail addresses stay as they are.
const QRegularExpression &fullLinkPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral(R"((?:(?<=\s)|^)(?<!@)((https?|ftp):\/\/)?((?:[A-Za-z0-9-]+(?:\.[A-Za-z0-9-]+)*\.[A-Za-z]{2,})|)"
                       R"((localhost)|(\d{1,3}(\.\d{1,3}){3}))(:\d+)?(?=[\/?#\s(),]|$))"
                       R"(([\/?#][^\s(),\r\n@\x{201D}\x{201C}:{}]*)?)"),
        QRegularExpression::DontCaptureOption);
    return pattern;
}

const QRegularExpression &shortLinkPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(\+((ftp:)?((([A-Za-z0-9_-]+(?:\.[A-Za-z0-9_-]+)+)|(localhost)|(\d{1,3}(?:\.\d{1,3}){3})))"
                       R"((?::\d+)?(?:/[^\+\n\",()]*)?(?:\.\.\.)?(?:\[\d+\])?))\+)"),
        QRegularExpression::DontCaptureOption);
    return pattern;
}

bool isDottedQuad(const QString &host)
{
    static const QRegularExpression pattern(QStringLiteral(R"(^\d{1,3}(\.\d{1,3}){3}$)"));
    return pattern.match(host).hasMatch();
}

bool hasAcceptableHost(const QString &link)
{
    const QString withScheme = link.contains(u"://") ? link : QStringLiteral("http://") + link;
    const QUrl url(withScheme, QUrl::StrictMode);
    if (!url.isValid())
        return false;
    const QString host = url.host();
    if (host.isEmpty())
        return false;
    if (host == u"localhost")
        return true;
    if (isDottedQuad(host))
        return true;
    const qsizetype dot = host.lastIndexOf(u'.');
    if (dot < 0)
        return false;
    return isKnownTopLevelDomain(QStringView(host).mid(dot + 1));
}

} // namespace

std::vector<Scrivlink> extractFullLinks(const QString &text)
{
    std::vector<Scrivlink> links;
    auto matches = fullLinkPattern().globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        QString link = match.captured(0);
        TextRange range{match.capturedStart(0), match.capturedLength(0)};
        // A sentence that ends on a link: the full stop is the sentence's.
        if (link.endsWith(u'.')) {
            link.chop(1);
            --range.length;
        }
        if (link.isEmpty() || !hasAcceptableHost(link))
            continue;
        Scrivlink found;
        found.fullUrl = link;
        found.currentRange = range;
        links.push_back(std::move(found));
    }
    return links;
}

std::vector<Scrivlink> extractShortenedLinks(const QString &text)
{
    std::vector<Scrivlink> links;
    // Every short form holds a "+"; most notes hold none, and need no scan at all.
    if (!text.contains(u'+'))
        return links;
    auto matches = shortLinkPattern().globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        Scrivlink found;
        found.shortenedUrl = match.captured(0);
        found.currentRange = {match.capturedStart(0), match.capturedLength(0)};
        links.push_back(std::move(found));
    }
    return links;
}

bool isWholeShortForm(const QString &candidate)
{
    const QRegularExpressionMatch match = shortLinkPattern().match(candidate, 0, QRegularExpression::NormalMatch,
                                                                   QRegularExpression::AnchorAtOffsetMatchOption);
    return match.hasMatch() && match.capturedLength(0) == candidate.size();
}

} // namespace scrivlet
