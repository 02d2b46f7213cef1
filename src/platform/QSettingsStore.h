#pragma once

#include "platform/SettingsStore.h"

#include <memory>

class QSettings;

namespace scrivlet {

// The application's settings in the platform's own store (an ini file on Linux,
// the defaults plist on macOS).
class QSettingsStore final : public SettingsStore {
public:
    // The user's store for this application.
    QSettingsStore();
    // A store in an ini file of its own.
    explicit QSettingsStore(const QString &iniFilePath);
    ~QSettingsStore() override;

    QVariant value(const QString &key) const override;
    void setValue(const QString &key, const QVariant &value) override;
    void remove(const QString &key) override;
    void clear() override;
    void sync() override;

private:
    std::unique_ptr<QSettings> m_settings;
};

} // namespace scrivlet
