#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class NotesPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit NotesPreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    bool syncWithICloud() const { return boolValue(QStringLiteral("syncWithICloud")); }
    void setSyncWithICloud(bool value) { setValue(QStringLiteral("syncWithICloud"), value); }
    bool migratedToCoreData() const { return boolValue(QStringLiteral("migratedToCoreData")); }
    void setMigratedToCoreData(bool value) { setValue(QStringLiteral("migratedToCoreData"), value); }
    bool launchWithNewNote() const { return boolValue(QStringLiteral("launchWithNewNote")); }
    void setLaunchWithNewNote(bool value) { setValue(QStringLiteral("launchWithNewNote"), value); }
    QString autoDeleteBefore() const { return stringValue(QStringLiteral("autoDeleteBefore")); }
    void setAutoDeleteBefore(const QString &value) { setValue(QStringLiteral("autoDeleteBefore"), value); }
    double lastWindowCloseTime() const { return doubleValue(QStringLiteral("lastWindowCloseTime")); }
    void setLastWindowCloseTime(double value) { setValue(QStringLiteral("lastWindowCloseTime"), value); }
    QString autoNewNoteTiming() const { return stringValue(QStringLiteral("autoNewNoteTiming")); }
    void setAutoNewNoteTiming(const QString &value) { setValue(QStringLiteral("autoNewNoteTiming"), value); }
    bool showNoteCount() const { return boolValue(QStringLiteral("showNoteCount")); }
    void setShowNoteCount(bool value) { setValue(QStringLiteral("showNoteCount"), value); }
    bool showTimestamp() const { return boolValue(QStringLiteral("showTimestamp")); }
    void setShowTimestamp(bool value) { setValue(QStringLiteral("showTimestamp"), value); }
    bool showCreatedDate() const { return boolValue(QStringLiteral("showCreatedDate")); }
    void setShowCreatedDate(bool value) { setValue(QStringLiteral("showCreatedDate"), value); }
    int autoBackupQuantity() const { return intValue(QStringLiteral("autoBackupQuantity")); }
    void setAutoBackupQuantity(int value) { setValue(QStringLiteral("autoBackupQuantity"), value); }
    QString autoBackupInterval() const { return stringValue(QStringLiteral("autoBackupInterval")); }
    void setAutoBackupInterval(const QString &value) { setValue(QStringLiteral("autoBackupInterval"), value); }
    int slotedNotesLimit() const { return intValue(QStringLiteral("slotedNotesLimit")); }
    void setSlotedNotesLimit(int value) { setValue(QStringLiteral("slotedNotesLimit"), value); }
    int lastActiveSlottedNote() const { return intValue(QStringLiteral("lastActiveSlottedNote")); }
    void setLastActiveSlottedNote(int value) { setValue(QStringLiteral("lastActiveSlottedNote"), value); }
    bool isSplitView() const { return boolValue(QStringLiteral("isSplitView")); }
    void setIsSplitView(bool value) { setValue(QStringLiteral("isSplitView"), value); }
    bool isSlottedMain() const { return boolValue(QStringLiteral("isSlottedMain")); }
    void setIsSlottedMain(bool value) { setValue(QStringLiteral("isSlottedMain"), value); }
    bool isSplitHorizontal() const { return boolValue(QStringLiteral("isSplitHorizontal")); }
    void setIsSplitHorizontal(bool value) { setValue(QStringLiteral("isSplitHorizontal"), value); }
    double thresholdForAutoFocusInSeconds() const { return doubleValue(QStringLiteral("thresholdForAutoFocusInSeconds")); }
    void setThresholdForAutoFocusInSeconds(double value) { setValue(QStringLiteral("thresholdForAutoFocusInSeconds"), value); }
    QString trashRetentionPeriod() const { return stringValue(QStringLiteral("trashRetentionPeriod")); }
    void setTrashRetentionPeriod(const QString &value) { setValue(QStringLiteral("trashRetentionPeriod"), value); }
};

} // namespace scrivlet
