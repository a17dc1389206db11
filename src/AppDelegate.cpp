#include "AppDelegate.h"

#include "Platform/Platform.h"

namespace pavonel {

AppDelegate::AppDelegate() : controller_(Platform::current(), Settings::shared(), Stats::shared()) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::setUp() {
    menuBar_.emplace(Platform::current(), controller_, Settings::shared(), Stats::shared(), [] {});
    controller_.start();
}

} // namespace pavonel
