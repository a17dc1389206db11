#include "AppDelegate.h"

#include "Platform/Platform.h"

namespace pavonel {

AppDelegate::AppDelegate()
    : controller_(Platform::current(), Settings::shared(), Stats::shared()), toast_(Platform::current()) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::setUp() {
    headsUp_.emplace(Platform::current(), controller_, Settings::shared());
    floating_.emplace(Platform::current(), controller_);
    menuBar_.emplace(Platform::current(), controller_, Settings::shared(), Stats::shared(), [] {});
    connectController();
    controller_.start();
}

void AppDelegate::connectController() {
    controller_.onHeadsUp = [this](BreakKind kind, const QString &title) {
        headsUp_->show(kind, title);
        if (Settings::shared().showFloatingCountdown)
            floating_->show();
    };
    controller_.onHeadsUpDismiss = [this] {
        headsUp_->hide();
        floating_->hide();
    };
    controller_.onBreakStart = [this](BreakKind) {
        headsUp_->hide();
        floating_->hide();
    };
    controller_.onWellness = [this](const QString &message, const QString &iconName) {
        if (controller_.phase != Phase::breaking)
            toast_.show(message, iconName);
    };
}

} // namespace pavonel
