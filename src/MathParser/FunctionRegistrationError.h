#pragma once

#include <QString>

namespace scrivlet::math {

// Why a function could not be added to, or removed from, a function set.
class FunctionRegistrationError {
public:
    enum class Kind : quint8 { functionAlreadyExists, functionDoesNotExist };

    FunctionRegistrationError(Kind kind, QString name) : m_kind(kind), m_name(std::move(name)) {}

    Kind kind() const { return m_kind; }
    const QString &name() const { return m_name; }

private:
    Kind m_kind;
    QString m_name;
};

} // namespace scrivlet::math
