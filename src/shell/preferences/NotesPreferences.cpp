#include "shell/preferences/NotesPreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &NotesPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("syncWithICloud"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("migratedToCoreData"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("launchWithNewNote"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("autoDeleteBefore"), PreferenceType::String, QVariant(QStringLiteral("never"))},
        {QStringLiteral("lastWindowCloseTime"), PreferenceType::Double, QVariant(0.0)},
        {QStringLiteral("autoNewNoteTiming"), PreferenceType::String, QVariant(QStringLiteral("never"))},
        {QStringLiteral("showNoteCount"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("showTimestamp"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("showCreatedDate"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("autoBackupQuantity"), PreferenceType::Int, QVariant(12)},
        {QStringLiteral("autoBackupInterval"), PreferenceType::String, QVariant(QStringLiteral("3 hrs"))},
        {QStringLiteral("slotedNotesLimit"), PreferenceType::Int, QVariant(9)},
        {QStringLiteral("lastActiveSlottedNote"), PreferenceType::Int, QVariant(0)},
        {QStringLiteral("isSplitView"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("isSlottedMain"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("isSplitHorizontal"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("thresholdForAutoFocusInSeconds"), PreferenceType::Double, QVariant(120.0)},
        {QStringLiteral("trashRetentionPeriod"), PreferenceType::String, QVariant(QStringLiteral("30 days"))},
    };
    return definitions;
}

} // namespace scrivlet
