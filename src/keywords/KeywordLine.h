#pragma once

#include "keywords/KeywordID.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace scrivlet {

class KeywordDefinitionsContainer;

// What a note is depends on its first line alone. These read it; all of them see
// nothing while the user has switched keywords off.

// The text before the first line feed, or the whole text.
QStringView firstLineOf(const QString &text);

// The first line as keywords are matched: trimmed, lower case, without a leading "/"
// and without anything from the first ":" on.
QString normalizedKeywordLine(QStringView firstLine, const KeywordDefinitionsContainer &keywords);

// The upper-case name of the note's keyword ("SUM"), or "". Reads the first line only.
QString detectKeyword(const QString &text, const KeywordDefinitionsContainer &keywords);
std::optional<KeywordID> detectKeywordID(const QString &text, const KeywordDefinitionsContainer &keywords);

// Whether the first line is a keyword line the note can act on: like detectKeyword,
// but "paste" only takes a delimiter in one pair of parentheses ("paste foo" is no
// valid keyword line even though it is detected as PASTE).
bool hasValidKeyword(const QString &text, const KeywordDefinitionsContainer &keywords);

} // namespace scrivlet
