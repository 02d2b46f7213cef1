#pragma once

#include "calculation/CurrencyUnit.h"

#include <QUuid>

#include <optional>
#include <vector>

class QJsonObject;

namespace scrivlet {

// One row of the rate table: how many units of `currency` one US dollar buys. Stored
// as JSON under the keys "id", "currency" (the code) and "conversionRate".
struct CurrencySetting {
    QUuid id;
    CurrencyUnit currency = CurrencyUnit::usd;
    double conversionRate = 1.0;

    // A row with a fresh id.
    static CurrencySetting make(CurrencyUnit currency, double conversionRate);

    QJsonObject toJson() const;
    // Nothing for a row without a readable id, a known code or a positive, finite rate.
    static std::optional<CurrencySetting> fromJson(const QJsonObject &object);

    // The stored form of a whole table: a JSON array of rows.
    static QString encodeList(const std::vector<CurrencySetting> &settings);
    // Nothing when `text` is no JSON array. Rows that can't be read are left out, so one
    // unknown code doesn't cost the user the rest of a saved table.
    static std::optional<std::vector<CurrencySetting>> decodeList(const QString &text);

    friend bool operator==(const CurrencySetting &, const CurrencySetting &) = default;
};

} // namespace scrivlet
