#pragma once

#include "Platform/Service.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

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

    using Listening = std::shared_ptr<const std::function<void()>>;

    /// `changed` is called on the main thread after the wishes changed, until the last copy of what this
    /// gives is gone.
    [[nodiscard]] Listening onChange(std::function<void()> changed) {
        auto listening = std::make_shared<const std::function<void()>>(std::move(changed));
        listeners_.push_back(listening);
        return listening;
    }

protected:
    void tellChange() {
        std::erase_if(listeners_, [](const auto &listener) { return listener.expired(); });
        const auto listeners = listeners_; // a listener may begin or end to listen
        for (const auto &weak : listeners) {
            if (const auto listener = weak.lock())
                (*listener)();
        }
    }

private:
    std::vector<std::weak_ptr<const std::function<void()>>> listeners_;
};

} // namespace pavonel
