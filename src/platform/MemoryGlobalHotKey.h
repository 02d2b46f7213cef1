#pragma once

#include "platform/GlobalHotKey.h"

#include <QHash>
#include <QSet>

#include <optional>

namespace scrivlet {

// A desktop in memory, for tests and headless runs. Shortcuts that "another
// application" holds are refused with a reason; a press is simulated by `press`.
// With `setAnswersLater(true)` registrations stay pending until `answerPending`, the
// way a desktop that asks the user answers.
class MemoryGlobalHotKey final : public GlobalHotKey {
public:
    void registerHotKey(const QString &id, const KeyboardShortcut &shortcut) override;
    void unregisterHotKey(const QString &id) override;

    // Shortcuts another application already holds.
    void takeByOtherApplication(const KeyboardShortcut &shortcut) { m_taken.insert(shortcut.toString()); }
    void setAnswersLater(bool later) { m_answersLater = later; }
    void answerPending();

    // Presses `shortcut` on the desktop; returns whether an id held it.
    bool press(const KeyboardShortcut &shortcut);

    std::optional<KeyboardShortcut> registered(const QString &id) const;
    int registrationCount() const { return m_registrationCount; }

private:
    void settle(const QString &id, const KeyboardShortcut &shortcut);

    QHash<QString, KeyboardShortcut> m_held;
    QHash<QString, KeyboardShortcut> m_pending;
    QSet<QString> m_taken;
    bool m_answersLater = false;
    int m_registrationCount = 0;
};

} // namespace scrivlet
