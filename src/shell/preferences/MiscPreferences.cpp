#include "shell/preferences/MiscPreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &MiscPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("restorePinOnOpen"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("lastPinState"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("fontFamily"), PreferenceType::String, QVariant(QStringLiteral("Menlo"))},
        {QStringLiteral("caretOriginYUnderCapHeight"), PreferenceType::Double, QVariant(-6.0)},
        {QStringLiteral("caretOriginYUnderCapHeightForLists"), PreferenceType::Double, QVariant(-9.0)},
        {QStringLiteral("showTopBarUI"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("showBottomBarUI"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("showLastNoteIndicator"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("solidBarsInTransparencyMode"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("forceRTL"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("disableSwipeNavigation"), PreferenceType::Bool, QVariant(false)},
    };
    return definitions;
}

} // namespace scrivlet
