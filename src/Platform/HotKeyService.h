#pragma once

#include "Platform/Service.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace pavonel {

/// What the system gives for a registered hot key; destroying it unregisters the key.
class HotKeyRegistration {
public:
    HotKeyRegistration() = default;
    HotKeyRegistration(const HotKeyRegistration &) = delete;
    HotKeyRegistration &operator=(const HotKeyRegistration &) = delete;
    virtual ~HotKeyRegistration() = default;

    /// Whether the key is ours now. Some desktops tell only a moment later.
    virtual bool isHeld() const { return true; }
};

/// System-wide keyboard shortcuts. Key codes and modifier bits are those of the Mac's hot-key service
/// (virtual key codes are positions on the keyboard; command 0x0100, option 0x0800, control 0x1000).
class HotKeyService : public Service {
public:
    /// Given the identifier of the pressed key; may be called on any thread. Presses only, never releases.
    using PressHandler = std::function<void(std::uint32_t identifier)>;

    virtual void setPressHandler(PressHandler handler) = 0;

    /// Null when the combination cannot be had, because another program owns it for instance.
    [[nodiscard]] virtual std::unique_ptr<HotKeyRegistration>
    registerKey(std::uint32_t keyCode, std::uint32_t modifiers, std::uint32_t identifier) = 0;
};

} // namespace pavonel
