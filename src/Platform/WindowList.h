#pragma once

#include "Platform/Applications.h"
#include "Platform/Service.h"

#include <QRectF>

#include <optional>
#include <vector>

namespace pavonel {

/// A window of any program. What the window system does not tell is absent.
struct OnScreenWindow {
    std::optional<ProcessId> owner;
    std::optional<int> layer;     ///< 0 is a normal window; menus, panels and overlays lie higher.
    std::optional<QRectF> bounds; ///< In points, like `Screen::frame`.
};

/// The windows that are on screen now, desktop elements left out; empty on a failure.
class WindowList : public Service {
public:
    virtual std::vector<OnScreenWindow> onScreenWindows() = 0;
};

} // namespace pavonel
