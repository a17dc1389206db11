#pragma once

#include "Core/BreakController.h"
#include "Core/BreakRemoteControl.h"
#include "Core/UpdaterScript.h"
#include "Platform/SingleInstance.h"
#include "UI/BreakOverlay.h"
#include "UI/MenuBar.h"
#include "UI/Panels/FloatingCountdownController.h"
#include "UI/Panels/HeadsUpController.h"
#include "UI/Panels/ToastController.h"
#include "UI/SettingsWindow/SettingsWindowController.h"

#include <optional>

namespace pavonel {

class HotKeyManager;
class Phone;
struct Platform;
class Updater;

/// Builds every long-lived object and connects them; nothing else does.
class AppDelegate {
public:
    /// Everything given must outlive the delegate.
    AppDelegate(Platform &platform, Settings &settings, Stats &stats, HotKeyManager &hotKeys, Phone &phone,
                Updater &updater);
    ~AppDelegate();

    void setUp();

    /// The user opened the program again, perhaps another version of it that lies in its place now.
    void reopen();

    /// Does what was asked for from outside, as the hot keys and the menu do.
    void act(OutsideAction action);

    /// From now on others see what goes on and can ask for what the menu offers.
    void publishTo(StatusPublisher &publisher);

private:
    void connectController();
    void repairLoginItem();
    void registerHotKeys();
    void welcome();
    bool giveWay(Opening opening);

    Platform &platform_;
    Settings &settings_;
    Stats &stats_;
    HotKeyManager &hotKeys_;
    Phone &phone_;
    Updater &updater_;
    BreakController controller_;
    std::optional<MenuBarController> menuBar_;
    std::optional<SettingsWindowController> settingsWindow_;
    std::optional<OverlayManager> overlays_;
    std::optional<HeadsUpController> headsUp_;
    std::optional<FloatingCountdownController> floating_;
    ToastController toast_;
    std::optional<BreakRemoteControl> remoteControl_;
    std::optional<Opening> givesWayAfterBreak_;
};

} // namespace pavonel
