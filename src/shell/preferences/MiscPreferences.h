#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class MiscPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit MiscPreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    bool restorePinOnOpen() const { return boolValue(QStringLiteral("restorePinOnOpen")); }
    void setRestorePinOnOpen(bool value) { setValue(QStringLiteral("restorePinOnOpen"), value); }
    bool lastPinState() const { return boolValue(QStringLiteral("lastPinState")); }
    void setLastPinState(bool value) { setValue(QStringLiteral("lastPinState"), value); }
    QString fontFamily() const { return stringValue(QStringLiteral("fontFamily")); }
    void setFontFamily(const QString &value) { setValue(QStringLiteral("fontFamily"), value); }
    double caretOriginYUnderCapHeight() const { return doubleValue(QStringLiteral("caretOriginYUnderCapHeight")); }
    void setCaretOriginYUnderCapHeight(double value) { setValue(QStringLiteral("caretOriginYUnderCapHeight"), value); }
    double caretOriginYUnderCapHeightForLists() const { return doubleValue(QStringLiteral("caretOriginYUnderCapHeightForLists")); }
    void setCaretOriginYUnderCapHeightForLists(double value) { setValue(QStringLiteral("caretOriginYUnderCapHeightForLists"), value); }
    bool showTopBarUI() const { return boolValue(QStringLiteral("showTopBarUI")); }
    void setShowTopBarUI(bool value) { setValue(QStringLiteral("showTopBarUI"), value); }
    bool showBottomBarUI() const { return boolValue(QStringLiteral("showBottomBarUI")); }
    void setShowBottomBarUI(bool value) { setValue(QStringLiteral("showBottomBarUI"), value); }
    bool showLastNoteIndicator() const { return boolValue(QStringLiteral("showLastNoteIndicator")); }
    void setShowLastNoteIndicator(bool value) { setValue(QStringLiteral("showLastNoteIndicator"), value); }
    bool solidBarsInTransparencyMode() const { return boolValue(QStringLiteral("solidBarsInTransparencyMode")); }
    void setSolidBarsInTransparencyMode(bool value) { setValue(QStringLiteral("solidBarsInTransparencyMode"), value); }
    bool forceRTL() const { return boolValue(QStringLiteral("forceRTL")); }
    void setForceRTL(bool value) { setValue(QStringLiteral("forceRTL"), value); }
    bool disableSwipeNavigation() const { return boolValue(QStringLiteral("disableSwipeNavigation")); }
    void setDisableSwipeNavigation(bool value) { setValue(QStringLiteral("disableSwipeNavigation"), value); }
};

} // namespace scrivlet
