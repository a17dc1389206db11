#include "AppDelegate.h"

#include "Core/HotKeys.h"
#include "Core/Phone.h"
#include "Core/SystemBits.h"
#include "Core/Updater.h"
#include "Platform/Platform.h"

#include <utility>

namespace pavonel {

AppDelegate::AppDelegate(Platform &platform, Settings &settings, Stats &stats, HotKeyManager &hotKeys,
                         Phone &phone, Updater &updater)
    : platform_(platform), settings_(settings), stats_(stats), hotKeys_(hotKeys), phone_(phone),
      updater_(updater), controller_({*platform.mainLoop, platform, *platform.processes, *platform.sounds},
                                     settings, stats, &phone),
      toast_(platform, *platform.notifications) {}

AppDelegate::~AppDelegate() {
    platform_.power->onWake({}); // the platform stays when we go
}

void AppDelegate::setUp() {
    overlays_.emplace(platform_, controller_, settings_, hotKeys_);
    headsUp_.emplace(platform_, *platform_.notifications, controller_, settings_);
    floating_.emplace(platform_, *platform_.pointer, controller_);
    settingsWindow_.emplace(PageContext{
        platform_, platform_, *platform_.pointer, *platform_.installedApplications, *platform_.sounds,
        *platform_.processes, *platform_.loginItem, *platform_.desktopExtension, *platform_.power,
        *platform_.statusItem, *platform_.defaults, settings_, stats_, phone_, hotKeys_, updater_});
    controller_.start(); // before the menu bar, which on the same beat shows what this one has counted
    menuBar_.emplace(*platform_.statusItem, *platform_.mainLoop, controller_, settings_, stats_,
                     [this] { settingsWindow_->show(); });
    connectController();
    repairLoginItem();
    if (settings_.hotKeysEnabled)
        registerHotKeys();
    // Every sleep counts as a full rest, however short; a break that was running goes on.
    platform_.power->onWake([this] { controller_.resetTimers(); });
    updater_.checkInBackground();
    platform_.installation->onSuccessor([this] { giveWay(Opening::silent); });
    welcome();
}

/// A new user sees the settings once.
void AppDelegate::welcome() {
    const QString key = QStringLiteral("didOnboard");
    const auto stored = platform_.defaults->value(key);
    if (stored && *stored == StoredValue(true))
        return;
    platform_.defaults->set(key, true);
    settingsWindow_->show();
}

void AppDelegate::reopen() {
    if (!giveWay(Opening::showingSettings) && settingsWindow_)
        settingsWindow_->show();
}

/// A running break goes on: what lies in our place waits for its end.
bool AppDelegate::giveWay(Opening opening) {
    if (controller_.phase != Phase::breaking || !updater_.isReplaced())
        return updater_.giveWay(opening);
    givesWayAfterBreak_ = opening;
    return true;
}

void AppDelegate::act(OutsideAction action) {
    switch (action) {
    case OutsideAction::takeMicroBreak:
        controller_.startBreak(BreakKind::micro, BreakController::Initiator::user);
        break;
    case OutsideAction::takeLongBreak:
        controller_.startBreak(BreakKind::long_, BreakController::Initiator::user);
        break;
    case OutsideAction::skip:
        controller_.skip();
        break;
    case OutsideAction::togglePause:
        controller_.togglePause();
        break;
    }
}

void AppDelegate::publishTo(StatusPublisher &publisher) {
    remoteControl_.emplace(publisher, controller_, settings_, stats_, *platform_.mainLoop);
}

void AppDelegate::connectController() {
    controller_.onHeadsUp = [this](BreakKind kind, const QString &title) {
        overlays_->expect();
        headsUp_->show(kind, title);
        if (settings_.showFloatingCountdown)
            floating_->show();
    };
    controller_.onHeadsUpDismiss = [this] {
        headsUp_->hide();
        floating_->hide();
        overlays_->standDown();
    };
    controller_.onBreakStart = [this](BreakKind) {
        headsUp_->hide();
        floating_->hide();
        overlays_->show();
    };
    controller_.onBreakEnd = [this] {
        overlays_->hide();
        if (const auto opening = std::exchange(givesWayAfterBreak_, {}))
            giveWay(*opening);
    };
    controller_.onWellness = [this](const QString &message, const QString &iconName) {
        if (controller_.phase != Phase::breaking)
            toast_.show(message, iconName);
    };
}

void AppDelegate::repairLoginItem() {
    LoginItem &item = *platform_.loginItem;
    if (settings_.launchAtLogin && !item.isEnabled())
        LaunchAtLogin::set(item, true); // what hinders it is told where the user asks for it
}

void AppDelegate::registerHotKeys() {
    constexpr std::uint32_t controlOptionCommand = 0x1900;
    constexpr std::uint32_t keyB = 11;
    constexpr std::uint32_t keyS = 1;
    constexpr std::uint32_t keyP = 35;
    const auto bind = [&](std::uint32_t id, std::uint32_t key, const QString &label, OutsideAction action) {
        hotKeys_.registerBinding({id, key, controlOptionCommand, label, [this, action] { act(action); }});
    };
    bind(1, keyB, QStringLiteral("⌃⌥⌘B"), OutsideAction::takeMicroBreak);
    bind(2, keyS, QStringLiteral("⌃⌥⌘S"), OutsideAction::skip);
    bind(3, keyP, QStringLiteral("⌃⌥⌘P"), OutsideAction::togglePause);
}

} // namespace pavonel
