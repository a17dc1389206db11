#pragma once

#include <cstdint>

namespace pavonel::test {

/// A pointer and a keyboard of a compositor, which a test moves, clicks and types with.
class VirtualInput {
public:
    /// Keys as the kernel counts them, of a US keyboard.
    enum Key : std::uint32_t { escape = 1, s = 31, p = 25, a = 30, b = 48 };
    enum Modifier : std::uint32_t { none = 0, control = 4, alt = 8, super = 64 };

    virtual ~VirtualInput() = default;

    /// Presses and releases it, while these modifiers are held.
    virtual void press(Key key, std::uint32_t modifiers = none) = 0;

    /// Where the pointer is.
    virtual void click() = 0;
};

} // namespace pavonel::test
