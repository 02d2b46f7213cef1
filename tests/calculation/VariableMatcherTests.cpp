#include "calculation/VariableMatcher.h"

#include "calculation/QStringPrinter.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

using namespace scrivlet;

namespace {

// The plain reading of how variables are found, one regular expression per name, kept
// here to hold the matcher's scan against.
class OneNameAtATime {
public:
    explicit OneNameAtATime(QStringList keys) : m_keys(std::move(keys))
    {
        std::sort(m_keys.begin(), m_keys.end(), [](const QString &a, const QString &b) {
            if (a.size() != b.size())
                return a.size() > b.size();
            const QString fa = a.toCaseFolded();
            const QString fb = b.toCaseFolded();
            return fa != fb ? fa < fb : a < b;
        });
    }

    QString substitute(QString text, const VariableMatcher::Replacement &replacementFor) const
    {
        for (const QString &key : m_keys) {
            if (const auto replacement = replacementFor(key)) {
                const QRegularExpression pattern(u"(?<![a-zA-Z0-9])" % QRegularExpression::escape(key) %
                                                     u"(?![a-zA-Z0-9])",
                                                 QRegularExpression::CaseInsensitiveOption);
                text.replace(pattern, *replacement);
            }
        }
        return text;
    }

    QStringList usedKeys(QString text, const VariableMatcher::Eligible &eligible) const
    {
        QStringList used;
        for (const QString &key : m_keys) {
            if (!eligible(key))
                continue;
            auto matches = wordPattern(key).globalMatch(text);
            bool found = false;
            while (matches.hasNext()) {
                const auto match = matches.next();
                text.replace(match.capturedStart(), match.capturedLength(), QString(match.capturedLength(), u' '));
                found = true;
            }
            if (found)
                used << key;
        }
        return used;
    }

    std::vector<bool> marked(const QString &text, const VariableMatcher::Eligible &eligible) const
    {
        std::vector<bool> marks(size_t(text.size()), false);
        for (const QString &key : m_keys) {
            if (!eligible(key))
                continue;
            auto matches = wordPattern(key).globalMatch(text);
            while (matches.hasNext()) {
                const auto match = matches.next();
                std::fill_n(marks.begin() + match.capturedStart(), match.capturedLength(), true);
            }
        }
        return marks;
    }

private:
    static QRegularExpression wordPattern(const QString &key)
    {
        return QRegularExpression(u"\\b" % QRegularExpression::escape(key) % u"\\b",
                                  QRegularExpression::CaseInsensitiveOption |
                                      QRegularExpression::UseUnicodePropertiesOption);
    }

