#pragma once

#include "Platform/Service.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace pavonel {

/// What the user asked of the look of the whole desktop.
struct AppearanceWishes {
    bool dark = false;
    bool reducedMotion = false;
    std::optional<std::uint32_t> accent; ///< 0xRRGGBB in sRGB; absent while the user chose none.

    bool operator==(const AppearanceWishes &) const = default;
};

class Appearance : public Service {
public:
    virtual AppearanceWishes wishes() = 0;

    /// `changed` is called on the main thread after the wishes changed; one listener.
    virtual void onChange(std::function<void()> changed) = 0;
};

} // namespace pavonel
