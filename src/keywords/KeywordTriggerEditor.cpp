#include "keywords/KeywordTriggerEditor.h"

#include "keywords/KeywordDefinitionsContainer.h"
#include "platform/NotificationBus.h"
#include "shell/preferences/KeywordPreferences.h"

namespace scrivlet {

KeywordTriggerEditor::KeywordTriggerEditor(KeywordID id, KeywordDefinitionsContainer &keywords,
                                           KeywordPreferences &preferences, NotificationBus &bus)
    : m_id(id), m_keywords(keywords), m_preferences(preferences), m_bus(bus)
{
}

QString KeywordTriggerEditor::mainKeyword() const
{
    const KeywordDefinition *definition = m_keywords.definition(m_id);
    return definition ? definition->mainTrigger : QString();
}

QString KeywordTriggerEditor::additionalKeywordsText() const
{
    const KeywordDefinition *definition = m_keywords.definition(m_id);
    if (!definition)
        return {};
    QStringList others = definition->triggers;
    others.removeAll(definition->mainTrigger);
    return others.join(QStringLiteral(", "));
}

bool KeywordTriggerEditor::commit(const QString &additionalKeywords)
{
    QStringList words;
    const QStringList pieces = additionalKeywords.split(u',');
    for (const QString &piece : pieces) {
        qsizetype from = 0;
        qsizetype to = piece.size();
        while (from < to && piece.at(from) == u' ')
            ++from;
        while (to > from && piece.at(to - 1) == u' ')
            --to;
        if (to > from)
            words.append(piece.mid(from, to - from));
    }

    const QStringList clashes = m_keywords.clashingTriggers(m_id, words);
    if (!clashes.isEmpty()) {
        m_errorMessage = QStringLiteral("The following keywords are not unique: ") % clashes.join(QStringLiteral(", "));
        return false;
    }
    m_errorMessage.clear();

    // The field holds the main word apart from the others; it stays a trigger, so the
    // autocomplete never offers a word that selects nothing.
    const QString main = mainKeyword();
    if (!main.isEmpty() && !words.contains(main))
        words.prepend(main);

    const QStringList stored = m_keywords.setTriggers(m_id, words);
    m_preferences.setTriggers(m_id, stored);
    m_bus.post(QStringLiteral("keywordPreferencesChanged"));
    return true;
}

} // namespace scrivlet
