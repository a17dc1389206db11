#include "UI/Panels/PanelStage.h"

namespace pavonel {

PanelStage::Actor::Actor(Platform &platform, std::unique_ptr<FloatingPanel> newcomer)
    : panel(std::move(newcomer)), fade(*platform.mainLoop, *platform.appearance,
                                       [&window = *panel](double opacity) { window.setOpacity(opacity); }) {}

PanelStage::PanelStage(Platform &platform) : platform_(platform) {}

void PanelStage::show(std::unique_ptr<FloatingPanel> panel, QPoint corner,
                      const std::optional<Screen> &screen, Seconds fadeIn) {
    shown_ = std::make_unique<Actor>(platform_, std::move(panel));
    shown_->panel->setOpacity(0);
    shown_->panel->present(corner, screen);
    shown_->fade.to(1, fadeIn);
}

void PanelStage::hide(Seconds fadeOut) {
    if (!shown_)
        return;
    leaving_.push_back(std::move(shown_));
    Actor &actor = *leaving_.back();
    actor.panel->retire();
    actor.fade.to(0, fadeOut, [this, gone = &actor] {
        std::erase_if(leaving_, [gone](const auto &candidate) { return candidate.get() == gone; });
    });
}

} // namespace pavonel
