#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class ExportPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit ExportPreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    QString exportQuickIntegration() const { return stringValue(QStringLiteral("exportQuickIntegration")); }
    void setExportQuickIntegration(const QString &value) { setValue(QStringLiteral("exportQuickIntegration"), value); }
    bool exportGeneralOmitKeyword() const { return boolValue(QStringLiteral("exportGeneralOmitKeyword")); }
    void setExportGeneralOmitKeyword(bool value) { setValue(QStringLiteral("exportGeneralOmitKeyword"), value); }
    bool exportGeneralUseFirstLineAsTitle() const { return boolValue(QStringLiteral("exportGeneralUseFirstLineAsTitle")); }
    void setExportGeneralUseFirstLineAsTitle(bool value) { setValue(QStringLiteral("exportGeneralUseFirstLineAsTitle"), value); }
    bool exportPlainTextEnabled() const { return boolValue(QStringLiteral("exportPlainTextEnabled")); }
    void setExportPlainTextEnabled(bool value) { setValue(QStringLiteral("exportPlainTextEnabled"), value); }
    bool exportMarkdownEnabled() const { return boolValue(QStringLiteral("exportMarkdownEnabled")); }
    void setExportMarkdownEnabled(bool value) { setValue(QStringLiteral("exportMarkdownEnabled"), value); }
    bool exportBearEnabled() const { return boolValue(QStringLiteral("exportBearEnabled")); }
    void setExportBearEnabled(bool value) { setValue(QStringLiteral("exportBearEnabled"), value); }
    bool exportBearConvertToMarkdown() const { return boolValue(QStringLiteral("exportBearConvertToMarkdown")); }
    void setExportBearConvertToMarkdown(bool value) { setValue(QStringLiteral("exportBearConvertToMarkdown"), value); }
    bool exportObsidianEnabled() const { return boolValue(QStringLiteral("exportObsidianEnabled")); }
    void setExportObsidianEnabled(bool value) { setValue(QStringLiteral("exportObsidianEnabled"), value); }
    QString exportObsidianVault() const { return stringValue(QStringLiteral("exportObsidianVault")); }
    void setExportObsidianVault(const QString &value) { setValue(QStringLiteral("exportObsidianVault"), value); }
    bool exportObsidianConvertToMarkdown() const { return boolValue(QStringLiteral("exportObsidianConvertToMarkdown")); }
    void setExportObsidianConvertToMarkdown(bool value) { setValue(QStringLiteral("exportObsidianConvertToMarkdown"), value); }
    bool exportAppleNotesEnabled() const { return boolValue(QStringLiteral("exportAppleNotesEnabled")); }
    void setExportAppleNotesEnabled(bool value) { setValue(QStringLiteral("exportAppleNotesEnabled"), value); }
    bool exportAppleNotesConvertToRichText() const { return boolValue(QStringLiteral("exportAppleNotesConvertToRichText")); }
    void setExportAppleNotesConvertToRichText(bool value) { setValue(QStringLiteral("exportAppleNotesConvertToRichText"), value); }
    bool exportNotionEnabled() const { return boolValue(QStringLiteral("exportNotionEnabled")); }
    void setExportNotionEnabled(bool value) { setValue(QStringLiteral("exportNotionEnabled"), value); }
    bool exportNotionSaveInDatabase() const { return boolValue(QStringLiteral("exportNotionSaveInDatabase")); }
    void setExportNotionSaveInDatabase(bool value) { setValue(QStringLiteral("exportNotionSaveInDatabase"), value); }
    QString exportNotionDatabaseName() const { return stringValue(QStringLiteral("exportNotionDatabaseName")); }
    void setExportNotionDatabaseName(const QString &value) { setValue(QStringLiteral("exportNotionDatabaseName"), value); }
    bool exportCustomEnabled() const { return boolValue(QStringLiteral("exportCustomEnabled")); }
    void setExportCustomEnabled(bool value) { setValue(QStringLiteral("exportCustomEnabled"), value); }
    QString exportCustomName() const { return stringValue(QStringLiteral("exportCustomName")); }
    void setExportCustomName(const QString &value) { setValue(QStringLiteral("exportCustomName"), value); }
    QString exportCustomURLTemplate() const { return stringValue(QStringLiteral("exportCustomURLTemplate")); }
    void setExportCustomURLTemplate(const QString &value) { setValue(QStringLiteral("exportCustomURLTemplate"), value); }
};

} // namespace scrivlet
