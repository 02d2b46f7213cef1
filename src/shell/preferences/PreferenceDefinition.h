#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace scrivlet {

enum class PreferenceType { Bool, Int, Double, String, Word };

// One key of the settings catalogue: its type and default. `Word` keys hold one of
// a fixed list of words (the stored form of an enumeration).
struct PreferenceDefinition {
    QString key;
    PreferenceType type;
    QVariant defaultValue;
    QStringList words = {};

    // The stored value as this key's type, or nothing when it has the wrong type:
    // a wrong type counts as missing. Text forms ("true", "2", "0.5") are accepted,
    // since the ini store gives every value back as text.
    std::optional<QVariant> coerce(const QVariant &stored) const;
    QString typeName() const;
};

} // namespace scrivlet
