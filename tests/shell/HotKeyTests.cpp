#include "platform/MemoryGlobalHotKey.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "shell/hotkey/HotKeyManager.h"
#include "shell/preferences/KeyboardShortcutPreferences.h"

#include <gtest/gtest.h>

using namespace scrivlet;

namespace {

KeyboardShortcut keys(const char *text)
{
    return *KeyboardShortcut::fromString(QString::fromUtf8(text));
}

const QString kShowApp = QStringLiteral("globalShowApp");

struct HotKeyRig {
    MemorySettingsStore store;
    NotificationBus bus;
    KeyboardShortcutPreferences shortcuts{store, &bus};
    MemoryGlobalHotKey desktop;
    int toggles = 0;
    HotKeyManager manager{desktop, shortcuts, bus, [this] { ++toggles; }};
};

} // namespace

TEST(KeyboardShortcut, ReadsTheUsualSpellingsAndRefusesBrokenOnes)
{
    const auto shortcut = KeyboardShortcut::fromString(QStringLiteral(" alt + control+ space "));
    ASSERT_TRUE(shortcut);
    EXPECT_EQ(shortcut->key, QStringLiteral("Space"));
    EXPECT_EQ(shortcut->modifiers, unsigned(KeyboardShortcut::Control | KeyboardShortcut::Alt));
    EXPECT_EQ(shortcut->toString(), QStringLiteral("Ctrl+Alt+Space"));

    EXPECT_EQ(keys("super+shift+n").toString(), QStringLiteral("Shift+Meta+N"));
    EXPECT_EQ(keys("Option+f12").toString(), QStringLiteral("Alt+F12"));
    EXPECT_EQ(keys("Ctrl++").key, QStringLiteral("+"));
    EXPECT_EQ(keys("Ctrl+pgdown").key, QStringLiteral("PgDown"));

    for (const char *broken : {"", "   ", "Ctrl+Alt", "Ctrl+A+B", "Ctrl++Alt", "Hyper+A", "A+Ctrl+"})
        EXPECT_FALSE(KeyboardShortcut::fromString(QString::fromUtf8(broken))) << broken;
}

TEST(KeyboardShortcutPreferences, KeepsEveryShortcutUnderOneJsonKey)
{
    MemorySettingsStore store;
    NotificationBus bus;
    QStringList changed;
    auto subscription = bus.subscribe(QStringLiteral("keyboardShortcutChanged"), [&](const QVariantMap &payload) {
        changed << payload.value(QStringLiteral("id")).toString();
    });
    KeyboardShortcutPreferences shortcuts(store, &bus);

    EXPECT_EQ(shortcuts.shortcut(kShowApp), keys("Ctrl+Alt+Space"));
    EXPECT_FALSE(shortcuts.shortcut(QStringLiteral("markdownBold")));

    shortcuts.setShortcut(kShowApp, keys("Meta+K"));
    shortcuts.setShortcut(QStringLiteral("markdownBold"), keys("Ctrl+B"));
    EXPECT_EQ(store.value(QStringLiteral("keyboardShortcuts")).toString(),
              QStringLiteral("{\"globalShowApp\":\"Meta+K\",\"markdownBold\":\"Ctrl+B\"}"));
    EXPECT_EQ(KeyboardShortcutPreferences(store).shortcut(kShowApp), keys("Meta+K"));

    // Cleared is not the same as never set: a cleared shortcut stays off.
    shortcuts.setShortcut(kShowApp, std::nullopt);
    EXPECT_FALSE(shortcuts.shortcut(kShowApp));
    shortcuts.resetShortcut(kShowApp);
    EXPECT_EQ(shortcuts.shortcut(kShowApp), keys("Ctrl+Alt+Space"));
    EXPECT_EQ(shortcuts.shortcut(QStringLiteral("markdownBold")), keys("Ctrl+B"));
    EXPECT_EQ(changed, (QStringList{kShowApp, QStringLiteral("markdownBold"), kShowApp, kShowApp}));

    // A damaged value counts as never set.
    store.setValue(QStringLiteral("keyboardShortcuts"), QStringLiteral("[1,2"));
    EXPECT_EQ(shortcuts.shortcut(kShowApp), keys("Ctrl+Alt+Space"));
    store.setValue(QStringLiteral("keyboardShortcuts"), QStringLiteral("{\"globalShowApp\":\"Ctrl+Nope+\"}"));
    EXPECT_EQ(shortcuts.shortcut(kShowApp), keys("Ctrl+Alt+Space"));
}

