#include "calculation/VariableMatcher.h"

#include <QSet>

#include <algorithm>

namespace scrivlet {

namespace {

// A case-insensitive match takes these two for the ASCII letters "k" and "s", also where
// it asks whether an ASCII letter touches a name.
constexpr char16_t kKelvinSign = 0x212A;
constexpr char16_t kLongS = 0x017F;

bool touchesLikeAsciiAlphanumeric(char32_t c)
{
    return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || (c >= U'0' && c <= U'9') || c == kKelvinSign ||
           c == kLongS;
}

// A word character as a regular expression's "\b" sees it with Unicode properties:
// letters, numbers and the underscore.
bool isWordCharacter(char32_t c)
{
    if (c < 0x80)
        return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || (c >= U'0' && c <= U'9') || c == U'_';
    return QChar::isLetterOrNumber(c);
}

char16_t fold(QChar c)
{
    if (c.unicode() < 0x80)
        return (c >= u'A' && c <= u'Z') ? char16_t(c.unicode() + 32) : c.unicode();
    return c.toCaseFolded().unicode();
}

// The code point that ends just before `index`, or none at the start.
std::optional<char32_t> codePointBefore(const QString &text, qsizetype index)
{
    if (index <= 0)
        return std::nullopt;
    const QChar c = text.at(index - 1);
    if (c.isLowSurrogate() && index >= 2 && text.at(index - 2).isHighSurrogate())
        return QChar::surrogateToUcs4(text.at(index - 2), c);
    return c.unicode();
}

std::optional<char32_t> codePointAt(const QString &text, qsizetype index)
{
    if (index >= text.size())
        return std::nullopt;
    const QChar c = text.at(index);
    if (c.isHighSurrogate() && index + 1 < text.size() && text.at(index + 1).isLowSurrogate())
        return QChar::surrogateToUcs4(c, text.at(index + 1));
    return c.unicode();
}

// Whether [start, end) of `text` stands as a whole: for the values no ASCII letter or
// digit beside it, for uses and colours a word boundary ("\b") at each end.
bool standsAlone(const QString &text, qsizetype start, qsizetype end, bool wordBoundaries)
{
    const std::optional<char32_t> before = codePointBefore(text, start);
    const std::optional<char32_t> after = codePointAt(text, end);
    if (!wordBoundaries)
        return !(before && touchesLikeAsciiAlphanumeric(*before)) && !(after && touchesLikeAsciiAlphanumeric(*after));
    const auto isWord = [](std::optional<char32_t> c) { return c && isWordCharacter(*c); };
    return isWord(before) != isWord(codePointAt(text, start)) && isWord(codePointBefore(text, end)) != isWord(after);
}

bool hasSurrogate(const QString &key)
{
    return std::any_of(key.begin(), key.end(), [](QChar c) { return c.isSurrogate(); });
}

// The names still to be tried, in their order; a name joins at most once.
class NameQueue {
public:
    void add(const QString *key)
    {
        if (m_seen.contains(key))
            return;
        m_seen.insert(key);
        const auto place =
            std::upper_bound(m_keys.begin() + std::ptrdiff_t(m_next), m_keys.end(), key,
                             [](const QString *a, const QString *b) { return VariableMatcher::comesBefore(*a, *b); });
        m_keys.insert(place, key);
    }
    const QString *next() { return m_next < m_keys.size() ? m_keys[m_next++] : nullptr; }

private:
    std::vector<const QString *> m_keys;
    std::size_t m_next = 0;
    QSet<const QString *> m_seen;
};

} // namespace

bool VariableMatcher::comesBefore(const QString &a, const QString &b)
{
    if (a.size() != b.size())
        return a.size() > b.size();
    for (qsizetype i = 0; i < a.size(); ++i) {
        const char16_t fa = fold(a.at(i));
        const char16_t fb = fold(b.at(i));
        if (fa != fb)
            return fa < fb;
    }
    return a < b;
}

int VariableMatcher::child(int node, char16_t c) const
{
    for (const auto &[character, index] : m_nodes[std::size_t(node)].children) {
        if (character == c)
            return index;
    }
    return -1;
}

int VariableMatcher::nodeOf(const QString &key) const
{
    int node = 0;
    for (const QChar c : key) {
        node = child(node, fold(c));
        if (node < 0)
            return -1;
    }
    return node;
}

void VariableMatcher::insert(const QString &key)
{
    if (key.isEmpty() || contains(key))
        return;
    int node = 0;
    for (const QChar c : key) {
        const char16_t f = fold(c);
        int next = child(node, f);
        if (next < 0) {
            next = int(m_nodes.size());
            m_nodes[std::size_t(node)].children.emplace_back(f, next);
            m_nodes.emplace_back();
        }
        node = next;
    }
    QStringList &keys = m_nodes[std::size_t(node)].keys;
    keys.insert(std::lower_bound(keys.begin(), keys.end(), key, &VariableMatcher::comesBefore), key);
    const char16_t initial = fold(key.front());
    if (initial < 0x80)
        ++m_asciiInitials[initial];
    ++m_size;
    m_maxKeyLength = std::max(m_maxKeyLength, key.size());
    if (hasSurrogate(key))
        ++m_surrogateKeys;
    m_sortedStale = true;
}

void VariableMatcher::remove(const QString &key)
{
    // The path of the name stays in the tree, empty: names come back as they are typed.
    const int node = nodeOf(key);
    if (key.isEmpty() || node < 0 || !m_nodes[std::size_t(node)].keys.removeOne(key))
        return;
    const char16_t initial = fold(key.front());
    if (initial < 0x80)
        --m_asciiInitials[initial];
    --m_size;
    m_maxLengthStale = true;
    if (hasSurrogate(key))
        --m_surrogateKeys;
    m_sortedStale = true;
    m_patterns.remove(key);
}

void VariableMatcher::clear()
{
    m_nodes.assign(1, Node{});
    m_asciiInitials.fill(0);
    m_size = 0;
    m_surrogateKeys = 0;
    m_maxKeyLength = 0;
    m_maxLengthStale = false;
    m_sortedKeys.clear();
    m_sortedStale = false;
    m_patterns.clear();
}

bool VariableMatcher::contains(const QString &key) const
{
    const int node = nodeOf(key);
    return node >= 0 && m_nodes[std::size_t(node)].keys.contains(key);
}

qsizetype VariableMatcher::maxKeyLength() const
{
    if (m_maxLengthStale) {
        m_maxKeyLength = 0;
        for (const Node &node : m_nodes) {
            for (const QString &key : node.keys)
                m_maxKeyLength = std::max(m_maxKeyLength, key.size());
        }
        m_maxLengthStale = false;
    }
    return m_maxKeyLength;
}

void VariableMatcher::namesIn(const QString &text, qsizetype from, qsizetype to, Boundary boundary,
                              std::vector<Found> &out) const
{
    const bool words = boundary == Boundary::word;
    const qsizetype size = text.size();
    const qsizetype first = std::max<qsizetype>(0, from);
    const qsizetype last = std::min(to, size);
    for (qsizetype start = first; start < last; ++start) {
        // Most characters of a line begin no name at all.
        const char16_t initial = fold(text.at(start));
        if (initial < 0x80 ? m_asciiInitials[initial] == 0 : child(0, initial) < 0)
            continue;
        // Only where a name may begin: no ASCII letter or digit before it for values;
        // for words, a change between word and no word, as the name starts like the text.
        const std::optional<char32_t> before = codePointBefore(text, start);
        if (words ? (before && isWordCharacter(*before)) == isWordCharacter(*codePointAt(text, start))
                  : before && touchesLikeAsciiAlphanumeric(*before))
            continue;
        int node = 0;
        for (qsizetype i = start; i < size; ++i) {
            node = child(node, fold(text.at(i)));
            if (node < 0)
                break;
            const Node &reached = m_nodes[std::size_t(node)];
            if (reached.keys.isEmpty() || !standsAlone(text, start, i + 1, words))
                continue;
            for (const QString &key : reached.keys)
                out.push_back({&key, start});
        }
    }
}

std::vector<qsizetype> VariableMatcher::find(const QString &text, const QString &key, Boundary boundary)
{
    std::vector<qsizetype> starts;
    const qsizetype length = key.size();
    const char16_t first = fold(key.front());
    for (qsizetype at = 0; at + length <= text.size(); ++at) {
        if (fold(text.at(at)) != first)
            continue;
        qsizetype i = 1;
        while (i < length && fold(text.at(at + i)) == fold(key.at(i)))
            ++i;
        if (i == length && standsAlone(text, at, at + length, boundary == Boundary::word)) {
            starts.push_back(at);
            at += length - 1;
        }
    }
    return starts;
}

const QStringList &VariableMatcher::sortedKeys() const
{
    if (m_sortedStale) {
        m_sortedKeys.clear();
        for (const Node &node : m_nodes)
            m_sortedKeys += node.keys;
        std::sort(m_sortedKeys.begin(), m_sortedKeys.end(), &VariableMatcher::comesBefore);
        m_sortedStale = false;
    }
    return m_sortedKeys;
}

const VariableMatcher::Patterns &VariableMatcher::patterns(const QString &key) const
{
    auto it = m_patterns.constFind(key);
    if (it == m_patterns.constEnd()) {
        const QString escaped = QRegularExpression::escape(key);
        Patterns made{
            QRegularExpression(QStringLiteral("(?<![a-zA-Z0-9])") + escaped + QStringLiteral("(?![a-zA-Z0-9])"),
                               QRegularExpression::CaseInsensitiveOption),
            QRegularExpression(QStringLiteral("\\b") + escaped + QStringLiteral("\\b"),
                               QRegularExpression::CaseInsensitiveOption |
                                   QRegularExpression::UseUnicodePropertiesOption),
        };
        it = m_patterns.insert(key, std::move(made));
    }
    return *it;
}

QString VariableMatcher::substitute(const QString &text, const Replacement &replacementFor) const
{
    if (m_size == 0)
        return text;

    if (!scanApplies()) {
        QString working = text;
        for (const QString &key : sortedKeys()) {
            const std::optional<QString> replacement = replacementFor(key);
            if (!replacement)
                continue;
            QString replaced;
            qsizetype copied = 0;
            auto matches = patterns(key).alphanumericBounded.globalMatch(working);
            while (matches.hasNext()) {
                const QRegularExpressionMatch match = matches.next();
                replaced += QStringView(working).mid(copied, match.capturedStart() - copied);
                replaced += *replacement;
                copied = match.capturedEnd();
            }
            if (copied == 0)
                continue;
            replaced += QStringView(working).mid(copied);
            working = replaced;
        }
        return working;
    }

    QHash<const QString *, std::optional<QString>> replacements;
    const auto replacementOf = [&](const QString *key) -> const std::optional<QString> & {
        auto it = replacements.find(key);
        if (it == replacements.end())
            it = replacements.insert(key, replacementFor(*key));
        return *it;
    };
    NameQueue queue;
    const auto enqueue = [&](const std::vector<Found> &found, const QString *after) {
        for (const Found &name : found) {
            if ((!after || comesBefore(*after, *name.key)) && replacementOf(name.key))
                queue.add(name.key);
        }
    };
    std::vector<Found> found;
    namesIn(text, 0, text.size(), Boundary::asciiAlphanumeric, found);
    enqueue(found, nullptr);

    QString working = text;
    const qsizetype reach = maxKeyLength();
    while (const QString *key = queue.next()) {
        const std::vector<qsizetype> starts = find(working, *key, Boundary::asciiAlphanumeric);
        if (starts.empty())
            continue;
        const QString &replacement = *replacementOf(key);
        QString replaced;
        std::vector<TextRange> inserted;
        qsizetype copied = 0;
        for (const qsizetype start : starts) {
            replaced += QStringView(working).mid(copied, start - copied);
            inserted.push_back({replaced.size(), replacement.size()});
            replaced += replacement;
            copied = start + key->size();
        }
        replaced += QStringView(working).mid(copied);
        working = std::move(replaced);
        // A value may complete a name that comes later ("item 2" after "x" put in "2"):
        // the text around each value is looked at again.
        found.clear();
        for (const TextRange &span : inserted)
            namesIn(working, span.location - reach, span.end() + 1, Boundary::asciiAlphanumeric, found);
        enqueue(found, key);
    }
    return working;
}

QStringList VariableMatcher::usedKeys(const QString &text, const Eligible &eligible) const
{
    QStringList used;
    if (m_size == 0)
        return used;

    if (!scanApplies()) {
        QString working = text;
        for (const QString &key : sortedKeys()) {
            if (!eligible(key))
                continue;
            auto matches = patterns(key).wordBounded.globalMatch(working);
            std::vector<std::pair<qsizetype, qsizetype>> spans;
            while (matches.hasNext()) {
                const QRegularExpressionMatch match = matches.next();
                spans.emplace_back(match.capturedStart(), match.capturedLength());
            }
            // Blanks over what this name claimed, so that no text counts twice.
            for (const auto &[start, length] : spans)
                working.replace(start, length, QString(length, u' '));
            if (!spans.empty())
                used << key;
        }
        return used;
    }

    // Blanks over a name never bring another one to light: a name that could span them
    // is longer, and so was tried before; and where a name ends in a letter, the one
    // beside it starts with no letter, which blanks don't change. So each name is found
    // where it occurs in the text as it is, minus what blanks have taken from it.
    std::vector<Found> found;
    namesIn(text, 0, text.size(), Boundary::word, found);
    std::erase_if(found, [&](const Found &name) { return !eligible(*name.key); });
    std::stable_sort(found.begin(), found.end(),
                     [](const Found &a, const Found &b) { return a.key != b.key && comesBefore(*a.key, *b.key); });
    QString working = text;
    std::vector<bool> blanked(std::size_t(text.size()), false);
    for (auto group = found.begin(); group != found.end();) {
        const QString *key = group->key;
        const auto end = std::find_if(group, found.end(), [&](const Found &name) { return name.key != key; });
        std::vector<qsizetype> starts;
        qsizetype free = 0;
        for (auto name = group; name != end; ++name) {
            const qsizetype stop = name->start + key->size();
            const bool intact =
                std::none_of(blanked.begin() + name->start, blanked.begin() + stop, [](bool taken) { return taken; });
            if (name->start >= free && intact && standsAlone(working, name->start, stop, true)) {
                starts.push_back(name->start);
                free = stop;
            }
        }
        if (!starts.empty()) {
            used << *key;
            for (const qsizetype start : starts) {
                std::fill_n(working.begin() + start, key->size(), u' ');
                std::fill_n(blanked.begin() + start, key->size(), true);
            }
        }
        group = end;
    }
    return used;
}

std::vector<TextRange> VariableMatcher::occurrences(const QString &text, const Eligible &eligible) const
{
    std::vector<TextRange> ranges;
    if (m_size == 0)
        return ranges;

    if (!scanApplies()) {
        for (const QString &key : sortedKeys()) {
            if (!eligible(key))
                continue;
            auto matches = patterns(key).wordBounded.globalMatch(text);
            while (matches.hasNext()) {
                const QRegularExpressionMatch match = matches.next();
                ranges.push_back({match.capturedStart(), match.capturedLength()});
            }
        }
        return ranges;
    }

    std::vector<Found> found;
    namesIn(text, 0, text.size(), Boundary::word, found);
    // Each name is looked for on its own from left to right, so its own occurrences
    // don't overlap; those of different names may.
    std::stable_sort(found.begin(), found.end(), [](const Found &a, const Found &b) { return a.key < b.key; });
    const QString *key = nullptr;
    bool counts = false;
    qsizetype free = 0;
    for (const Found &name : found) {
        if (name.key != key) {
            key = name.key;
            counts = eligible(*key);
            free = 0;
        }
        if (!counts || name.start < free)
            continue;
        ranges.push_back({name.start, key->size()});
        free = name.start + key->size();
    }
    return ranges;
}

} // namespace scrivlet
