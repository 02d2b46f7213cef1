#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class PrivacyPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit PrivacyPreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    bool usedScrivlet() const { return boolValue(QStringLiteral("usedScrivlet")); }
    void setUsedScrivlet(bool value) { setValue(QStringLiteral("usedScrivlet"), value); }
    bool featuresUsage() const { return boolValue(QStringLiteral("featuresUsage")); }
    void setFeaturesUsage(bool value) { setValue(QStringLiteral("featuresUsage"), value); }
    bool personalizationChoices() const { return boolValue(QStringLiteral("personalizationChoices")); }
    void setPersonalizationChoices(bool value) { setValue(QStringLiteral("personalizationChoices"), value); }
    bool tutorialViews() const { return boolValue(QStringLiteral("tutorialViews")); }
    void setTutorialViews(bool value) { setValue(QStringLiteral("tutorialViews"), value); }
    bool updateConversionRates() const { return boolValue(QStringLiteral("updateConversionRates")); }
    void setUpdateConversionRates(bool value) { setValue(QStringLiteral("updateConversionRates"), value); }
    bool checkGithubForExtensions() const { return boolValue(QStringLiteral("checkGithubForExtensions")); }
    void setCheckGithubForExtensions(bool value) { setValue(QStringLiteral("checkGithubForExtensions"), value); }
    bool queryUrgentAlerts() const { return boolValue(QStringLiteral("queryUrgentAlerts")); }
    void setQueryUrgentAlerts(bool value) { setValue(QStringLiteral("queryUrgentAlerts"), value); }
    bool enableUpdater() const { return boolValue(QStringLiteral("enableUpdater")); }
    void setEnableUpdater(bool value) { setValue(QStringLiteral("enableUpdater"), value); }
    // The base address of the product's API server ("https://api.scrivlet.app"); the paths
    // of its calls ("/api/conversionRates") go behind it.
    QString apiServerAddress() const { return stringValue(QStringLiteral("apiServerAddress")); }
    void setApiServerAddress(const QString &value) { setValue(QStringLiteral("apiServerAddress"), value); }
};

} // namespace scrivlet
