#pragma once

#include "Platform/Linux/X11/X11Connection.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace pavonel {

/// Where the keys of a Mac keyboard are on this one, and which of the server's modifiers are which.
///
/// A virtual key code of the Mac names a position (11 is the key where a US keyboard has B), whatever letter
/// the layout puts there, and so do the key names of the XKB extension ("AB05"). So shortcuts stay under the
/// same fingers on every layout, and it does not matter how the server numbers its keys.
class X11Keyboard {
public:
    /// Whether the server has the XKB extension. To be asked before the rest.
    static bool isReadable(X11Connection &connection);

    /// As the keyboard is now; read it again after it changed.
    static X11Keyboard read(X11Connection &connection);

    struct Combination {
        xcb_keycode_t key;
        std::uint16_t modifiers; ///< XCB_MOD_MASK_…
        auto operator<=>(const Combination &) const = default;
    };

    /// Absent when this keyboard has no such key or lacks one of the modifiers.
    std::optional<Combination> resolve(std::uint32_t macKeyCode, std::uint32_t macModifiers) const;

    /// Every state of the locks (Caps Lock, Num Lock, Scroll Lock) under which a shortcut is to work.
    const std::vector<std::uint16_t> &lockStates() const { return lockStates_; }

    /// What a shortcut is to be compared by: the modifiers of a key event that are not locks.
    std::uint16_t withoutLocks(std::uint16_t state) const;

    bool operator==(const X11Keyboard &) const = default;

private:
    std::map<std::uint32_t, xcb_keycode_t> keyOfName_; ///< By the four letters of the name.
    std::uint16_t command_ = 0;                        ///< 0 is none.
    std::uint16_t option_ = 0;
    std::uint16_t locks_ = 0;
    std::vector<std::uint16_t> lockStates_;
};

} // namespace pavonel
