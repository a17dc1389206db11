#include "UI/Panels/PanelStage.h"

#include <algorithm>
#include <utility>

namespace pavonel {

PanelStage::Actor::Actor(Platform &platform, std::unique_ptr<FloatingPanel> newcomer)
    : panel(std::move(newcomer)), fade(*platform.mainLoop, *platform.appearance,
                                       [&window = *panel](double opacity) { window.setOpacity(opacity); }) {}

PanelStage::PanelStage(Platform &platform) : platform_(platform), screenChanges_([this] { follow(); }) {}

void PanelStage::show(Notice notice) {
    hide();
    notice_ = std::move(notice);
    raise(mainScreen(platform_.screens->all()));
}

void PanelStage::raise(const std::optional<Screen> &screen) {
    place_ = placeOn(screen);
    shown_ = std::make_unique<Actor>(platform_, notice_.make());
    shown_->panel->setOpacity(0);
    shown_->panel->present(place_.corner, screen);
    shown_->fade.to(1, notice_.fadeIn);
}

PanelStage::Place PanelStage::placeOn(const std::optional<Screen> &screen) const {
    return screen ? Place{screen->name, notice_.corner(screen->visibleFrame)} : Place();
}

/// While its mode changes, a screen may be gone for a moment, and then there may be none.
void PanelStage::follow() {
    const auto attached = platform_.screens->all();
    if (!shown_ || attached.empty())
        return;
    const auto same = std::ranges::find(attached, place_.screen, &Screen::name);
    const auto screen = same == attached.end() ? mainScreen(attached) : std::optional(*same);
    if (placeOn(screen) == place_)
        return;
    shown_.reset();
    raise(screen);
}

void PanelStage::hide() {
    if (!shown_)
        return;
    leaving_.push_back(std::move(shown_));
    Actor &actor = *leaving_.back();
    actor.panel->retire();
    actor.fade.to(0, notice_.fadeOut, [this, gone = &actor] {
        std::erase_if(leaving_, [gone](const auto &candidate) { return candidate.get() == gone; });
    });
}

} // namespace pavonel
