#include "keywords/KeywordDefinitionsContainer.h"

#include "keywords/TriggerLinePatterns.h"
#include "shell/preferences/KeywordPreferences.h"

#include <set>

namespace scrivlet {

namespace {

struct BuiltInKeyword {
    KeywordID id;
    const char16_t *label;
    const char16_t *description;
    const char16_t *color;
    bool allowArgumentsAfterKeyword;
};

// "higlighting" is how the product has always spelled it in the autocomplete.
const BuiltInKeyword kBuiltIn[] = {
    {KeywordID::SUM, u"Total:", u"Add all numbers.", u"accent3Main", false},
    {KeywordID::AVG, u"Avg:", u"Average all numbers.", u"accent4Main", false},
    {KeywordID::MATH, u"Math:", u"Calculate, convert, & variables.", u"accent1Main", false},
    {KeywordID::LIST, u"List:", u"Enable checklist.", u"accent2Main", false},
    {KeywordID::COUNT, u"Items:", u"Count items, words, chars, etc.", u"accent5Main", false},
    {KeywordID::CODE, u"Code:", u"Enables syntax higlighting. Disables paste stripping.", u"accent4Main", false},
    {KeywordID::CHECK, u"", u"", u"", false},
    {KeywordID::PASTE, u"Paste:", u"Listen for \u2318C and auto-paste.", u"accent3Main", true},
    {KeywordID::TIMER, u"Timer:", u"Activates the timer", u"accent4Main", true},
};

} // namespace

KeywordDefinitionsContainer::KeywordDefinitionsContainer(KeywordPreferences &preferences)
    : m_preferences(preferences),
      m_mainKeywords{KeywordID::LIST, KeywordID::MATH,  KeywordID::SUM,   KeywordID::AVG,
                     KeywordID::COUNT, KeywordID::CODE, KeywordID::PASTE, KeywordID::TIMER}
{
    for (const BuiltInKeyword &builtIn : kBuiltIn) {
        KeywordDefinition definition;
        definition.id = builtIn.id;
        definition.triggers = preferences.triggers(builtIn.id);
        // A list emptied in the settings would leave the keyword unreachable.
        if (definition.triggers.isEmpty())
            definition.triggers = {defaultMainTrigger(builtIn.id)};
        definition.mainTrigger = preferences.mainTrigger(builtIn.id);
        definition.label = QString::fromUtf16(builtIn.label);
        definition.description = QString::fromUtf16(builtIn.description);
        definition.colorKeyPath = QString::fromUtf16(builtIn.color);
        definition.allowArgumentsAfterKeyword = builtIn.allowArgumentsAfterKeyword;
        m_definitions.emplace(builtIn.id, std::move(definition));
    }
}

const KeywordDefinition *KeywordDefinitionsContainer::definition(KeywordID id) const
{
    const auto it = m_definitions.find(id);
    return it == m_definitions.end() ? nullptr : &it->second;
}

bool KeywordDefinitionsContainer::disableAllKeywords() const
{
    return m_preferences.disableAllKeywords();
}

QString KeywordDefinitionsContainer::defaultMainTrigger(KeywordID id)
{
    return id == KeywordID::CHECK ? QStringLiteral("/x") : keywordName(id).toLower();
}

QStringList KeywordDefinitionsContainer::clashingTriggers(KeywordID id, const QStringList &words) const
{
    QStringList clashes;
    for (const QString &word : words) {
        for (const auto &[otherId, other] : m_definitions) {
            if (otherId != id && other.triggers.contains(word)) {
                if (!clashes.contains(word))
                    clashes.append(word);
                break;
            }
        }
    }
    return clashes;
}

QStringList KeywordDefinitionsContainer::setTriggers(KeywordID id, QStringList newTriggers)
{
    const auto it = m_definitions.find(id);
    if (it == m_definitions.end())
        return m_preferences.triggers(id);

    const QString ownName = keywordName(id).toLower();
    if (!newTriggers.contains(ownName))
        newTriggers.append(ownName);

    if (!clashingTriggers(id, newTriggers).isEmpty())
        return it->second.triggers;

    const std::set<QString> unique(newTriggers.cbegin(), newTriggers.cend());
    it->second.triggers = QStringList(unique.cbegin(), unique.cend());
    if (id == KeywordID::TIMER)
        m_timerPattern.reset();
    if (id == KeywordID::PASTE)
        m_pastePattern.reset();
    return it->second.triggers;
}

QString KeywordDefinitionsContainer::setMainTrigger(KeywordID id, const QString &trigger)
{
    const auto it = m_definitions.find(id);
    if (it == m_definitions.end())
        return {};
    if (it->second.triggers.contains(trigger))
        it->second.mainTrigger = trigger;
    return it->second.mainTrigger;
}

const QRegularExpression *KeywordDefinitionsContainer::cachedPattern(KeywordID id,
                                                                     std::optional<QRegularExpression> &cache) const
{
    const KeywordDefinition *keyword = definition(id);
    if (!keyword)
        return nullptr;
    if (!cache) {
        const QString source = id == KeywordID::TIMER ? timerLinePatternSource(keyword->triggers)
                                                      : pasteLinePatternSource(keyword->triggers);
        cache.emplace(source, QRegularExpression::CaseInsensitiveOption | QRegularExpression::MultilineOption);
        cache->optimize();
    }
    return cache->isValid() ? &*cache : nullptr;
}

const QRegularExpression *KeywordDefinitionsContainer::timerLinePattern() const
{
    return cachedPattern(KeywordID::TIMER, m_timerPattern);
}

const QRegularExpression *KeywordDefinitionsContainer::pasteLinePattern() const
{
    return cachedPattern(KeywordID::PASTE, m_pastePattern);
}

} // namespace scrivlet
