#include "LifecycleFixture.h"

#include "calculation/NumberLocale.h"
#include "shell/tutorial/TutorialNotes.h"

#include <QRegularExpression>

using namespace scrivlet;
using namespace scrivlet::test;

namespace {

// The process-wide number format for one test, put back afterwards.
class LocaleScope {
public:
    explicit LocaleScope(const NumberLocale &locale) : m_saved(NumberLocale::current())
    {
        NumberLocale::setCurrent(locale);
    }
    ~LocaleScope() { NumberLocale::setCurrent(m_saved); }

private:
    NumberLocale m_saved;
};

const QRegularExpression kDecimalPoint(QStringLiteral("\\d\\.\\d"));
const QRegularExpression kDecimalComma(QStringLiteral("\\d,\\d"));

} // namespace

TEST(TutorialNotes, TheCommaVariantDiffersOnlyWhereNumbersAndWordsDo)
{
    const QStringList point = TutorialNotes::texts(TutorialNotes::Variant::point);
    const QStringList comma = TutorialNotes::texts(TutorialNotes::Variant::comma);
    ASSERT_EQ(point.size(), TutorialNotes::kCount);
    ASSERT_EQ(comma.size(), TutorialNotes::kCount);

    QList<int> differing;
    for (int i = 0; i < TutorialNotes::kCount; ++i) {
        if (point[i] != comma[i])
            differing << i + 1;
    }
    EXPECT_EQ(differing, (QList<int>{2, 4, 8, 9, 10, 13}));

    for (int number : {2, 4, 8, 9}) {
        SCOPED_TRACE(number);
        const QString &pointText = point[number - 1];
        const QString &commaText = comma[number - 1];
        EXPECT_TRUE(pointText.contains(kDecimalPoint));
        EXPECT_FALSE(commaText.contains(kDecimalPoint));
        // Nothing but the separators changed.
        QString restored = commaText;
        restored.replace(QRegularExpression(QStringLiteral("(\\d),(\\d)")), QStringLiteral("\\1.\\2"));
        EXPECT_EQ(restored, pointText);
    }
    EXPECT_EQ(comma[9], QString(point[9]).replace(QStringLiteral("^^^ Type"), QStringLiteral("^^^ type")));
    EXPECT_EQ(comma[12], QString(point[12]).remove(QStringLiteral(
                             "The full user manual can be found at the product web site.\n\n")));
}

TEST_F(LifecycleTest, AGermanFirstLaunchGetsAmountsWithADecimalComma)
{
    const LocaleScope german(*NumberLocale::fromName(QStringLiteral("de_DE")));
    ASSERT_EQ(TutorialNotes::variantFor(NumberLocale::current()), TutorialNotes::Variant::comma);
    launch();
    const QStringList texts = loadedTexts();
    ASSERT_EQ(texts.size(), TutorialNotes::kCount);
    const QString stack = texts.join(QLatin1Char('\n'));
    EXPECT_FALSE(stack.contains(kDecimalPoint));
    EXPECT_EQ(stack.count(kDecimalComma), 4);
    EXPECT_EQ(texts, TutorialNotes::seedingOrder(NumberLocale::current()));
}
