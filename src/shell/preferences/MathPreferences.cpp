#include "shell/preferences/MathPreferences.h"

namespace scrivlet {

const std::vector<PreferenceDefinition> &MathPreferences::table()
{
    static const std::vector<PreferenceDefinition> definitions = {
        {QStringLiteral("primaryCurrency"), PreferenceType::String, QVariant(QStringLiteral("USD"))},
        {QStringLiteral("secondaryCurrency"), PreferenceType::String, QVariant(QStringLiteral("CAD"))},
        {QStringLiteral("primaryMeasurementSystem"), PreferenceType::String, QVariant(QStringLiteral("Imperial"))},
        {QStringLiteral("numberOfDecimalPoints"), PreferenceType::Int, QVariant(2)},
        {QStringLiteral("useThousandSeparatorsStorage"), PreferenceType::Bool, QVariant(true)},
        {QStringLiteral("primaryCurrencySymbol"), PreferenceType::String, QVariant(QStringLiteral("$"))},
        {QStringLiteral("manualCurrencyRates"), PreferenceType::String, QVariant(QStringLiteral(""))},
    };
    return definitions;
}

} // namespace scrivlet
