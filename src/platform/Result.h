#pragma once

#include <optional>
#include <utility>
#include <variant>

namespace scrivlet {

// A value or the error that kept it from being made. Errors are enumerations of the
// module that raised them; at the module's edge they turn into what the user sees.
template<typename T, typename E>
class Result {
public:
    Result(T value) : m_state(std::in_place_index<0>, std::move(value)) {}
    static Result failure(E error) { return Result(std::in_place_index<1>, std::move(error)); }

    bool ok() const { return m_state.index() == 0; }
    explicit operator bool() const { return ok(); }

    const T &value() const & { return std::get<0>(m_state); }
    T &value() & { return std::get<0>(m_state); }
    T &&value() && { return std::get<0>(std::move(m_state)); }
    const T &operator*() const & { return value(); }
    const T *operator->() const { return &value(); }

    const E &error() const { return std::get<1>(m_state); }

private:
    template<std::size_t I, typename V>
    Result(std::in_place_index_t<I> tag, V &&v) : m_state(tag, std::forward<V>(v)) {}

    std::variant<T, E> m_state;
};

} // namespace scrivlet
