#include "calculation/CurrencySetting.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace scrivlet {

CurrencySetting CurrencySetting::make(CurrencyUnit currency, double conversionRate)
{
    return {QUuid::createUuid(), currency, conversionRate};
}

QJsonObject CurrencySetting::toJson() const
{
    // Ids are written the way the platform writes UUIDs: upper case, without braces.
    return {{QStringLiteral("id"), id.toString(QUuid::WithoutBraces).toUpper()},
            {QStringLiteral("currency"), currencyCode(currency)},
            {QStringLiteral("conversionRate"), conversionRate}};
}

std::optional<CurrencySetting> CurrencySetting::fromJson(const QJsonObject &object)
{
    const QUuid id = QUuid::fromString(object.value(QStringLiteral("id")).toString());
    const auto currency = currencyUnitFromCode(object.value(QStringLiteral("currency")).toString());
    const QJsonValue rate = object.value(QStringLiteral("conversionRate"));
    if (id.isNull() || !currency || !rate.isDouble())
        return std::nullopt;
    const double conversionRate = rate.toDouble();
    if (!std::isfinite(conversionRate) || conversionRate <= 0.0)
        return std::nullopt;
    return CurrencySetting{id, *currency, conversionRate};
}

QString CurrencySetting::encodeList(const std::vector<CurrencySetting> &settings)
{
    QJsonArray array;
    for (const CurrencySetting &setting : settings)
        array.append(setting.toJson());
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

std::optional<std::vector<CurrencySetting>> CurrencySetting::decodeList(const QString &text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || !document.isArray())
        return std::nullopt;
    std::vector<CurrencySetting> settings;
    const QJsonArray array = document.array();
    settings.reserve(std::size_t(array.size()));
    for (const QJsonValue &value : array) {
        if (auto setting = fromJson(value.toObject()))
            settings.push_back(*setting);
    }
    return settings;
}

} // namespace scrivlet
