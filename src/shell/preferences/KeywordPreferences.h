#pragma once

#include "keywords/KeywordID.h"
#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class NotificationBus;

// The trigger words of each keyword, its main word, and the three switches of the
// keyword engine. The only writer of these keys.
class KeywordPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit KeywordPreferences(SettingsStore &store, NotificationBus *bus = nullptr)
        : PreferencesGroup(store, table()), m_bus(bus)
    {
    }

    static QString triggersKey(KeywordID id);
    static QString mainTriggerKey(KeywordID id);

    // The stored list: split on ",", empty pieces dropped, each trimmed of blanks and
    // tabs. An empty list stays empty; the fallback to the main word is the registry's.
    QStringList triggers(KeywordID id) const;
    void setTriggers(KeywordID id, const QStringList &triggers);
    QString mainTrigger(KeywordID id) const { return stringValue(mainTriggerKey(id)); }
    void setMainTrigger(KeywordID id, const QString &trigger);

    // Highlighting and shortening of links are tied: no shortening without
    // highlighting. Each change asks every open note to re-process.
    bool disableLinkHighlighting() const { return boolValue(QStringLiteral("disableLinkHighlighting")); }
    void setDisableLinkHighlighting(bool value);
    bool disableLinkShortening() const { return boolValue(QStringLiteral("disableLinkShortening")); }
    void setDisableLinkShortening(bool value);
    bool disableAllKeywords() const { return boolValue(QStringLiteral("disableAllKeywords")); }
    void setDisableAllKeywords(bool value);

private:
    void postChanged() const;

    NotificationBus *m_bus;
};

} // namespace scrivlet
