#pragma once

#include "shell/preferences/PreferenceDefinition.h"

#include <QHash>

#include <vector>

namespace scrivlet {

class SettingsStore;

// The common ground of the `...Preferences` classes: a table of keys with their
// types and defaults, read and written through the settings store at once.
class PreferencesGroup {
public:
    PreferencesGroup(SettingsStore &store, const std::vector<PreferenceDefinition> &definitions);
    virtual ~PreferencesGroup() = default;

    const std::vector<PreferenceDefinition> &definitions() const { return m_definitions; }
    SettingsStore &store() const { return m_store; }

    // The value of `key` as its type; the default when missing or ill-typed.
    QVariant value(const QString &key) const;
    // Stores `value` for `key`. Returns false, storing nothing, for an unknown key or
    // a value that doesn't fit the key's type.
    bool setValue(const QString &key, const QVariant &value);
    void reset(const QString &key);

protected:
    bool boolValue(const QString &key) const { return value(key).toBool(); }
    int intValue(const QString &key) const { return value(key).toInt(); }
    double doubleValue(const QString &key) const { return value(key).toDouble(); }
    QString stringValue(const QString &key) const { return value(key).toString(); }

private:
    const PreferenceDefinition *definition(const QString &key) const;

    SettingsStore &m_store;
    const std::vector<PreferenceDefinition> &m_definitions;
    QHash<QString, const PreferenceDefinition *> m_byKey;
};

} // namespace scrivlet
