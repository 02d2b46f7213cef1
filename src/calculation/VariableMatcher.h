#pragma once

#include "platform/TextRange.h"

#include <QHash>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <optional>
#include <vector>

namespace scrivlet {

// Finds the variables of a math note in the text of its lines: to put their values in,
// to note which lines use which variable, and to colour their uses.
//
// A name is found case-insensitively wherever it stands as a whole, and the names are
// tried one after the other in the order of `comesBefore`, a longer one first: in
// "cost per guest * guest" the long name takes its own text before "guest" can claim a
// part of it. Every keystroke in a math note looks for every variable on every line, so
// the names are not tried one by one: one pass over the line, walking a tree of the
// names' characters, finds those that occur at all, and only these are then tried in
// their order. Where a value put in for one name could complete another ("item x"
// becomes "item 2.0000000000000000", and a name "item 2" appears), the text around the
// value is looked at again.
class VariableMatcher final {
public:
    // Replacement text for a key found in the text, or nothing when the key may not be
    // used there (a variable is only used below its definition).
    using Replacement = std::function<std::optional<QString>(const QString &key)>;
    using Eligible = std::function<bool(const QString &key)>;

    // The order in which names are tried: longer first, so that a name containing
    // another one comes before it; then by the case-folded name, then as written.
    static bool comesBefore(const QString &a, const QString &b);

    void insert(const QString &key);
    void remove(const QString &key);
    void clear();
    bool contains(const QString &key) const;
    qsizetype size() const { return m_size; }
    // With the scan off every name is tried on its own with a regular expression: the
    // plain way, which the scan must agree with.
    void setScanEnabled(bool enabled) { m_scanEnabled = enabled; }

    // Each name in turn puts its replacement over its every occurrence. A name counts
    // where no ASCII letter or digit touches it on either side: "guests" is found in
    // "guests+3" and "_guests", not in "guests2".
    QString substitute(const QString &text, const Replacement &replacementFor) const;

    // The names that `eligible` accepts and that occur in `text` as whole words, in the
    // order they are tried; text claimed by one name is not looked at again for the next.
    QStringList usedKeys(const QString &text, const Eligible &eligible) const;

    // Every occurrence, as a whole word, of each name that `eligible` accepts.
    std::vector<TextRange> occurrences(const QString &text, const Eligible &eligible) const;

private:
    enum class Boundary { asciiAlphanumeric, word };
    // The names as a tree of their case-folded characters, so that one walk from a
    // position of the line meets every name that starts there.
    struct Node {
        std::vector<std::pair<char16_t, int>> children;
        QStringList keys; // the names that end here, in the order they are tried
    };
    struct Patterns {
        QRegularExpression alphanumericBounded;
        QRegularExpression wordBounded;
    };

    bool scanApplies() const { return m_scanEnabled && m_surrogateKeys == 0; }
    qsizetype maxKeyLength() const;
    struct Found {
        const QString *key;
        qsizetype start;
    };
    // Every occurrence of every name in `text` that starts in [from, to) and stands
    // alone there, overlapping ones included.
    void namesIn(const QString &text, qsizetype from, qsizetype to, Boundary boundary, std::vector<Found> &out) const;
    // Where `key` occurs in `text`, from left to right without overlaps, as a regular
    // expression finds it.
    static std::vector<qsizetype> find(const QString &text, const QString &key, Boundary boundary);
    const QStringList &sortedKeys() const;
    const Patterns &patterns(const QString &key) const;

    int child(int node, char16_t c) const;
    // The node where `key` ends, or -1.
    int nodeOf(const QString &key) const;

    std::vector<Node> m_nodes{Node{}};
    // How many names begin with each ASCII character, case-folded.
    std::array<int, 128> m_asciiInitials{};
    qsizetype m_size = 0;
    // Names with characters outside the Basic Multilingual Plane, which a case-insensitive
    // match pairs up in ways the scan doesn't know.
    int m_surrogateKeys = 0;
    bool m_scanEnabled = true;
    mutable qsizetype m_maxKeyLength = 0;
    mutable bool m_maxLengthStale = false;
    mutable QStringList m_sortedKeys;
    mutable bool m_sortedStale = false;
    mutable QHash<QString, Patterns> m_patterns;
};

} // namespace scrivlet
