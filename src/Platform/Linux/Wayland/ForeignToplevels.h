#pragma once

#include "Platform/Linux/Applications/WindowSource.h"
#include "Platform/Linux/Wayland/WaylandConnection.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

struct zwlr_foreign_toplevel_manager_v1;

namespace pavonel {

/// The windows of all programs, as the compositor tells task bars of them: no process and no place, but which
/// application is in front and what is fullscreen. The first question subscribes, for every window's new
/// title is told too.
class ForeignToplevels final : public WindowSource {
public:
    explicit ForeignToplevels(std::shared_ptr<WaylandConnection> connection);
    ~ForeignToplevels() override;

    bool isTelling() override;
    std::optional<FrontWindow> front() override;
    std::vector<FullscreenWindow> fullscreen() override;

private:
    class Toplevel;

    void subscribe();
    void forget();
    const Toplevel *activated();

    std::shared_ptr<WaylandConnection> connection_;
    std::optional<WaylandConnection::Offer> offer_; ///< Of the manager.
    zwlr_foreign_toplevel_manager_v1 *manager_ = nullptr;
    std::vector<std::unique_ptr<Toplevel>> toplevels_;
    std::uint64_t opened_ = 0; ///< So many windows so far.
};

} // namespace pavonel
