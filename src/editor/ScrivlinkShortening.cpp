#include "editor/ScrivlinkShortening.h"

#include <QRegularExpression>
#include <QStringList>
#include <QUrl>

#include <algorithm>

namespace scrivlet {

namespace {

const QRegularExpression &strictIpv4Pattern()
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(^((25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)\.){3}(25[0-5]|2[0-4][0-9]|[01]?[0-9][0-9]?)$)"));
    return pattern;
}

// The last three labels at most, without "www": "a.b.c.example.com" reads
// "c.example.com", "www.example.com" reads "example.com".
QString trimmedDomain(const QString &host)
{
    const QStringList labels = host.split(u'.', Qt::SkipEmptyParts);
    if (labels.size() < 2)
        return host;
    const qsizetype n = labels.size();
    const QString &a = n >= 3 ? labels.at(n - 3) : QString();
    const QString &b = labels.at(n - 2);
    const QString &c = labels.at(n - 1);
    if (a.isEmpty() || a == u"www")
        return b + u'.' + c;
    return a + u'.' + b + u'.' + c;
}

bool hasKnownScheme(const QString &url)
{
    return url.startsWith(u"http://", Qt::CaseInsensitive) || url.startsWith(u"https://", Qt::CaseInsensitive) ||
           url.startsWith(u"ftp://", Qt::CaseInsensitive);
}

// Path, query and fragment exactly as written (the parser would re-encode them):
// the short form shows what the user typed.
QString tailAsWritten(const QString &url)
{
    const qsizetype schemeEnd = url.indexOf(u"://");
    const qsizetype authorityStart = schemeEnd < 0 ? 0 : schemeEnd + 3;
    qsizetype pathStart = url.size();
    for (qsizetype i = authorityStart; i < url.size(); ++i) {
        const QChar ch = url.at(i);
        if (ch == u'/' || ch == u'?' || ch == u'#') {
            pathStart = i;
            break;
        }
    }
    const QStringView rest = QStringView(url).mid(pathStart);
    const qsizetype fragmentAt = rest.indexOf(u'#');
    const QStringView beforeFragment = fragmentAt < 0 ? rest : rest.left(fragmentAt);
    const QStringView fragment = fragmentAt < 0 ? QStringView() : rest.mid(fragmentAt + 1);
    const qsizetype queryAt = beforeFragment.indexOf(u'?');
    QStringView path = queryAt < 0 ? beforeFragment : beforeFragment.left(queryAt);
    const QStringView query = queryAt < 0 ? QStringView() : beforeFragment.mid(queryAt + 1);

    if (path.startsWith(u'/'))
        path = path.mid(1);
    QString tail = path.toString();
    if (!query.isEmpty())
        tail += u'?' + query.toString();
    if (!fragment.isEmpty())
        tail += u'#' + fragment.toString();
    return tail;
}

const QRegularExpression &numberSuffixPattern()
{
    static const QRegularExpression pattern(QStringLiteral(R"(\[\d+\](\+)$)"));
    return pattern;
}

QString unnumbered(const QString &form)
{
    QString base = form;
    base.replace(numberSuffixPattern(), QStringLiteral("\\1"));
    return base;
}

// The number of a numbered form, or -1.
qint64 numberOf(const QString &form)
{
    static const QRegularExpression pattern(QStringLiteral(R"(\[(\d+)\]\+)"));
    const QRegularExpressionMatch match = pattern.match(form);
    if (!match.hasMatch())
        return -1;
    bool ok = false;
    const qint64 number = match.captured(1).toLongLong(&ok);
    return ok ? number : -1;
}

} // namespace

