#pragma once

#include "Platform/IdleTime.h"

#include <memory>

namespace pavonel {

class X11Connection;

/// The X server's own count since the last input, over the screen saver extension.
class X11IdleTime final : public IdleTime {
public:
    /// Null where the server does not count.
    static std::unique_ptr<IdleTime> make(std::shared_ptr<X11Connection> connection);

    Seconds idleSeconds() override;

private:
    explicit X11IdleTime(std::shared_ptr<X11Connection> connection);

    std::shared_ptr<X11Connection> connection_;
};

} // namespace pavonel
