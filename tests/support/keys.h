#pragma once

#include <cstdint>

namespace pavonel::test {

/// Numbers of keys by their place on the keyboard, and of modifiers, as shortcuts are stored.
inline constexpr std::uint32_t keyS = 1;
inline constexpr std::uint32_t keyB = 11;
inline constexpr std::uint32_t escape = 53;
inline constexpr std::uint32_t controlOptionCommand = 0x1900;

} // namespace pavonel::test
