#pragma once

#include <utility>
#include <variant>

namespace scrivlet::math {

// A value or the error that kept it from being made. The engine hands errors back as
// values at its edge, so a line that fails to parse costs its caller no exception.
template <typename T, typename E> class Either {
public:
    Either(T value) : m_state(std::in_place_index<0>, std::move(value)) {}
    Either(E error) : m_state(std::in_place_index<1>, std::move(error)) {}

    bool hasValue() const { return m_state.index() == 0; }
    bool hasError() const { return m_state.index() == 1; }
    explicit operator bool() const { return hasValue(); }

    const T &value() const & { return std::get<0>(m_state); }
    T &value() & { return std::get<0>(m_state); }
    T &&value() && { return std::get<0>(std::move(m_state)); }
    const T &operator*() const & { return value(); }
    const T *operator->() const { return &value(); }

    const E &error() const & { return std::get<1>(m_state); }
    E &&error() && { return std::get<1>(std::move(m_state)); }

private:
    std::variant<T, E> m_state;
};

} // namespace scrivlet::math
