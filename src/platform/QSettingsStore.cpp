#include "platform/QSettingsStore.h"

#include <QSettings>

namespace scrivlet {

QSettingsStore::QSettingsStore() : m_settings(std::make_unique<QSettings>()) {}

QSettingsStore::QSettingsStore(const QString &iniFilePath)
    : m_settings(std::make_unique<QSettings>(iniFilePath, QSettings::IniFormat))
{
}

QSettingsStore::~QSettingsStore() = default;

QVariant QSettingsStore::value(const QString &key) const
{
    return m_settings->value(key);
}

void QSettingsStore::setValue(const QString &key, const QVariant &value)
{
    m_settings->setValue(key, value);
}

void QSettingsStore::remove(const QString &key)
{
    m_settings->remove(key);
}

void QSettingsStore::clear()
{
    m_settings->clear();
}

void QSettingsStore::sync()
{
    m_settings->sync();
}

} // namespace scrivlet
