#pragma once

#include "calculation/CurrencyRates.h"
#include "calculation/UnitConverter.h"

#include <QString>

#include <optional>

namespace scrivlet {
class Clock;
class NotificationBus;
class SettingsStore;
} // namespace scrivlet

namespace scrivlet::cli {

// Conversion as math lines use it, for one command-line run. A run never goes to the
// network, so its output depends on its input alone: the rates are those of a --rates
// file, in the format the rates server replies with, under the manual rates of the
// run's settings; without a file only the manual rates (and the dollar) are known.
class ConversionSetup final {
public:
    ConversionSetup(SettingsStore &settings, Clock &clock, NotificationBus &bus);
    ConversionSetup(const ConversionSetup &) = delete;
    ConversionSetup &operator=(const ConversionSetup &) = delete;

    // Puts the rates of the file at `path` in force, or the manual rates alone when
    // `path` is empty. Returns why the file can't be used, if it can't.
    std::optional<QString> loadRates(const QString &path);

    const UnitConverter &converter() const { return m_converter; }

private:
    CurrencyRates m_rates;
    UnitConverter m_converter;
};

} // namespace scrivlet::cli
