#pragma once

#include "calculation/AreaUnit.h"
#include "calculation/CurrencyUnit.h"
#include "calculation/DistanceUnit.h"
#include "calculation/MassUnit.h"
#include "calculation/TemperatureUnit.h"
#include "calculation/VolumeUnit.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>
#include <vector>

class QJsonObject;

namespace scrivlet {

// One unit of one of six families. Conversions happen within a family only: a length
// never becomes a mass, a currency never a volume. Every family but currency and
// temperature converts by a factor against its base unit (how many of the unit make one
// base unit); currencies convert through the rate table, temperatures by formula.
class Unit final {
public:
    // The families in lookup order: a name that several families know is the unit of
    // the first family that knows it, so a currency code beats every other unit.
    enum class Family { currency, distance, area, volume, mass, temperature };

    Unit(CurrencyUnit unit) : m_value(unit) {}
    Unit(DistanceUnit unit) : m_value(unit) {}
    Unit(AreaUnit unit) : m_value(unit) {}
    Unit(VolumeUnit unit) : m_value(unit) {}
    Unit(MassUnit unit) : m_value(unit) {}
    Unit(TemperatureUnit unit) : m_value(unit) {}

    Family family() const { return Family(m_value.index()); }

    // The member of the family `T`, or nothing when the unit is of another family.
    template <typename T> std::optional<T> as() const
    {
        if (const T *unit = std::get_if<T>(&m_value))
            return *unit;
        return std::nullopt;
    }

    // What a converted amount is written with: "km", "fl oz", "°C", "JPY".
    QString symbol() const;
    // The names people write for the unit, compared case-insensitively; for a currency
    // its code first.
    const QStringList &aliases() const;
    // How many of this unit make one base unit of its family; nothing for currencies and
    // temperatures, which convert otherwise.
    std::optional<double> factor() const;
    // The case's name, as the unit's stored form uses it: "km", "cubicMeter", "USD".
    QString name() const;

    // The stored form: one key, the family's name, holding the case's name, such as
    // {"distance": "km"} or {"currency": "1INCH"}.
    QJsonObject toJson() const;
    static std::optional<Unit> fromJson(const QJsonObject &object);

    // Every unit in lookup order: all currencies, then distances, areas, volumes, masses
    // and temperatures, each family in the order of its cases.
    static const std::vector<Unit> &all();

    friend bool operator==(const Unit &, const Unit &) = default;

private:
    std::variant<CurrencyUnit, DistanceUnit, AreaUnit, VolumeUnit, MassUnit, TemperatureUnit> m_value;
};

} // namespace scrivlet
