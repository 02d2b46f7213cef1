#pragma once

#include "shell/preferences/PreferencesGroup.h"

namespace scrivlet {

class MathPreferences final : public PreferencesGroup {
public:
    static const std::vector<PreferenceDefinition> &table();
    explicit MathPreferences(SettingsStore &store) : PreferencesGroup(store, table()) {}

    QString primaryCurrency() const { return stringValue(QStringLiteral("primaryCurrency")); }
    void setPrimaryCurrency(const QString &value) { setValue(QStringLiteral("primaryCurrency"), value); }
    QString secondaryCurrency() const { return stringValue(QStringLiteral("secondaryCurrency")); }
    void setSecondaryCurrency(const QString &value) { setValue(QStringLiteral("secondaryCurrency"), value); }
    QString primaryMeasurementSystem() const { return stringValue(QStringLiteral("primaryMeasurementSystem")); }
    void setPrimaryMeasurementSystem(const QString &value) { setValue(QStringLiteral("primaryMeasurementSystem"), value); }
    int numberOfDecimalPoints() const { return intValue(QStringLiteral("numberOfDecimalPoints")); }
    void setNumberOfDecimalPoints(int value) { setValue(QStringLiteral("numberOfDecimalPoints"), value); }
    bool useThousandSeparatorsStorage() const { return boolValue(QStringLiteral("useThousandSeparatorsStorage")); }
    void setUseThousandSeparatorsStorage(bool value) { setValue(QStringLiteral("useThousandSeparatorsStorage"), value); }
    QString primaryCurrencySymbol() const { return stringValue(QStringLiteral("primaryCurrencySymbol")); }
    void setPrimaryCurrencySymbol(const QString &value) { setValue(QStringLiteral("primaryCurrencySymbol"), value); }
    QString manualCurrencyRates() const { return stringValue(QStringLiteral("manualCurrencyRates")); }
    void setManualCurrencyRates(const QString &value) { setValue(QStringLiteral("manualCurrencyRates"), value); }
};

} // namespace scrivlet
