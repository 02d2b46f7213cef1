#include "calculation/ConversionService.h"
#include "calculation/NumberFormat.h"
#include "calculation/NumberLocale.h"
#include "keywords/EditorContext.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "keywords/NoteEditorSession.h"
#include "notes/NoteViewModel.h"
#include "platform/AttributedText.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MathPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"

#include "calculation/QStringPrinter.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <vector>

namespace scrivlet {
namespace {

// Kilometres to metres and nothing else: enough to see a math line hand a conversion
// over and store what comes back.
class KilometreConversion final : public ConversionService {
public:
    bool isConversionRequest(const QString &text, bool allowUnitless) const override
    {
        askedUnitless.push_back(allowUnitless);
        return metres(text).has_value();
    }
    QString processConversion(const QString &text, int decimals) const override
    {
        const auto value = metres(text);
        return value ? *formatNumber(*value, decimals, {}) + QStringLiteral(" m") : QStringLiteral("N/A");
    }
    std::optional<double> convertedValue(const QString &text) const override { return metres(text); }

    mutable std::vector<bool> askedUnitless;

private:
    static std::optional<double> metres(const QString &text)
    {
        static const QRegularExpression pattern(QStringLiteral("^\\s*([0-9.]+)\\s*km to m\\s*$"));
        const auto match = pattern.match(text);
        return match.hasMatch() ? std::optional<double>(match.captured(1).toDouble() * 1000) : std::nullopt;
    }
};

// One math note open in an editor, as the app holds it, in an American locale unless
// a test says otherwise.
class MathNoteTest : public ::testing::Test {
protected:
    struct Mark {
        QString text;
        QString subtag;
        QString color;
        friend bool operator==(const Mark &, const Mark &) = default;
        friend void PrintTo(const Mark &m, std::ostream *os)
        {
            *os << '{' << m.text.toStdString() << ", " << m.subtag.toStdString() << ", " << m.color.toStdString()
                << '}';
        }
    };

    MathNoteTest() { NumberLocale::setCurrent(*NumberLocale::fromName(QStringLiteral("en_US"))); }
    ~MathNoteTest() override { NumberLocale::setCurrent(m_savedLocale); }

    // Opens `text` in a fresh editor: a full pass, as when a note is shown.
    QString open(const QString &text, bool scan = true)
    {
        session.reset();
        Note note;
        note.content = text;
        noteViewModel = std::make_unique<NoteViewModel>(std::move(note));
        storage = std::make_unique<AttributedText>();
        session = std::make_unique<NoteEditorSession>(*storage, *noteViewModel, context, nullptr);
        session->processMath().mathManager().setScanEnabled(scan);
        session->open();
        return storage->string();
    }

    // Types `text` at `at` as a keystroke does.
    QString type(qsizetype at, const QString &text)
    {
        storage->setSelectedRange({at, 0});
        session->willChangeText({at, 0}, text, UserActionType::keydown);
        storage->type(text);
        return storage->string();
    }

    // A backward delete of the character before `at`.
    QString backspace(qsizetype at)
    {
        storage->setSelectedRange({at - 1, 1});
        session->willChangeText({at - 1, 1}, {}, UserActionType::delete_);
        storage->type({});
        return storage->string();
    }

    qsizetype endOfLine(int line) const
    {
        const QString text = storage->string();
        qsizetype at = 0;
        for (int i = 0; i < line; ++i)
            at = text.indexOf(u'\n', at) + 1;
        const qsizetype feed = text.indexOf(u'\n', at);
        return feed < 0 ? text.size() : feed;
    }

    std::vector<Mark> marks() const
    {
        std::vector<Mark> found;
        storage->enumerateRuns({0, storage->length()}, [&](const TextRange &range, const TextAttributes &a) {
            if (a.custom && a.custom->tag == u"math")
                found.push_back({storage->substring(range), a.custom->subtag, a.foreground.value_or(QString())});
        });
        return found;
    }

    MathManager &variables() { return session->processMath().mathManager(); }

