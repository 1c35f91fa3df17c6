#pragma once

#include <utility>
#include <variant>

namespace quorlin {

// The error side of an Expected, kept distinct so that Expected<T, T> is unambiguous.
template <typename E>
struct Unexpected {
    E error;
};

template <typename E>
Unexpected<std::decay_t<E>> fail(E&& error) {
    return {std::forward<E>(error)};
}

// A value or the reason there is none: how logic layers report failure
// without throwing across layers (std::expected is C++23).
template <typename T, typename E>
class Expected {
public:
    Expected(T value)
        : m_state(std::in_place_index<0>, std::move(value)) {}
    template <typename F>
    Expected(Unexpected<F> failure)
        : m_state(std::in_place_index<1>, std::move(failure.error)) {}

    bool hasValue() const { return m_state.index() == 0; }
    explicit operator bool() const { return hasValue(); }

    T& value() & { return std::get<0>(m_state); }
    const T& value() const& { return std::get<0>(m_state); }
    T&& value() && { return std::get<0>(std::move(m_state)); }
    const E& error() const { return std::get<1>(m_state); }

    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

private:
    std::variant<T, E> m_state;
};

} // namespace quorlin
