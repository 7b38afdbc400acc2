#pragma once

#include <type_traits>

// For compile-time tests of the members that other programs are written against.

namespace test
{

template <typename Expected, typename Member>
constexpr bool is_exactly(Member /*member*/)
{
    return std::is_same_v<Expected, Member>;
}

/// Only an overload of exactly this type converts to the parameter.
template <typename Expected>
constexpr bool has_overload(Expected /*member*/)
{
    return true;
}

/// Converts to this type alone.
template <typename T>
struct Exactly {
    template <typename U, typename = std::enable_if_t<std::is_same_v<U, T>>>
    operator U() const;
};

} // namespace test