TEST(HotKeyManager, RegistersAtStartAndTogglesOnEachPress)
{
    HotKeyRig rig;
    EXPECT_FALSE(rig.desktop.registered(kShowApp));
    rig.manager.start();
    EXPECT_EQ(rig.desktop.registered(kShowApp), keys("Ctrl+Alt+Space"));
    EXPECT_EQ(rig.manager.state(), HotKeyManager::State::Registered);
    EXPECT_EQ(rig.manager.statusLine(), QStringLiteral("Global hot key: Ctrl+Alt+Space"));

    EXPECT_TRUE(rig.desktop.press(keys("Ctrl+Alt+Space")));
    EXPECT_TRUE(rig.desktop.press(keys("Ctrl+Alt+Space")));
    EXPECT_FALSE(rig.desktop.press(keys("Ctrl+Space")));
    EXPECT_EQ(rig.toggles, 2);
}

TEST(HotKeyManager, FollowsChangesOfItsOwnShortcutOnly)
{
    HotKeyRig rig;
    rig.manager.start();
    const int before = rig.desktop.registrationCount();

    rig.shortcuts.setShortcut(QStringLiteral("markdownBold"), keys("Ctrl+B"));
    EXPECT_EQ(rig.desktop.registrationCount(), before);

    rig.shortcuts.setShortcut(kShowApp, keys("Ctrl+Shift+F9"));
    EXPECT_EQ(rig.desktop.registered(kShowApp), keys("Ctrl+Shift+F9"));
    EXPECT_FALSE(rig.desktop.press(keys("Ctrl+Alt+Space")));
    EXPECT_TRUE(rig.desktop.press(keys("Ctrl+Shift+F9")));
    EXPECT_EQ(rig.toggles, 1);

    // Clearing the shortcut lets go of the key on the desktop.
    rig.shortcuts.setShortcut(kShowApp, std::nullopt);
    EXPECT_FALSE(rig.desktop.registered(kShowApp));
    EXPECT_EQ(rig.manager.state(), HotKeyManager::State::Off);
    EXPECT_EQ(rig.manager.statusLine(), QStringLiteral("Global hot key: off (no shortcut is set)"));

    // The reset brings back the default and binds it once.
    const int beforeReset = rig.desktop.registrationCount();
    rig.bus.post(QStringLiteral("resetGlobalHotkeyRequested"));
    EXPECT_EQ(rig.desktop.registered(kShowApp), keys("Ctrl+Alt+Space"));
    EXPECT_EQ(rig.desktop.registrationCount(), beforeReset + 1);
    EXPECT_EQ(rig.shortcuts.shortcut(kShowApp), keys("Ctrl+Alt+Space"));
}

TEST(HotKeyManager, KeepsTheReasonWhenTheDesktopRefuses)
{
    HotKeyRig rig;
    int statusChanges = 0;
    rig.manager.addStatusObserver([&] { ++statusChanges; });
    rig.desktop.takeByOtherApplication(keys("Ctrl+Alt+Space"));
    rig.manager.start();
    EXPECT_EQ(rig.manager.state(), HotKeyManager::State::Off);
    EXPECT_EQ(rig.manager.failureReason(), QStringLiteral("another application already uses Ctrl+Alt+Space"));
    EXPECT_EQ(rig.manager.statusLine(),
              QStringLiteral("Global hot key: off (another application already uses Ctrl+Alt+Space)"));
    EXPECT_FALSE(rig.desktop.press(keys("Ctrl+Alt+Space")));
    EXPECT_GT(statusChanges, 0);

    // Choosing a free shortcut clears the old reason.
    rig.shortcuts.setShortcut(kShowApp, keys("Ctrl+Alt+J"));
    EXPECT_EQ(rig.manager.state(), HotKeyManager::State::Registered);
    EXPECT_TRUE(rig.manager.failureReason().isEmpty());
}

TEST(HotKeyManager, WaitsForADesktopThatAnswersLater)
{
    HotKeyRig rig;
    rig.desktop.setAnswersLater(true);
    rig.manager.start();
    EXPECT_EQ(rig.manager.state(), HotKeyManager::State::Waiting);
    EXPECT_EQ(rig.manager.statusLine(), QStringLiteral("Global hot key: Ctrl+Alt+Space (waiting for the desktop)"));
    EXPECT_FALSE(rig.desktop.press(keys("Ctrl+Alt+Space")));
    rig.desktop.answerPending();
    EXPECT_EQ(rig.manager.state(), HotKeyManager::State::Registered);
    EXPECT_TRUE(rig.desktop.press(keys("Ctrl+Alt+Space")));
    EXPECT_EQ(rig.toggles, 1);
}
