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

class HotKeyManager;

/// Builds every long-lived object and connects them; nothing else does.
class AppDelegate {
public:
    /// `relay` may be null; everything given must outlive the delegate.
    AppDelegate(Platform &platform, Settings &settings, Stats &stats, HotKeyManager &hotKeys,
                BreakRelay *relay);
    ~AppDelegate();

    void setUp();

    /// Does what was asked for from outside, as the hot keys and the menu do.
    void act(OutsideAction action);

private:
    void connectController();
    void repairLoginItem();
    void registerHotKeys();
    void startAfresh();

    Platform &platform_;
    Settings &settings_;
    Stats &stats_;
    HotKeyManager &hotKeys_;
    BreakController controller_;
    ToastController toast_;
    std::optional<OverlayManager> overlays_;
    std::optional<HeadsUpController> headsUp_;
    std::optional<FloatingCountdownController> floating_;
    std::optional<MenuBarController> menuBar_;
};

} // namespace pavonel
