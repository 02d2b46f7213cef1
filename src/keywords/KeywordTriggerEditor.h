#pragma once

#include "keywords/KeywordID.h"

#include <QString>
#include <QStringList>

namespace scrivlet {

class KeywordDefinitionsContainer;
class KeywordPreferences;
class NotificationBus;

// What the settings field of one keyword does when the user presses Enter: the
// widget shows the text and the error, this decides and stores.
class KeywordTriggerEditor {
public:
    static QString separatorHint() { return QStringLiteral("Separate each keyword with a comma"); }
    static QString commitHint() { return QStringLiteral("Press Enter to save changes"); }

    KeywordTriggerEditor(KeywordID id, KeywordDefinitionsContainer &keywords, KeywordPreferences &preferences,
                         NotificationBus &bus);

    KeywordID id() const { return m_id; }
    QString mainKeyword() const;
    // The other triggers, as the field shows them: "add, total".
    QString additionalKeywordsText() const;

    // Stores the comma-separated words as the keyword's triggers, unless another
    // keyword already uses one of them; then the old list stays and `errorMessage`
    // names the clashing words. Returns whether the words were stored.
    bool commit(const QString &additionalKeywords);
    QString errorMessage() const { return m_errorMessage; }

private:
    KeywordID m_id;
    KeywordDefinitionsContainer &m_keywords;
    KeywordPreferences &m_preferences;
    NotificationBus &m_bus;
    QString m_errorMessage;
};

} // namespace scrivlet