QString shortenUrl(const QString &url)
{
    QString link = url;
    if (link.endsWith(u'/'))
        link.chop(1);
    const QString withScheme = hasKnownScheme(link) ? link : QStringLiteral("http://") + link;
    const QUrl parsed(withScheme, QUrl::TolerantMode);

    const QString host = parsed.host();
    QString hostPart;
    if (!host.isEmpty()) {
        if (parsed.scheme().compare(u"ftp", Qt::CaseInsensitive) == 0)
            hostPart = QStringLiteral("ftp:") + trimmedDomain(host);
        else if (host == u"localhost")
            hostPart = parsed.port() >= 0 ? QStringLiteral("localhost:") + QString::number(parsed.port())
                                          : QStringLiteral("localhost");
        else if (strictIpv4Pattern().match(host).hasMatch())
            hostPart = host;
        else
            hostPart = trimmedDomain(host);
    }
    if (!parsed.isValid())
        return hostPart;

    const QString tail = tailAsWritten(withScheme);
    if (tail.isEmpty())
        return hostPart;
    if (tail.size() < 7)
        return hostPart + u'/' + tail;
    return hostPart + QStringLiteral("/...") + urlSuffixDigest(link, true, 6, 3);
}

QString urlSuffixDigest(const QString &url, bool fromEnd, int maxCharacters, int maxWords)
{
    // A shared document's address ends in words every document has ("edit"): its
    // identifier is what tells two of them apart.
    if ((url.contains(u"docs.google.com") || url.contains(u"drive.google.com")) && url.contains(u"/d/")) {
        const QStringList pieces = url.mid(url.indexOf(u"/d/") + 3).split(u'/', Qt::SkipEmptyParts);
        for (qsizetype i = 0; i < pieces.size(); ++i) {
            if (pieces.at(i).size() > 17)
                return pieces.at(i).right(6) + u'/' + pieces.mid(i + 1).join(u'/');
        }
    }

    QString flattened = url;
    flattened.replace(u'?', u'/').replace(u'&', u'/').replace(u'=', u'/');
    flattened.replace(QStringLiteral("//"), QStringLiteral("/"));
    const QString segment = fromEnd ? flattened.mid(flattened.lastIndexOf(u'/') + 1)
                                    : flattened.left(std::max<qsizetype>(0, flattened.indexOf(u'/')));

    static const QRegularExpression separators(QStringLiteral("[-_]"));
    const QStringList parts = segment.split(separators);
    if (parts.size() == 1)
        return segment.right(maxCharacters);
    const qsizetype take = std::min<qsizetype>(parts.size(), maxWords);
    const QStringList words = fromEnd ? parts.mid(parts.size() - take) : parts.mid(0, take);
    for (const QString &word : words) {
        if (word.size() >= 11)
            return fromEnd ? segment.right(maxCharacters) : segment.left(maxCharacters);
    }
    return words.join(segment.contains(u'-') ? u'-' : u'_');
}

QString makeUnique(const QString &candidate, const std::vector<Scrivlink> &scrivlinks)
{
    return ShortFormIndex(scrivlinks).makeUnique(candidate);
}

ShortFormIndex::ShortFormIndex(const std::vector<Scrivlink> &scrivlinks)
{
    m_highestByBase.reserve(qsizetype(scrivlinks.size()));
    m_forms.reserve(qsizetype(scrivlinks.size()));
    for (const Scrivlink &link : scrivlinks)
        add(link.shortenedUrl);
}

void ShortFormIndex::add(const QString &shortenedUrl)
{
    const qint64 number = numberOf(shortenedUrl);
    auto it = m_highestByBase.find(unnumbered(shortenedUrl));
    if (it == m_highestByBase.end())
        m_highestByBase.insert(unnumbered(shortenedUrl), number);
    else
        *it = std::max(*it, number);
    m_forms.insert(shortenedUrl);
}

QString ShortFormIndex::makeUnique(const QString &candidate) const
{
    const QString base = unnumbered(candidate);
    const auto it = m_highestByBase.constFind(base);
    if (it != m_highestByBase.cend() && *it >= 0)
        return base.chopped(1) + u'[' + QString::number(*it + 1) + QStringLiteral("]+");
    if (m_forms.contains(candidate))
        return candidate.chopped(1) + QStringLiteral("[1]+");
    return candidate;
}

} // namespace scrivlet
