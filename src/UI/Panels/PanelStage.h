#pragma once

#include "UI/Fade.h"
#include "UI/Panels/FloatingPanel.h"

namespace pavonel {

/// Fades one panel in at a time; panels that it hides fade out on their own, retired.
class PanelStage {
public:
    explicit PanelStage(Platform &platform);

    bool isEmpty() const { return !shown_; }

    /// The stage must be empty.
    void show(std::unique_ptr<FloatingPanel> panel, QPoint corner, const std::optional<Screen> &screen,
              Seconds fadeIn);
    void hide(Seconds fadeOut);

private:
    struct Actor {
        Actor(Platform &platform, std::unique_ptr<FloatingPanel> newcomer);

        std::unique_ptr<FloatingPanel> panel;
        Fade fade;
    };

    Platform &platform_;
    std::unique_ptr<Actor> shown_;
    std::vector<std::unique_ptr<Actor>> leaving_;
};

} // namespace pavonel
