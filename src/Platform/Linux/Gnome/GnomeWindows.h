#pragma once

#include "Platform/Linux/Applications/WindowSource.h"

#include <memory>

namespace pavonel {

class GnomeExtension;

/// The window in front, as our extension of GNOME Shell tells of it.
class GnomeWindows final : public WindowSource {
public:
    explicit GnomeWindows(std::shared_ptr<GnomeExtension> extension) : extension_(std::move(extension)) {}

    bool isTelling() override;
    std::optional<FrontWindow> front() override;
    std::vector<FullscreenWindow> fullscreen() override;

private:
    std::shared_ptr<GnomeExtension> extension_;
};

} // namespace pavonel
