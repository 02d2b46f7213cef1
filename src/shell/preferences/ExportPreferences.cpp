#include "shell/preferences/ExportPreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &ExportPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("exportQuickIntegration"), PreferenceType::String, QVariant(QStringLiteral("Plain Text"))},
        {QStringLiteral("exportGeneralOmitKeyword"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportGeneralUseFirstLineAsTitle"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportPlainTextEnabled"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportMarkdownEnabled"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportBearEnabled"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportBearConvertToMarkdown"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportObsidianEnabled"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportObsidianVault"), PreferenceType::String, QVariant(QStringLiteral(""))},
        {QStringLiteral("exportObsidianConvertToMarkdown"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportAppleNotesEnabled"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportAppleNotesConvertToRichText"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportNotionEnabled"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("exportNotionSaveInDatabase"), PreferenceType::Bool, QVariant(false)},
        {QStringLiteral("exportNotionDatabaseName"), PreferenceType::String, QVariant(QStringLiteral(""))},
        {QStringLiteral("exportCustomEnabled"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("exportCustomName"), PreferenceType::String, QVariant(QStringLiteral("Custom Export"))},
        {QStringLiteral("exportCustomURLTemplate"), PreferenceType::String, QVariant(QStringLiteral("myapp://create?title={TITLE}&text={CONTENT}&date={DATE}"))},
    };
    return definitions;
}

} // namespace scrivlet
