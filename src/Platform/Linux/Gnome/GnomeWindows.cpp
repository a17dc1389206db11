#include "Platform/Linux/Gnome/GnomeWindows.h"

#include "Platform/Linux/Gnome/GnomeExtension.h"
#include "Platform/Linux/X11/X11Points.h"

namespace pavonel {

bool GnomeWindows::isTelling() {
    return extension_->isPresent();
}

std::optional<FrontWindow> GnomeWindows::front() {
    const auto front = extension_->front();
    if (!front)
        return std::nullopt;
    return FrontWindow{0, front->processId, front->windowClass, front->windowInstance};
}

std::vector<FullscreenWindow> GnomeWindows::fullscreen() {
    const auto front = extension_->front();
    if (!front || !front->isFullscreen)
        return {};
    return {{front->processId, pointsOfPixels(QRect(front->middle, QSize(1, 1))).topLeft()}};
}

} // namespace pavonel