    QStringList m_keys;
};

std::vector<bool> markedBy(const std::vector<TextRange> &ranges, qsizetype size)
{
    std::vector<bool> marks(size_t(size), false);
    for (const TextRange &range : ranges)
        std::fill_n(marks.begin() + range.location, range.length, true);
    return marks;
}

VariableMatcher matcherOf(const QStringList &keys)
{
    VariableMatcher matcher;
    for (const QString &key : keys)
        matcher.insert(key);
    return matcher;
}

TEST(VariableMatcher, ALongerNameClaimsItsTextBeforeANameInsideIt)
{
    const QStringList keys{QStringLiteral("guest"), QStringLiteral("cost per guest"), QStringLiteral("per")};
    const VariableMatcher matcher = matcherOf(keys);
    const auto values = [](const QString &key) -> std::optional<QString> {
        return key == u"guest" ? QStringLiteral("5") : key == u"per" ? QStringLiteral("7") : QStringLiteral("34");
    };
    EXPECT_EQ(matcher.substitute(QStringLiteral("Cost Per Guest * guest"), values), u"34 * 5");
    const auto all = [](const QString &) { return true; };
    EXPECT_EQ(matcher.usedKeys(QStringLiteral("cost per guest * guest"), all),
              (QStringList{QStringLiteral("cost per guest"), QStringLiteral("guest")}));
    EXPECT_EQ(matcher.usedKeys(QStringLiteral("cost per guest"), all), QStringList{QStringLiteral("cost per guest")});
    // A name that may not be used here leaves its text to the shorter ones.
    const auto noLongName = [&](const QString &key) -> std::optional<QString> {
        return key == u"cost per guest" ? std::nullopt : values(key);
    };
    EXPECT_EQ(matcher.substitute(QStringLiteral("cost per guest"), noLongName), u"cost 7 5");
    EXPECT_TRUE(VariableMatcher::comesBefore(QStringLiteral("cost per guest"), QStringLiteral("guest")));
    EXPECT_FALSE(VariableMatcher::comesBefore(QStringLiteral("guest"), QStringLiteral("cost per guest")));
}

TEST(VariableMatcher, ANameCountsOnlyAsAWholeWord)
{
    const VariableMatcher matcher = matcherOf({QStringLiteral("guests")});
    const auto five = [](const QString &) -> std::optional<QString> { return QStringLiteral("5"); };
    EXPECT_EQ(matcher.substitute(QStringLiteral("guests2 + GUESTS+_guests"), five), u"guests2 + 5+_5");
    // Uses and colours go by word boundaries, where "_" is part of a word.
    EXPECT_EQ(matcher.usedKeys(QStringLiteral("_guests guests2"), [](const QString &) { return true; }), QStringList());
    const auto ranges = matcher.occurrences(QStringLiteral("(guests)*éguests"), [](const QString &) { return true; });
    ASSERT_EQ(ranges.size(), 1u);
    EXPECT_EQ(ranges.front(), (TextRange{1, 6}));
}

// Random lines and names, some of them unusual, against the plain reading: the scan
// must give the same text, the same uses and the same marks.
TEST(VariableMatcher, AgreesWithOneNameAtATimeOnRandomLines)
{
    const QStringList usual{QStringLiteral("a"),      QStringLiteral("b"),         QStringLiteral("x1"),
                            QStringLiteral("guest"),  QStringLiteral("guests"),    QStringLiteral("cost per guest"),
                            QStringLiteral("per"),    QStringLiteral("tax_rate"),  QStringLiteral("rate"),
                            QStringLiteral("q1"),     QStringLiteral("Q1"),        QStringLiteral("a b"),
                            QStringLiteral("b a"),    QStringLiteral("caf\u00e9"), QStringLiteral("ab"),
                            QStringLiteral("item 2"), QStringLiteral("cost 5"),    QStringLiteral("x 1")};
    // Names that a value put in for another name can complete, or that blanks can.
    const QStringList unusual{QStringLiteral("2nd"),   QStringLiteral("a-b"),        QStringLiteral("#n"),
                              QStringLiteral("a  b"),  QStringLiteral("_u"),         QStringLiteral("\u00e9"),
                              QStringLiteral("1,234"), QStringLiteral("5.0"),        QStringLiteral("$1"),
                              QStringLiteral("k"),     QStringLiteral("\U0001D400x")};
    const QStringList fillers{
        QStringLiteral(" "), QStringLiteral(" + "), QStringLiteral("*"),      QStringLiteral("("),
        QStringLiteral(")"), QStringLiteral("_"),   QStringLiteral("\u00e9"), QStringLiteral("."),
        QStringLiteral(","), QStringLiteral("$"),   QStringLiteral("-"),      QStringLiteral("12"),
        QStringLiteral("3"), QStringLiteral("x"),   QStringLiteral("\u212A"), QStringLiteral("\u017F")};
    const QStringList values{QStringLiteral("5.0000000000000000"),  QStringLiteral("$1,234.5000000000000000"),
                             QStringLiteral("-3.0000000000000000"), QStringLiteral("€0.2500000000000000"),
                             QStringLiteral("2.0000000000000000"),  QStringLiteral("1.0000000000000000")};

    std::mt19937 random(20240611);
    const auto pick = [&](const QStringList &list) { return list.at(qsizetype(random() % list.size())); };
    int changed = 0;
    for (int round = 0; round < 4000; ++round) {
        QStringList keys;
        const int count = 1 + int(random() % 6);
        for (int i = 0; i < count; ++i) {
            const QString key = (random() % 8 == 0) ? pick(unusual) : pick(usual);
            if (!keys.contains(key))
                keys << key;
        }
        QString text;
        const int pieces = 1 + int(random() % 12);
        for (int i = 0; i < pieces; ++i) {
            QString piece = (random() % 2 == 0) ? pick(keys) : pick(fillers);
            for (QChar &c : piece) {
                if (random() % 3 == 0)
                    c = c.toUpper();
            }
            text += piece;
        }
        std::map<QString, std::optional<QString>> replacements;
        for (const QString &key : keys)
            replacements[key] = random() % 4 == 0 ? std::nullopt : std::optional<QString>(pick(values));
        const auto replacementFor = [&](const QString &key) { return replacements.at(key); };
        const auto eligible = [&](const QString &key) { return replacements.at(key).has_value(); };

        const OneNameAtATime plain(keys);
        VariableMatcher matcher = matcherOf(keys);
        for (const bool scan : {true, false}) {
            matcher.setScanEnabled(scan);
            const std::string context = "keys " + keys.join(u'|').toStdString() + " text " + text.toStdString();
            ASSERT_EQ(matcher.substitute(text, replacementFor), plain.substitute(text, replacementFor)) << context;
            ASSERT_EQ(matcher.usedKeys(text, eligible), plain.usedKeys(text, eligible)) << context;
            ASSERT_EQ(markedBy(matcher.occurrences(text, eligible), text.size()), plain.marked(text, eligible))
                << context;
        }
        changed += matcher.substitute(text, replacementFor) != text;
    }
    // The lines must have given the names something to do.
    EXPECT_GT(changed, 1000);
}

} // namespace