    MemorySettingsStore store;
    NotificationBus bus;
    ManualClock clock;
    KeywordPreferences keywordPreferences{store, &bus};
    KeywordDefinitionsContainer keywords{keywordPreferences};
    VisualPreferences visualPreferences{store};
    MiscPreferences miscPreferences{store};
    MathPreferences mathPreferences{store};
    KilometreConversion conversion;
    EditorContext context{keywords, visualPreferences, miscPreferences, bus, clock, &mathPreferences, &conversion};

    std::vector<QVariantMap> pills;
    std::vector<QString> dismissed;
    NotificationBus::Subscription pillSubscription = bus.subscribe(
        QStringLiteral("MessagePillNotification"), [this](const QVariantMap &payload) { pills.push_back(payload); });
    NotificationBus::Subscription dismissSubscription =
        bus.subscribe(QStringLiteral("DismissMessagePillNotification"), [this](const QVariantMap &payload) {
            dismissed.push_back(payload.value(QStringLiteral("message")).toString());
        });

    std::unique_ptr<NoteViewModel> noteViewModel;
    std::unique_ptr<AttributedText> storage;
    std::unique_ptr<NoteEditorSession> session;

private:
    NumberLocale m_savedLocale = NumberLocale::current();
};

struct LineCase {
    const char *name;
    QString note;
    QString expected;
};

class MathLines : public MathNoteTest, public ::testing::WithParamInterface<LineCase> {};

TEST_P(MathLines, WritesWhatAUserExpects)
{
    EXPECT_EQ(open(GetParam().note), GetParam().expected);
    // A second full pass over its own output changes nothing.
    EXPECT_EQ(open(GetParam().expected), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Results, MathLines,
    ::testing::Values(
        LineCase{"Spaced", QStringLiteral("math\n82 + 55 ="), QStringLiteral("math\n82 + 55 = 137.00")},
        LineCase{"Tight", QStringLiteral("math\n82+55="), QStringLiteral("math\n82+55= 137.00")},
        LineCase{"OldResultRenewed", QStringLiteral("math\n1 + 1 = 5.00 and more"),
                 QStringLiteral("math\n1 + 1 = 2.00")},
        LineCase{"DivideByZero", QStringLiteral("math\n1/0 ="), QStringLiteral("math\n1/0 = n/a")},
        LineCase{"TwoNumbersSideBySide", QStringLiteral("math\n10 20 ="), QStringLiteral("math\n10 20 = n/a")},
        LineCase{"Grouping", QStringLiteral("math\n1000 * 1000 ="), QStringLiteral("math\n1000 * 1000 = 1,000,000.00")},
        LineCase{"TinyShowsItsDigits", QStringLiteral("math\n1/1000 ="), QStringLiteral("math\n1/1000 = 0.00100")},
        LineCase{"Percent", QStringLiteral("math\n200 + 10% ="), QStringLiteral("math\n200 + 10% = 220.00")},
        LineCase{"NoEqualsNoResult", QStringLiteral("math\n1 + 1"), QStringLiteral("math\n1 + 1")},
        LineCase{"Comment", QStringLiteral("math\n  // 1 + 1 ="), QStringLiteral("math\n  // 1 + 1 =")},
        LineCase{"Link", QStringLiteral("math\nexample.com ="), QStringLiteral("math\nexample.com =")},
        LineCase{"LinkWithPath", QStringLiteral("math\na.example.org/x?y=1"),
                 QStringLiteral("math\na.example.org/x?y=1")},
        LineCase{"LinkWithScheme", QStringLiteral("math\nhttps://a.example.org/x?y=1"),
                 QStringLiteral("math\nhttps://a.example.org/x?y=1")},
        LineCase{"LinkInADefinition", QStringLiteral("math\nsite: example.com ="),
                 QStringLiteral("math\nsite: example.com =")},
        LineCase{"FirstLineIsTheKeyword", QStringLiteral("math: 1+1=\n2+2="), QStringLiteral("math: 1+1=\n2+2= 4.00")},
        LineCase{"OneCurrency", QStringLiteral("math\n$5 + $3 ="), QStringLiteral("math\n$5 + $3 = $8.00")},
        LineCase{"TwoCurrenciesShowNone", QStringLiteral("math\n$5 + €3 ="), QStringLiteral("math\n$5 + €3 = 8.00")},
        LineCase{"VariableBelowItsUse", QStringLiteral("math\ny + 1 =\ny: 2"),
                 QStringLiteral("math\ny + 1 = 1.00\ny: 2")},
        LineCase{"Variable", QStringLiteral("math\nguests : 5\nguests + 3 ="),
                 QStringLiteral("math\nguests : 5\nguests + 3 = 8.00")},
        LineCase{"VariableKeepsItsCurrency", QStringLiteral("math\nprice: $5\nprice * 2 ="),
                 QStringLiteral("math\nprice: $5\nprice * 2 = $10.00")},
        LineCase{"DefinitionWithResult", QStringLiteral("math\na: 2 =\na * 3 ="),
                 QStringLiteral("math\na: 2 = 2.00\na * 3 = 6.00")},
        LineCase{"DefinitionFromVariables", QStringLiteral("math\nrate: 23.75\nday: rate * 8 =\nmonth: day * 20 ="),
                 QStringLiteral("math\nrate: 23.75\nday: rate * 8 = 190.00\nmonth: day * 20 = 3,800.00")},
        LineCase{"VariableKeepsItsPrecision", QStringLiteral("math\nthird: 1/3\nthird * 3 ="),
                 QStringLiteral("math\nthird: 1/3\nthird * 3 = 1.00")},
        LineCase{"UnreadableDefinitionDefinesNothing", QStringLiteral("math\nz: 1/0\nz + 1 ="),
                 QStringLiteral("math\nz: 1/0\nz + 1 = 1.00")},
        LineCase{"DuplicateKeepsTheFirst", QStringLiteral("math\na: 1\na: 2\na + 1 ="),
                 QStringLiteral("math\na: 1\na: 2\na + 1 = 2.00")},
        LineCase{"NameWithEquals", QStringLiteral("math\nb = 10:30"), QStringLiteral("math\nb = 10:30")},
        LineCase{"CarriageReturnsStay", QStringLiteral("math\r\n1+1=\r\n2+2="),
                 QStringLiteral("math\r\n1+1= 2.00\r\n2+2= 4.00")},
        LineCase{"Conversion", QStringLiteral("math\n2 km to m ="), QStringLiteral("math\n2 km to m = 2,000.00 m")},
        LineCase{"ConvertedVariable", QStringLiteral("math\ntrip: 2 km to m =\ntrip / 4 ="),
                 QStringLiteral("math\ntrip: 2 km to m = 2,000.00 m\ntrip / 4 = 500.00")}),
    [](const ::testing::TestParamInfo<LineCase> &info) { return std::string(info.param.name); });

TEST_F(MathNoteTest, DecimalsAndGroupingFollowThePreferences)
{
    mathPreferences.setNumberOfDecimalPoints(0);
    EXPECT_EQ(open(QStringLiteral("math\n82 + 55 =\n1/3 =")), u"math\n82 + 55 = 137\n1/3 = 0");
    mathPreferences.setNumberOfDecimalPoints(4);
    mathPreferences.setUseThousandSeparatorsStorage(false);
    EXPECT_EQ(open(QStringLiteral("math\n1000 * 1000 =")), u"math\n1000 * 1000 = 1000000.0000");
    // A preference change reworks the open note.
    mathPreferences.setNumberOfDecimalPoints(1);
    bus.post(QStringLiteral("mathPreferencesChanged"));
    EXPECT_EQ(storage->string(), u"math\n1000 * 1000 = 1000000.0");
}

TEST_F(MathNoteTest, GermanNumbersReadAndWriteWithTheirOwnSeparators)
{
    NumberLocale::setCurrent(*NumberLocale::fromName(QStringLiteral("de_DE")));
    EXPECT_EQ(open(QStringLiteral("math\n1,5 + 1 =\npreis: 1.250,5\npreis * 2 =")),
              u"math\n1,5 + 1 = 2,50\npreis: 1.250,5\npreis * 2 = 2.501,00");
}

TEST_F(MathNoteTest, DefinitionsAskForConversionWithoutBareAmounts)
{
    open(QStringLiteral("math\nd: 3 km to m\n4 ="));
    EXPECT_EQ(conversion.askedUnitless, (std::vector<bool>{false, true}));
    EXPECT_EQ(variables().variable(QStringLiteral("d"))->value, u"3000");
}

TEST_F(MathNoteTest, ResultsFollowEveryEditAbove)
{
    open(QStringLiteral("math\nx: 2\nx * 10 =\ny: x + 1\ny * x ="));
    EXPECT_EQ(storage->string(), u"math\nx: 2\nx * 10 = 20.00\ny: x + 1\ny * x = 6.00");
    type(endOfLine(1), QStringLiteral("5"));
    EXPECT_EQ(storage->string(), u"math\nx: 25\nx * 10 = 250.00\ny: x + 1\ny * x = 650.00");
    backspace(endOfLine(1));
    EXPECT_EQ(storage->string(), u"math\nx: 2\nx * 10 = 20.00\ny: x + 1\ny * x = 6.00");
    // Renaming the variable takes it away from the lines that used it.
    type(5, QStringLiteral("w"));
    EXPECT_EQ(storage->string(), u"math\nwx: 2\nx * 10 = n/a\ny: x + 1\ny * x = n/a");
    EXPECT_EQ(variables().variable(QStringLiteral("x")), nullptr);
    EXPECT_EQ(variables().variable(QStringLiteral("wx"))->value, u"2");
}

TEST_F(MathNoteTest, TypingInAResultRenewsItAndDeletingTheEqualsLeavesTheText)
{
    open(QStringLiteral("math\n6 * 7 ="));
    EXPECT_EQ(type(endOfLine(1), QStringLiteral("9")), u"math\n6 * 7 = 42.00");
    EXPECT_EQ(marks().back().subtag, u"calculatedFieldHighlight");
    // Without its "=" the line keeps its old result as plain text.
    const qsizetype equals = storage->string().indexOf(u'=');
    EXPECT_EQ(backspace(equals + 1), u"math\n6 * 7  42.00");
    EXPECT_TRUE(marks().empty());
}

TEST_F(MathNoteTest, DuplicateDefinitionsRaiseAPillUntilTheyAreGone)
{
    open(QStringLiteral("math\na: 1\na: 2\nb: 3\nb: 4\na + b ="));
    EXPECT_EQ(storage->string(), u"math\na: 1\na: 2\nb: 3\nb: 4\na + b = 4.00");
    ASSERT_EQ(pills.size(), 1u);
    EXPECT_EQ(pills.back().value(QStringLiteral("message")).toString(),
              u"Variables cannot be defined multiple times: a, b");
    EXPECT_EQ(pills.back().value(QStringLiteral("type")).toString(), u"error");
    EXPECT_TRUE(pills.back().value(QStringLiteral("persistent")).toBool());
    EXPECT_TRUE(dismissed.empty());
    EXPECT_EQ(variables().duplicateVariables(),
              (std::map<int, QString>{{3, QStringLiteral("a")}, {5, QStringLiteral("b")}}));

    // Renaming the second definitions ends the duplicates and the pill.
    type(storage->string().indexOf(QStringLiteral("a: 2")), QStringLiteral("c"));
    EXPECT_EQ(pills.back().value(QStringLiteral("message")).toString(),
              u"Variables cannot be defined multiple times: b");
    type(storage->string().indexOf(QStringLiteral("b: 4")), QStringLiteral("d"));
    EXPECT_TRUE(variables().duplicateVariables().empty());
    EXPECT_EQ(pills.size(), 2u);
    EXPECT_EQ(dismissed, std::vector<QString>{QStringLiteral("Variables cannot be defined multiple times")});
}

TEST_F(MathNoteTest, MarksShowResultsDefinitionsAndUses)
{
    // "price_tag" takes the value of price, but isn't coloured as its use: a name is
    // put in wherever no letter or digit touches it, coloured only as a whole word.
    open(QStringLiteral("math\nprice: $5\nprice * 2 =\n// price\nPRICE+price_tag ="));
    const std::vector<Mark> expected{
        {QStringLiteral("price"), QStringLiteral("definedVariableHighlight"), QStringLiteral("accent1Secondary")},
        {QStringLiteral(":"), QStringLiteral("definedVariableHighlight"), QStringLiteral("accent2Main")},
        {QStringLiteral("price"), QStringLiteral("usedVariableHighlight"), QStringLiteral("accent1Secondary")},
        {QStringLiteral(" $10.00"), QStringLiteral("calculatedFieldHighlight"), QStringLiteral("accent3Main")},
        {QStringLiteral("PRICE"), QStringLiteral("usedVariableHighlight"), QStringLiteral("accent1Secondary")},
        {QStringLiteral(" $10.00"), QStringLiteral("calculatedFieldHighlight"), QStringLiteral("accent3Main")},
    };
    EXPECT_EQ(marks(), expected);
    const TextAttributes result = storage->attributesAt(storage->string().indexOf(u"$10"));
    ASSERT_TRUE(result.custom);
    EXPECT_EQ(result.custom->color, u"accent3Main");

    // A value that can't be read defines nothing: its marks go, and the text under them
    // takes the plain colour again.
    type(storage->string().indexOf(u'\n', 5), QStringLiteral("x"));
    EXPECT_EQ(storage->string(), u"math\nprice: $5x\nprice * 2 = n/a\n// price\nPRICE+price_tag = n/a");
    const TextAttributes name = storage->attributesAt(5);
    EXPECT_FALSE(name.custom);
    EXPECT_EQ(name.foreground, u"typeMain");
    EXPECT_EQ(marks().size(), 2u);
}

TEST_F(MathNoteTest, VariableTablesTrackDefinitionsAndUses)
{
    open(QStringLiteral("math\na: 1\nb: 2\na + b =\na * 2 =\n5 ="));
    const MathManager &tables = variables();
    EXPECT_EQ(tables.storedVariablesReverseIndex(),
              (std::map<int, QString>{{2, QStringLiteral("a")}, {3, QStringLiteral("b")}}));
    EXPECT_EQ(tables.variableUseIndex(),
              (std::map<QString, std::vector<int>>{{QStringLiteral("a"), {4, 5}}, {QStringLiteral("b"), {4}}}));
    EXPECT_EQ(tables.variableUseReverseIndex().at(4), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));

    // A line that stops using a variable leaves its lists; a variable's removal takes
    // its uses with it.
    type(storage->string().indexOf(QStringLiteral("a * 2")), QStringLiteral("3"));
    EXPECT_EQ(tables.variableUseIndex().at(QStringLiteral("a")), std::vector<int>{4});
    EXPECT_FALSE(tables.variableUseReverseIndex().contains(5));
    type(storage->string().indexOf(QStringLiteral("b: 2")), QStringLiteral("// "));
    EXPECT_TRUE(tables.variable(QStringLiteral("b"))) << "a comment keeps what it defined until a full pass";
    storage->setSelectedRange({0, 0});
    type(4, QStringLiteral("\n"));
    EXPECT_FALSE(tables.variable(QStringLiteral("b")));
    // "3a" is no use of a: a digit touches it.
    EXPECT_EQ(tables.variableUseIndex(), (std::map<QString, std::vector<int>>{{QStringLiteral("a"), {5}}}));
}

TEST_F(MathNoteTest, AHundredThousandCharacterLineStillGetsAnAnswer)
{
    QString line;
    while (line.size() < 100000)
        line += QStringLiteral("guests + 1 + ");
    // Far past what the engine nests: the line shows that it has no value, and every
    // use of the variable on it is still marked.
    const QString text = open(u"math\nguests: 2\n" % line % u"0 =");
    EXPECT_EQ(text, u"math\nguests: 2\n" % line % u"0 = n/a");
    const auto found = marks();
    EXPECT_EQ(
        std::count_if(found.begin(), found.end(), [](const Mark &m) { return m.subtag == u"usedVariableHighlight"; }),
        line.count(QStringLiteral("guests")));
}

// The typing path recalculates the edited line first and keeps the variables it has;
// the full pass starts over from the top. For everything a keystroke in a value or an
// expression can do, both must end with the same text and the same marks, with names
// found by the scan or one by one.
TEST_F(MathNoteTest, TypingGivesWhatAFullPassGives)
{
    const QStringList names{
        QStringLiteral("a"),     QStringLiteral("b"),  QStringLiteral("guests"), QStringLiteral("cost per guest"),
        QStringLiteral("guest"), QStringLiteral("q1"), QStringLiteral("Q1"),     QStringLiteral("tax_rate"),
        QStringLiteral("2nd")};
    const QStringList pieces{QStringLiteral("1"),  QStringLiteral("2.5"), QStringLiteral(" + "),
                             QStringLiteral("*"),  QStringLiteral("$3"),  QStringLiteral("€"),
                             QStringLiteral("/0"), QStringLiteral("%"),   QStringLiteral(" "),
                             QStringLiteral("("),  QStringLiteral(")"),   QStringLiteral("apples")};
    std::mt19937 random(7);
    const auto pick = [&](const QStringList &list) { return list.at(qsizetype(random() % list.size())); };
    const auto expression = [&] {
        QString e;
        for (int i = 0, n = 1 + int(random() % 5); i < n; ++i)
            e += random() % 2 ? pick(names) : pick(pieces);
        return e;
    };
    // What must come out the same: text, attributes and the tables, the tables as sets,
    // since the order in which lines were processed doesn't matter.
    struct Outcome {
        QString text;
        std::vector<std::pair<TextRange, TextAttributes>> runs;
        std::map<int, QString> duplicates;
        std::map<QString, std::vector<int>> uses;
        std::map<QString, QString> values;
        bool operator==(const Outcome &) const = default;
    };
    const auto outcome = [this] {
        Outcome o{storage->string(), {}, variables().duplicateVariables(), variables().variableUseIndex(), {}};
        storage->enumerateRuns({0, storage->length()},
                               [&](const TextRange &r, const TextAttributes &a) { o.runs.emplace_back(r, a); });
        for (auto &[key, lines] : o.uses)
            std::sort(lines.begin(), lines.end());
        for (const Variable &v : variables().storedVariables())
            o.values.emplace(v.key, v.value % u'|' % QString::number(v.lineNumber) % v.currencySymbol);
        return o;
    };

    for (int note = 0; note < 150; ++note) {
        QString text = QStringLiteral("math");
        for (int i = 0, lines = 3 + int(random() % 10); i < lines; ++i) {
            switch (random() % 6) {
            case 0:
                text += u'\n' % pick(names) % QStringLiteral(": ") % expression();
                break;
            case 1:
                text += u'\n' % pick(names) % QStringLiteral(": ") % expression() % u'=';
                break;
            case 2:
                text += QStringLiteral("\n// ") % expression();
                break;
            case 3:
                text += QStringLiteral("\nsee example.com =");
                break;
            default:
                text += u'\n' % expression() % QStringLiteral(" =");
                break;
            }
        }
        const bool scan = note % 2 == 0;
        open(text, scan);
        for (int keystroke = 0; keystroke < 6; ++keystroke) {
            const QString before = storage->string();
            const int line = 1 + int(random() % before.count(u'\n'));
            const qsizetype start = endOfLine(line - 1) + 1;
            const qsizetype end = endOfLine(line);
            const qsizetype colon = before.indexOf(u':', start);
            const qsizetype from = colon >= 0 && colon < end ? colon + 1 : start;
            const qsizetype at = from + qsizetype(random() % (end - from + 1));
            type(at, QString(QChar(u"0123456789+*- "[random() % 14])));
            const Outcome typed = outcome();
            open(typed.text, !scan);
            ASSERT_TRUE(outcome() == typed) << "note " << note << ":\n" << before.toStdString() << "\ntyped at " << at;
            open(typed.text, scan);
        }
    }
}

} // namespace
} // namespace scrivlet
