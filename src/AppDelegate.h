#pragma once

#include "Core/BreakController.h"
#include "Platform/SingleInstance.h"
#include "UI/BreakOverlay.h"
#include "UI/MenuBar.h"
#include "UI/Panels/FloatingCountdownController.h"
#include "UI/Panels/HeadsUpController.h"
#include "UI/Panels/ToastController.h"

#include <optional>

namespace pavonel {

/// Builds every long-lived object and connects them; nothing else does.
class AppDelegate {
public:
    AppDelegate();
    ~AppDelegate();

    void setUp();

    /// Does what was asked for from outside, as the hot keys and the menu do.
    void act(OutsideAction action);

private:
    void connectController();
    void registerHotKeys();
    void startAfresh();

    BreakController controller_;
    ToastController toast_;
    std::optional<OverlayManager> overlays_;
    std::optional<HeadsUpController> headsUp_;
    std::optional<FloatingCountdownController> floating_;
    std::optional<MenuBarController> menuBar_;
};

} // namespace pavonel
