#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class CopyPastePreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit CopyPastePreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    bool skipKeyword() const { return boolValue(QStringLiteral("skipKeyword")); }
    void setSkipKeyword(bool value) { setValue(QStringLiteral("skipKeyword"), value); }
    bool skipChecked() const { return boolValue(QStringLiteral("skipChecked")); }
    void setSkipChecked(bool value) { setValue(QStringLiteral("skipChecked"), value); }
    bool removeLeadingTabs() const { return boolValue(QStringLiteral("removeLeadingTabs")); }
    void setRemoveLeadingTabs(bool value) { setValue(QStringLiteral("removeLeadingTabs"), value); }
    bool removeNumbers() const { return boolValue(QStringLiteral("removeNumbers")); }
    void setRemoveNumbers(bool value) { setValue(QStringLiteral("removeNumbers"), value); }
    bool removeBullets() const { return boolValue(QStringLiteral("removeBullets")); }
    void setRemoveBullets(bool value) { setValue(QStringLiteral("removeBullets"), value); }
    bool removeMarkdown() const { return boolValue(QStringLiteral("removeMarkdown")); }
    void setRemoveMarkdown(bool value) { setValue(QStringLiteral("removeMarkdown"), value); }
    bool keepIndentation() const { return boolValue(QStringLiteral("keepIndentation")); }
    void setKeepIndentation(bool value) { setValue(QStringLiteral("keepIndentation"), value); }
    bool removeEmptyLines() const { return boolValue(QStringLiteral("removeEmptyLines")); }
    void setRemoveEmptyLines(bool value) { setValue(QStringLiteral("removeEmptyLines"), value); }
    bool autoCopyOnSelect() const { return boolValue(QStringLiteral("autoCopyOnSelect")); }
    void setAutoCopyOnSelect(bool value) { setValue(QStringLiteral("autoCopyOnSelect"), value); }
    bool enableTexReplacements() const { return boolValue(QStringLiteral("enableTexReplacements")); }
    void setEnableTexReplacements(bool value) { setValue(QStringLiteral("enableTexReplacements"), value); }
};

} // namespace scrivlet
