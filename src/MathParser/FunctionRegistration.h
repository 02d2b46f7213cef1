#pragma once

#include "MathParser/Function.h"

#include <QStringList>

namespace scrivlet::math {

// A function as a set holds it: the function and every name it is registered under.
class FunctionRegistration {
public:
    explicit FunctionRegistration(Function function) : m_names(function.names()), m_function(std::move(function)) {}

    const QStringList &names() const { return m_names; }
    const Function &function() const { return m_function; }
    void addName(const QString &name) { m_names.append(name); }

private:
    QStringList m_names;
    Function m_function;
};

} // namespace scrivlet::math
