#pragma once

#include "keywords/KeywordDefinition.h"

#include <QRegularExpression>

#include <map>
#include <optional>
#include <vector>

namespace scrivlet {

class KeywordPreferences;

// The vocabulary of keywords: every kind with its triggers, and the order in which a
// first line is matched against them. The app makes one and hands it to every editor.
class KeywordDefinitionsContainer {
public:
    explicit KeywordDefinitionsContainer(KeywordPreferences &preferences);
    KeywordDefinitionsContainer(const KeywordDefinitionsContainer &) = delete;
    KeywordDefinitionsContainer &operator=(const KeywordDefinitionsContainer &) = delete;

    KeywordPreferences &preferences() const { return m_preferences; }
    const std::map<KeywordID, KeywordDefinition> &definitions() const { return m_definitions; }
    const KeywordDefinition *definition(KeywordID id) const;
    // The kinds a first line can select, in their priority of matching.
    const std::vector<KeywordID> &mainKeywords() const { return m_mainKeywords; }
    bool disableAllKeywords() const;

    // The word a keyword falls back to when its stored list is empty.
    static QString defaultMainTrigger(KeywordID id);

    // The settings' write path. A keyword always keeps its own name as a trigger; a
    // list that shares a word with another keyword changes nothing. Returns the
    // triggers in force afterwards.
    QStringList setTriggers(KeywordID id, QStringList newTriggers);
    // Returns the main trigger in force afterwards: only one of the triggers can be it.
    QString setMainTrigger(KeywordID id, const QString &trigger);
    // The words of `words` that another keyword than `id` already uses (exact case).
    QStringList clashingTriggers(KeywordID id, const QStringList &words) const;

    // Compiled patterns of a timer line and of a paste line for the current triggers,
    // or null when they can't be built. Kept until the triggers change, since every
    // keystroke asks for them.
    const QRegularExpression *timerLinePattern() const;
    const QRegularExpression *pasteLinePattern() const;

private:
    const QRegularExpression *cachedPattern(KeywordID id, std::optional<QRegularExpression> &cache) const;

    KeywordPreferences &m_preferences;
    std::map<KeywordID, KeywordDefinition> m_definitions;
    std::vector<KeywordID> m_mainKeywords;
    mutable std::optional<QRegularExpression> m_timerPattern;
    mutable std::optional<QRegularExpression> m_pastePattern;
};

} // namespace scrivlet
