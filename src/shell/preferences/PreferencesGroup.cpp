#include "shell/preferences/PreferencesGroup.h"

#include "platform/SettingsStore.h"

namespace scrivlet {

PreferencesGroup::PreferencesGroup(SettingsStore &store, const std::vector<PreferenceDefinition> &definitions)
    : m_store(store), m_definitions(definitions)
{
    for (const PreferenceDefinition &s : m_definitions)
        m_byKey.insert(s.key, &s);
}

const PreferenceDefinition *PreferencesGroup::definition(const QString &key) const
{
    return m_byKey.value(key, nullptr);
}

QVariant PreferencesGroup::value(const QString &key) const
{
    const PreferenceDefinition *s = definition(key);
    Q_ASSERT_X(s, "PreferencesGroup::value", "key outside this group's table");
    if (!s)
        return {};
    if (auto v = s->coerce(m_store.value(key)))
        return *v;
    return s->defaultValue;
}

bool PreferencesGroup::setValue(const QString &key, const QVariant &value)
{
    const PreferenceDefinition *s = definition(key);
    if (!s)
        return false;
    const auto v = s->coerce(value);
    if (!v)
        return false;
    m_store.setValue(key, *v);
    return true;
}

void PreferencesGroup::reset(const QString &key)
{
    m_store.remove(key);
}

} // namespace scrivlet
