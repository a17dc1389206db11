#pragma once

#include "Platform/Linux/Applications/WindowSource.h"
#include "Platform/Linux/Sway/SwayIpc.h"

#include <memory>
#include <optional>
#include <vector>

namespace pavonel {

/// Windows as sway tells of them: with their process and their place.
class SwayWindows final : public WindowSource {
public:
    /// Null where there is no sway.
    static std::unique_ptr<SwayWindows> make();

    bool isTelling() override { return ipc_->isAlive() && isKnown_; }
    std::optional<FrontWindow> front() override { return front_; }
    std::vector<FullscreenWindow> fullscreen() override { return fullscreen_; }

private:
    explicit SwayWindows(std::unique_ptr<SwayIpc> ipc);

    void notice(SwayIpc::Event event, const QJsonDocument &told);
    void askTree();
    void take(const QJsonDocument &tree);
    void look(const QJsonObject &node);

    std::unique_ptr<SwayIpc> ipc_;
    bool isKnown_ = false;
    bool isAsking_ = false;
    bool isStale_ = false; ///< Something changed since the question that is out.
    std::optional<FrontWindow> front_;
    std::vector<FullscreenWindow> fullscreen_;
};

} // namespace pavonel
