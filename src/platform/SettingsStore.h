#pragma once

#include <QString>
#include <QVariant>

namespace scrivlet {

// The user's settings as a string-keyed store. It knows nothing of defaults or
// types: the preferences classes read a value, and a missing or ill-typed one means
// their default.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    // An invalid QVariant when the key is missing.
    virtual QVariant value(const QString &key) const = 0;
    virtual void setValue(const QString &key, const QVariant &value) = 0;
    virtual void remove(const QString &key) = 0;
    // Removes every key of the application, known to the catalogue or not: a reset
    // starts from the defaults.
    virtual void clear() = 0;
    // Writes pending changes out, where the store keeps them anywhere but memory.
    virtual void sync() {}
    bool contains(const QString &key) const { return value(key).isValid(); }
};

} // namespace scrivlet
