#pragma once

#include <QtGlobal>

namespace scrivlet::math {

struct Configuration;

// Which of the resolver's conveniences are on, as bits of one unsigned value.
class TokenResolverOptions {
public:
    enum Option : quint32 {
        allowArgumentlessFunctions = 1u << 0,
        allowImplicitMultiplication = 1u << 1,
        useHighPrecedenceImplicitMultiplication = 1u << 2,
    };

    constexpr explicit TokenResolverOptions(quint32 rawValue = 0) : m_rawValue(rawValue) {}
    static TokenResolverOptions fromConfiguration(const Configuration &configuration);

    constexpr quint32 rawValue() const { return m_rawValue; }
    constexpr bool contains(Option option) const { return (m_rawValue & option) != 0; }

private:
    quint32 m_rawValue;
};

} // namespace scrivlet::math
