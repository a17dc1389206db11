#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>

namespace pavonel {

/// The modifier bits of the Mac's hot-key service.
namespace mac {
inline constexpr std::uint32_t command = 0x0100;
inline constexpr std::uint32_t shift = 0x0200;
inline constexpr std::uint32_t option = 0x0800;
inline constexpr std::uint32_t control = 0x1000;
} // namespace mac

/// A combination of keys as Wayland desktops take it: with what a US keyboard has at the key's position.
struct UsKey {
    char sign;               ///< A digit, a capital letter or another sign that needs no Shift.
    std::uint32_t keycode;   ///< As XKB counts keys.
    std::uint32_t modifiers; ///< `mac::` bits.

    /// Absent for other keys than those with a sign, and for those without a modifier: they belong to the
    /// program with the keyboard.
    static std::optional<UsKey> of(std::uint32_t macKeyCode, std::uint32_t macModifiers);

    /// How a desktop calls the modifiers, each with what follows it.
    struct Names {
        const char *control;
        const char *option;
        const char *shift;
        const char *command;
    };
    QByteArray modifiersBy(const Names &names) const;

    bool operator==(const UsKey &) const = default;
};

/// What desktops that list the shortcuts of programs shall call ours.
struct ShortcutName {
    const char *name;  ///< As the actions of our desktop file are called.
    const char *title; ///< For people.
};
/// By the identifier with which they are registered; null for others.
const ShortcutName *shortcutName(std::uint32_t identifier);

} // namespace pavonel
