#include "UI/Panels/NoticePresenter.h"

#include <algorithm>
#include <utility>

namespace pavonel {

NoticePresenter::FadingPanel::FadingPanel(const DisplayServices &display,
                                          std::unique_ptr<FloatingPanel> newcomer)
    : panel(std::move(newcomer)), fade(display.loop, display.appearance,
                                       [&window = *panel](double opacity) { window.setOpacity(opacity); }) {}

NoticePresenter::NoticePresenter(const DisplayServices &display, Notifications &notifications)
    : display_(display), notifications_(notifications), screenChanges_([this] { follow(); }) {}

void NoticePresenter::show(Notice notice) {
    hide();
    notice_ = std::move(notice);
    if (display_.layers.placesPanels())
        raise(mainScreen(display_.screens.all()));
    else
        notification_ = notifications_.show(notice_.asNotification());
}

void NoticePresenter::raise(const std::optional<Screen> &screen) {
    place_ = placeOn(screen);
    shown_ = std::make_unique<FadingPanel>(display_, notice_.make());
    shown_->panel->setOpacity(0);
    shown_->panel->present(place_.corner, screen);
    shown_->fade.to(1, notice_.fadeIn);
}

NoticePresenter::Place NoticePresenter::placeOn(const std::optional<Screen> &screen) const {
    return screen ? Place{screen->name, notice_.corner(screen->visibleFrame)} : Place();
}

/// While its mode changes, a screen may be gone for a moment, and then there may be none.
void NoticePresenter::follow() {
    const auto attached = display_.screens.all();
    if (!shown_ || attached.empty())
        return;
    const auto same = std::ranges::find(attached, place_.screen, &Screen::name);
    const auto screen = same == attached.end() ? mainScreen(attached) : std::optional(*same);
    if (placeOn(screen) == place_)
        return;
    shown_.reset();
    raise(screen);
}

void NoticePresenter::hide() {
    notification_.reset();
    if (!shown_)
        return;
    leaving_.push_back(std::move(shown_));
    FadingPanel &fading = *leaving_.back();
    fading.panel->retire();
    fading.fade.to(0, notice_.fadeOut, [this, gone = &fading] {
        std::erase_if(leaving_, [gone](const auto &candidate) { return candidate.get() == gone; });
    });
}

} // namespace pavonel
