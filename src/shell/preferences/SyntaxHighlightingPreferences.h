#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class SyntaxHighlightingPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit SyntaxHighlightingPreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    QString defaultLanguage() const { return stringValue(QStringLiteral("defaultLanguage")); }
    void setDefaultLanguage(const QString &value) { setValue(QStringLiteral("defaultLanguage"), value); }
    QString syntaxDarkTheme() const { return stringValue(QStringLiteral("syntaxDarkTheme")); }
    void setSyntaxDarkTheme(const QString &value) { setValue(QStringLiteral("syntaxDarkTheme"), value); }
    QString syntaxLightTheme() const { return stringValue(QStringLiteral("syntaxLightTheme")); }
    void setSyntaxLightTheme(const QString &value) { setValue(QStringLiteral("syntaxLightTheme"), value); }
};

} // namespace scrivlet
