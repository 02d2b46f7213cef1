#include "editor/CheckTriggers.h"

#include "keywords/KeywordDefinitionsContainer.h"

namespace scrivlet {

CheckTriggers::CheckTriggers(const KeywordDefinitionsContainer &keywords)
{
    const KeywordDefinition *check = keywords.definition(KeywordID::CHECK);
    m_defined = check != nullptr;
    m_mainTrigger = check ? check->mainTrigger : QString::fromUtf16(kFallbackMainTrigger);
    if (check) {
        for (const QString &trigger : check->triggers)
            m_triggers << trigger.toLower();
    }
}

CheckTriggers::CheckTriggers(QStringList triggers, QString mainTrigger)
    : m_defined(true), m_mainTrigger(std::move(mainTrigger))
{
    for (const QString &trigger : triggers)
        m_triggers << trigger.toLower();
}

bool CheckTriggers::isChecked(QStringView line) const
{
    if (!m_defined)
        return false;
    return triggerAtEnd(line.trimmed().toString().toLower()).has_value();
}

std::optional<QString> CheckTriggers::triggerAtEnd(QStringView lowercasedLine) const
{
    for (const QString &trigger : m_triggers) {
        // An empty trigger would tick every row; the settings never store one.
        if (!trigger.isEmpty() && lowercasedLine.endsWith(trigger))
            return trigger;
    }
    return std::nullopt;
}

} // namespace scrivlet
