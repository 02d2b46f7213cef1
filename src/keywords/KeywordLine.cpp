#include "keywords/KeywordLine.h"

#include "keywords/KeywordDefinitionsContainer.h"

namespace scrivlet {

namespace {

QStringView trimmedBlanksAndTabs(QStringView text)
{
    qsizetype from = 0;
    qsizetype to = text.size();
    while (from < to && (text[from] == u' ' || text[from] == u'\t'))
        ++from;
    while (to > from && (text[to - 1] == u' ' || text[to - 1] == u'\t'))
        --to;
    return text.mid(from, to - from);
}

struct KeywordMatch {
    KeywordID id;
    bool argumentsAllowed;
    QString rest; // what follows the trigger on the normalized line
};

// Walks the main keywords in their priority order and stops at the first trigger
// that the line selects.
std::optional<KeywordMatch> findKeyword(const QString &text, const KeywordDefinitionsContainer &keywords)
{
    if (keywords.disableAllKeywords())
        return std::nullopt;
    const QStringView firstLine = firstLineOf(text);
    if (firstLine.isEmpty())
        return std::nullopt;
    const QString normalized = normalizedKeywordLine(firstLine, keywords);
    if (normalized.isEmpty())
        return std::nullopt;

    for (KeywordID id : keywords.mainKeywords()) {
        const KeywordDefinition *definition = keywords.definition(id);
        if (!definition)
            continue;
        for (const QString &trigger : definition->triggers) {
            const QString word = trigger.toLower();
            // A blank piece of a stored list would otherwise select every line.
            if (word.isEmpty())
                continue;
            // A bare prefix on purpose: "timers" and "pasted" select their keyword too.
            const bool matches = definition->allowArgumentsAfterKeyword ? normalized.startsWith(word)
                                                                        : normalized == word;
            if (matches)
                return KeywordMatch{id, definition->allowArgumentsAfterKeyword, normalized.mid(word.size())};
        }
    }
    return std::nullopt;
}

} // namespace

QStringView firstLineOf(const QString &text)
{
    const qsizetype end = text.indexOf(u'\n');
    return end < 0 ? QStringView(text) : QStringView(text).left(end);
}

QString normalizedKeywordLine(QStringView firstLine, const KeywordDefinitionsContainer &keywords)
{
    if (keywords.disableAllKeywords())
        return {};
    QString line = firstLine.trimmed().toString().toLower();
    if (line.startsWith(u'/'))
        line.remove(0, 1);
    const qsizetype colon = line.indexOf(u':');
    if (colon >= 0)
        line = line.left(colon).trimmed();
    return line;
}

QString detectKeyword(const QString &text, const KeywordDefinitionsContainer &keywords)
{
    const auto id = detectKeywordID(text, keywords);
    return id ? keywordName(*id) : QString();
}

std::optional<KeywordID> detectKeywordID(const QString &text, const KeywordDefinitionsContainer &keywords)
{
    const auto match = findKeyword(text, keywords);
    return match ? std::optional<KeywordID>(match->id) : std::nullopt;
}

bool hasValidKeyword(const QString &text, const KeywordDefinitionsContainer &keywords)
{
    const auto match = findKeyword(text, keywords);
    if (!match)
        return false;
    if (!match->argumentsAllowed)
        return true;

    const QStringView rest = trimmedBlanksAndTabs(match->rest);
    // The timer reads the arguments of its line itself.
    if (match->id == KeywordID::TIMER)
        return true;
    if (match->id == KeywordID::PASTE) {
        if (rest.isEmpty())
            return true;
        // The only argument AutoPaste takes is its delimiter, in one pair of parentheses.
        if (!rest.startsWith(u'(') || !rest.endsWith(u')'))
            return false;
        const QStringView delimiter = trimmedBlanksAndTabs(rest.mid(1, rest.size() - 2));
        return !delimiter.contains(u'(') && !delimiter.contains(u')');
    }
    return true;
}

} // namespace scrivlet
