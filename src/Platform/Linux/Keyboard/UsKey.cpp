#include "Platform/Linux/Keyboard/UsKey.h"

#include "Platform/Linux/X11/macKeyPositions.h"

#include <QByteArrayView>

#include <array>
#include <span>

namespace pavonel {

namespace {

/// XKB names keys by their row and the place in it, counted from one.
struct Row {
    char name[3];
    const char *signs;
    std::uint32_t first; ///< The keycode on its left end.
};
constexpr Row rows[] = {{"AE", "1234567890-=", 10},
                        {"AD", "QWERTYUIOP[]", 24},
                        {"AC", "ASDFGHJKL;'", 38},
                        {"AB", "ZXCVBNM,./", 52}};

constexpr std::array<ShortcutName, 3> names{{{"take-micro-break", "Take a micro break"},
                                             {"skip", "Skip the break"},
                                             {"toggle-pause", "Pause or resume"}}};

} // namespace

std::optional<UsKey> UsKey::of(std::uint32_t macKeyCode, std::uint32_t macModifiers) {
    constexpr std::uint32_t all = mac::command | mac::shift | mac::option | mac::control;
    const QByteArrayView key = xkbNameOfMacKey(macKeyCode);
    if (key.size() != 4 || (macModifiers & all) == 0 || (macModifiers & ~all) != 0)
        return {};
    for (const Row &row : rows) {
        const QByteArrayView signs = row.signs;
        const int place = key.sliced(2).toByteArray().toInt() - 1;
        if (key.startsWith(row.name) && 0 <= place && place < signs.size())
            return UsKey{signs[place], row.first + static_cast<std::uint32_t>(place), macModifiers};
    }
    return {};
}

QByteArray UsKey::modifiersBy(const Names &by) const {
    QByteArray all;
    const auto add = [&](std::uint32_t bit, const char *name) {
        if ((modifiers & bit) != 0)
            all += name;
    };
    add(mac::control, by.control);
    add(mac::option, by.option);
    add(mac::shift, by.shift);
    add(mac::command, by.command);
    return all;
}

const ShortcutName *shortcutName(std::uint32_t identifier) {
    return 1 <= identifier && identifier <= names.size() ? &names[identifier - 1] : nullptr;
}

} // namespace pavonel
