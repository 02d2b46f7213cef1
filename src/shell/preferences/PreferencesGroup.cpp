#include "shell/preferences/PreferencesGroup.h"

#include "platform/SettingsStore.h"

namespace scrivlet {

PreferencesGroup::PreferencesGroup(SettingsStore &store, const std::vector<PreferenceSpec> &specs)
    : m_store(store), m_specs(specs)
{
    for (const PreferenceSpec &s : m_specs)
        m_byKey.insert(s.key, &s);
}

const PreferenceSpec *PreferencesGroup::spec(const QString &key) const
{
    return m_byKey.value(key, nullptr);
}

QVariant PreferencesGroup::value(const QString &key) const
{
    const PreferenceSpec *s = spec(key);
    Q_ASSERT_X(s, "PreferencesGroup::value", "key outside this group's table");
    if (!s)
        return {};
    if (auto v = s->coerce(m_store.value(key)))
        return *v;
    return s->defaultValue;
}

bool PreferencesGroup::setValue(const QString &key, const QVariant &value)
{
    const PreferenceSpec *s = spec(key);
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
