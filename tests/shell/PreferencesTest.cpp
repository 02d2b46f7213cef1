#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "platform/QSettingsStore.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MathPreferences.h"
#include "shell/preferences/NotesPreferences.h"
#include "shell/preferences/PreferencesCatalogue.h"
#include "shell/preferences/VisualPreferences.h"

#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace scrivlet;

TEST(Preferences, MissingOrIllTypedValuesReadAsTheDefault)
{
    MemorySettingsStore store;
    MathPreferences math(store);
    NotesPreferences notes(store);
    EXPECT_EQ(math.numberOfDecimalPoints(), 2);
    EXPECT_EQ(math.primaryCurrency(), QStringLiteral("USD"));
    EXPECT_EQ(notes.slotedNotesLimit(), 9);
    EXPECT_EQ(notes.trashRetentionPeriod(), QStringLiteral("30 days"));

    store.setValue(QStringLiteral("numberOfDecimalPoints"), QStringLiteral("many"));
    store.setValue(QStringLiteral("syncWithICloud"), 3.5);
    store.setValue(QStringLiteral("primaryCurrency"), 42);
    EXPECT_EQ(math.numberOfDecimalPoints(), 2);
    EXPECT_FALSE(notes.syncWithICloud());
    EXPECT_EQ(math.primaryCurrency(), QStringLiteral("USD"));

    // The ini store gives everything back as text; text forms of the right type count.
    store.setValue(QStringLiteral("numberOfDecimalPoints"), QStringLiteral("4"));
    store.setValue(QStringLiteral("syncWithICloud"), QStringLiteral("true"));
    store.setValue(QStringLiteral("thresholdForAutoFocusInSeconds"), QStringLiteral("30.5"));
    EXPECT_EQ(math.numberOfDecimalPoints(), 4);
    EXPECT_TRUE(notes.syncWithICloud());
    EXPECT_DOUBLE_EQ(notes.thresholdForAutoFocusInSeconds(), 30.5);

    // Words of an enumeration outside its list fall back too.
    VisualPreferences visual(store);
    store.setValue(QStringLiteral("paperType"), QStringLiteral("papyrus"));
    EXPECT_EQ(visual.paperType(), QStringLiteral("blank"));
    visual.setPaperType(QStringLiteral("dots"));
    EXPECT_EQ(visual.paperType(), QStringLiteral("dots"));
}

TEST(Preferences, ValuesSurviveTheIniStore)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("settings.ini"));
    {
        QSettingsStore store(path);
        MathPreferences math(store);
        NotesPreferences notes(store);
        math.setNumberOfDecimalPoints(5);
        math.setManualCurrencyRates(QStringLiteral("EUR=0.9"));
        notes.setIsSplitView(true);
        notes.setLastWindowCloseTime(1.7e9);
        store.sync();
    }
    QSettingsStore store(path);
    MathPreferences math(store);
    NotesPreferences notes(store);
    EXPECT_EQ(math.numberOfDecimalPoints(), 5);
    EXPECT_EQ(math.manualCurrencyRates(), QStringLiteral("EUR=0.9"));
    EXPECT_TRUE(notes.isSplitView());
    EXPECT_DOUBLE_EQ(notes.lastWindowCloseTime(), 1.7e9);
}

TEST(Preferences, CatalogueKnowsEveryKeyOnceWithItsType)
{
    QSet<QString> keys;
    int count = 0;
    for (const auto &group : PreferencesCatalogue::groups()) {
        for (const PreferenceDefinition &definition : *group.definitions) {
            ++count;
            EXPECT_FALSE(keys.contains(definition.key)) << qPrintable(definition.key);
            keys.insert(definition.key);
            // Every default is a value of its own key's type.
            EXPECT_TRUE(definition.coerce(definition.defaultValue).has_value()) << qPrintable(definition.key);
        }
    }
    EXPECT_EQ(count, int(keys.size()));
    for (const char *key : {"slotedNotesLimit", "didBootstrap_2025_09_iCloudDefault", "noPeekStreakMax",
                            "exportCustomURLTemplate", "checkMainTrigger", "timerSoundVolume", "appIconPreference"})
        EXPECT_NE(PreferencesCatalogue::find(QString::fromLatin1(key)), nullptr) << key;

    MemorySettingsStore store;
    using SetError = PreferencesCatalogue::SetError;
    EXPECT_EQ(PreferencesCatalogue::setFromText(store, QStringLiteral("numberOfDecimalPoints"), QStringLiteral("abc")),
              SetError::WrongType);
    EXPECT_EQ(PreferencesCatalogue::setFromText(store, QStringLiteral("noSuchKey"), QStringLiteral("1")),
              SetError::UnknownKey);
    EXPECT_EQ(PreferencesCatalogue::setFromText(store, QStringLiteral("fontSize"), QStringLiteral("gigantic")),
              SetError::WrongType);
    EXPECT_EQ(store.size(), 0);
    EXPECT_FALSE(PreferencesCatalogue::setFromText(store, QStringLiteral("numberOfDecimalPoints"), QStringLiteral("0")));
    EXPECT_EQ(MathPreferences(store).numberOfDecimalPoints(), 0);
}

TEST(KeywordPreferences, TriggerListsAndTheTiedLinkSwitches)
{
    MemorySettingsStore store;
    NotificationBus bus;
    int changes = 0;
    auto sub = bus.subscribe(QStringLiteral("keywordPreferencesChanged"), [&](const QVariantMap &) { ++changes; });
    KeywordPreferences prefs(store, &bus);

    EXPECT_EQ(prefs.triggers(KeywordID::MATH),
              (QStringList{QStringLiteral("math"), QStringLiteral("convert"), QStringLiteral("model")}));
    EXPECT_EQ(prefs.triggers(KeywordID::CHECK), (QStringList{QStringLiteral("/x"), QStringLiteral("done")}));
    store.setValue(QStringLiteral("sumTriggers"), QStringLiteral(",,,"));
    EXPECT_TRUE(prefs.triggers(KeywordID::SUM).isEmpty());
    store.setValue(QStringLiteral("sumTriggers"), QStringLiteral(" sum ,\tadd\t,, tot al "));
    EXPECT_EQ(prefs.triggers(KeywordID::SUM),
              (QStringList{QStringLiteral("sum"), QStringLiteral("add"), QStringLiteral("tot al")}));
    prefs.setTriggers(KeywordID::AVG, {QStringLiteral("avg"), QStringLiteral("mean")});
    EXPECT_EQ(store.value(QStringLiteral("avgTriggers")).toString(), QStringLiteral("avg, mean"));
    EXPECT_EQ(prefs.mainTrigger(KeywordID::TIMER), QStringLiteral("timer"));

    prefs.setDisableLinkHighlighting(true);
    EXPECT_TRUE(prefs.disableLinkShortening());
    prefs.setDisableLinkShortening(false);
    EXPECT_FALSE(prefs.disableLinkHighlighting());
    prefs.setDisableLinkShortening(true);
    EXPECT_FALSE(prefs.disableLinkHighlighting()); // shortening off alone leaves highlighting on
    EXPECT_EQ(changes, 3);
}
