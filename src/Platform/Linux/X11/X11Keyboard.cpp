#include "Platform/Linux/X11/X11Keyboard.h"

#include "Platform/Linux/Keyboard/UsKey.h"
#include "Platform/Linux/X11/macKeyPositions.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>

#include <xcb/xcb_keysyms.h>
// Its C header names a member with a word that C++ keeps for itself.
#define explicit isExplicit
#include <xcb/xkb.h>
#undef explicit

namespace pavonel {

namespace {

constexpr std::uint16_t allModifiers = 0xff; // the rest of a key event's state are buttons and layout groups

// The numbers of these key symbols are fixed by the protocol.
constexpr xcb_keysym_t numLock = 0xff7f;
constexpr xcb_keysym_t scrollLock = 0xff14;
constexpr xcb_keysym_t leftAlt = 0xffe9;
constexpr xcb_keysym_t rightAlt = 0xffea;
constexpr xcb_keysym_t leftSuper = 0xffeb;
constexpr xcb_keysym_t rightSuper = 0xffec;

std::uint32_t packed(const char *name) {
    std::array<char, XCB_XKB_CONST_KEY_NAME_LENGTH> padded{};
    std::copy_n(name, std::min(std::strlen(name), padded.size()), padded.begin());
    std::uint32_t number;
    static_assert(sizeof number == padded.size());
    std::memcpy(&number, padded.data(), sizeof number);
    return number;
}

std::map<std::uint32_t, xcb_keycode_t> readNames(xcb_connection_t *xcb) {
    constexpr std::uint32_t which = XCB_XKB_NAME_DETAIL_KEY_NAMES;
    const XReply<xcb_xkb_get_names_reply_t> reply(
        xcb_xkb_get_names_reply(xcb, xcb_xkb_get_names(xcb, XCB_XKB_ID_USE_CORE_KBD, which), nullptr));
    if (!reply)
        return {};
    xcb_xkb_get_names_value_list_t values;
    xcb_xkb_get_names_value_list_unpack(
        xcb_xkb_get_names_value_list(reply.get()), reply->nTypes, reply->indicators, reply->virtualMods,
        reply->groupNames, reply->nKeys, reply->nKeyAliases, reply->nRadioGroups, reply->which, &values);
    std::map<std::uint32_t, xcb_keycode_t> names;
    for (std::uint8_t index = 0; index < reply->nKeys; ++index) {
        std::uint32_t name;
        std::memcpy(&name, values.keyNames[index].name, sizeof name);
        names.emplace(name, static_cast<xcb_keycode_t>(reply->firstKey + index));
    }
    return names;
}

/// Which modifiers the keys with these symbols set.
class Modifiers {
public:
    explicit Modifiers(xcb_connection_t *xcb)
        : symbols_(xcb_key_symbols_alloc(xcb), &xcb_key_symbols_free),
          mapping_(xcb_get_modifier_mapping_reply(xcb, xcb_get_modifier_mapping(xcb), nullptr)) {}

    std::uint16_t of(std::initializer_list<xcb_keysym_t> keySymbols) const {
        std::uint16_t mask = 0;
        for (const xcb_keysym_t symbol : keySymbols) {
            const XReply<xcb_keycode_t> keys(xcb_key_symbols_get_keycode(symbols_.get(), symbol));
            for (const xcb_keycode_t *key = keys.get(); key && *key != XCB_NO_SYMBOL; ++key)
                mask = static_cast<std::uint16_t>(mask | of(*key));
        }
        return mask;
    }

private:
    std::uint16_t of(xcb_keycode_t key) const {
        if (!mapping_)
            return 0;
        const xcb_keycode_t *keys = xcb_get_modifier_mapping_keycodes(mapping_.get());
        std::uint16_t mask = 0;
        for (int modifier = 0; modifier < 8; ++modifier) {
            for (int index = 0; index < mapping_->keycodes_per_modifier; ++index) {
                if (*keys++ == key)
                    mask = static_cast<std::uint16_t>(mask | (1 << modifier));
            }
        }
        return mask;
    }

    std::unique_ptr<xcb_key_symbols_t, decltype(&xcb_key_symbols_free)> symbols_;
    XReply<xcb_get_modifier_mapping_reply_t> mapping_;
};

std::uint16_t lowestBit(std::uint16_t mask) {
    return static_cast<std::uint16_t>(mask & -mask);
}

} // namespace

bool X11Keyboard::isReadable(X11Connection &connection) {
    const auto *extension = xcb_get_extension_data(connection.xcb(), &xcb_xkb_id);
    if (!extension || !extension->present)
        return false;
    const auto cookie = xcb_xkb_use_extension(connection.xcb(), XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION);
    const XReply<xcb_xkb_use_extension_reply_t> reply(
        xcb_xkb_use_extension_reply(connection.xcb(), cookie, nullptr));
    return reply && reply->supported;
}

X11Keyboard X11Keyboard::read(X11Connection &connection) {
    X11Keyboard keyboard;
    keyboard.keyOfName_ = readNames(connection.xcb());
    const Modifiers modifiers(connection.xcb());
    keyboard.command_ = lowestBit(modifiers.of({leftSuper, rightSuper}));
    keyboard.option_ = lowestBit(modifiers.of({leftAlt, rightAlt}));
    const int ours = keyboard.command_ | keyboard.option_ | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_SHIFT;
    keyboard.locks_ =
        static_cast<std::uint16_t>((modifiers.of({numLock, scrollLock}) | XCB_MOD_MASK_LOCK) & ~ours);
    for (std::uint16_t state = 0; state <= keyboard.locks_; ++state) {
        if ((state & ~keyboard.locks_) == 0)
            keyboard.lockStates_.push_back(state);
    }
    return keyboard;
}

std::optional<X11Keyboard::Combination> X11Keyboard::resolve(std::uint32_t macKeyCode,
                                                             std::uint32_t macModifiers) const {
    const char *name = xkbNameOfMacKey(macKeyCode);
    const auto key = name ? keyOfName_.find(packed(name)) : keyOfName_.end();
    if (key == keyOfName_.end())
        return std::nullopt;
    Combination combination{key->second, 0};
    const auto add = [&](std::uint32_t macBit, std::uint16_t modifier) {
        if ((macModifiers & macBit) == 0)
            return true;
        combination.modifiers = static_cast<std::uint16_t>(combination.modifiers | modifier);
        macModifiers &= ~macBit;
        return modifier != 0;
    };
    const bool complete = add(mac::command, command_) && add(mac::option, option_) &&
                          add(mac::control, XCB_MOD_MASK_CONTROL) && add(mac::shift, XCB_MOD_MASK_SHIFT);
    return complete && macModifiers == 0 ? std::optional(combination) : std::nullopt;
}

std::uint16_t X11Keyboard::withoutLocks(std::uint16_t state) const {
    return static_cast<std::uint16_t>(state & allModifiers & ~locks_);
}

} // namespace pavonel
