#pragma once

#include "notes/Scrivlink.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <vector>

namespace scrivlet {

// The short form of a URL, without its "+" marks: at most three labels of the host
// ("www" dropped), then the tail itself when it is short, or "/..." and a digest of
// its end. "https://www.example.com/path/to/my-long-article-name/" reads
// "example.com/...long-article-name".
QString shortenUrl(const QString &url);

// The few characters or words at the end of `url` that tell it apart: the last words
// of its last segment when they are short, else its last `maxCharacters` characters. A
// Google document is known by the end of its identifier and what follows it.
QString urlSuffixDigest(const QString &url, bool fromEnd = true, int maxCharacters = 6, int maxWords = 3);

// Numbers `candidate` ("+form+") so that no two links of a note read alike: the first
// like link gets "[1]", the next one above the highest number in use. A plain text
// search can then find each link again.
QString makeUnique(const QString &candidate, const std::vector<Scrivlink> &scrivlinks);

// The same rule over an index of the short forms in use, for notes with many links:
// each candidate costs a lookup instead of a pass over all the links.
class ShortFormIndex {
public:
    explicit ShortFormIndex(const std::vector<Scrivlink> &scrivlinks);
    QString makeUnique(const QString &candidate) const;
    void add(const QString &shortenedUrl);

private:
    // Short forms by their unnumbered form, with the highest number read among them.
    QHash<QString, qint64> m_highestByBase;
    QSet<QString> m_forms;
};

} // namespace scrivlet
