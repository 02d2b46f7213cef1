#pragma once

#include "platform/SettingsStore.h"

#include <QHash>

namespace scrivlet {

// Settings that live as long as the process: tests and one-off command-line runs.
class MemorySettingsStore final : public SettingsStore {
public:
    QVariant value(const QString &key) const override { return m_values.value(key); }
    void setValue(const QString &key, const QVariant &value) override { m_values.insert(key, value); }
    void remove(const QString &key) override { m_values.remove(key); }
    void clear() override { m_values.clear(); }
    qsizetype size() const { return m_values.size(); }

private:
    QHash<QString, QVariant> m_values;
};

} // namespace scrivlet
