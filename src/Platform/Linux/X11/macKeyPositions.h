#pragma once

#include <cstdint>

namespace pavonel {

/// The XKB name, up to four letters, of the key at the position that a Mac virtual key code stands for; null
/// for a code that no PC keyboard has a key for.
const char *xkbNameOfMacKey(std::uint32_t macKeyCode);

} // namespace pavonel
