#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class VisualPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit VisualPreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    QString fontSize() const { return stringValue(QStringLiteral("fontSize")); }
    void setFontSize(const QString &value) { setValue(QStringLiteral("fontSize"), value); }
    bool doubleFontSize() const { return boolValue(QStringLiteral("doubleFontSize")); }
    void setDoubleFontSize(bool value) { setValue(QStringLiteral("doubleFontSize"), value); }
    QString selectedTheme() const { return stringValue(QStringLiteral("selectedTheme")); }
    void setSelectedTheme(const QString &value) { setValue(QStringLiteral("selectedTheme"), value); }
    QString selectedLightTheme() const { return stringValue(QStringLiteral("selectedLightTheme")); }
    void setSelectedLightTheme(const QString &value) { setValue(QStringLiteral("selectedLightTheme"), value); }
    QString selectedDarkTheme() const { return stringValue(QStringLiteral("selectedDarkTheme")); }
    void setSelectedDarkTheme(const QString &value) { setValue(QStringLiteral("selectedDarkTheme"), value); }
    QString paperType() const { return stringValue(QStringLiteral("paperType")); }
    void setPaperType(const QString &value) { setValue(QStringLiteral("paperType"), value); }
    QString paperOpacity() const { return stringValue(QStringLiteral("paperOpacity")); }
    void setPaperOpacity(const QString &value) { setValue(QStringLiteral("paperOpacity"), value); }
    QString appIconPreference() const { return stringValue(QStringLiteral("appIconPreference")); }
    void setAppIconPreference(const QString &value) { setValue(QStringLiteral("appIconPreference"), value); }
    double popoverWidth() const { return doubleValue(QStringLiteral("popoverWidth")); }
    void setPopoverWidth(double value) { setValue(QStringLiteral("popoverWidth"), value); }
    double popoverHeight() const { return doubleValue(QStringLiteral("popoverHeight")); }
    void setPopoverHeight(double value) { setValue(QStringLiteral("popoverHeight"), value); }
    bool hideWhenUnfocused() const { return boolValue(QStringLiteral("hideWhenUnfocused")); }
    void setHideWhenUnfocused(bool value) { setValue(QStringLiteral("hideWhenUnfocused"), value); }
    bool translucentWindow() const { return boolValue(QStringLiteral("translucentWindow")); }
    void setTranslucentWindow(bool value) { setValue(QStringLiteral("translucentWindow"), value); }
    double translucentAmount() const { return doubleValue(QStringLiteral("translucentAmount")); }
    void setTranslucentAmount(double value) { setValue(QStringLiteral("translucentAmount"), value); }
};

} // namespace scrivlet
