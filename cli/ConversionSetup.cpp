#include "ConversionSetup.h"

#include <QFile>

namespace scrivlet::cli {

ConversionSetup::ConversionSetup(SettingsStore &settings, Clock &clock, NotificationBus &bus)
    : m_rates(settings, clock, bus), m_converter(settings, m_rates)
{
    m_rates.useRates({});
}

std::optional<QString> ConversionSetup::loadRates(const QString &path)
{
    if (path.isEmpty())
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot read the rates file \"%1\": %2").arg(path, file.errorString());
    const auto rates = CurrencyRates::parseRatesReply(file.readAll());
    if (!rates)
        return QStringLiteral("the rates file \"%1\" holds no rate table: %2").arg(path, rates.error());
    m_rates.useRates(rates.value());
    return std::nullopt;
}

} // namespace scrivlet::cli
