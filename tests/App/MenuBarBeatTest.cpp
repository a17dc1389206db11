#include "Platform/Qt/QtMainLoop.h"
#include "UI/MenuBar.h"
#include "support/Scenario.h"
#include "support/waitUntil.h"

#include <gtest/gtest.h>

namespace pavonel::test {

/// The real loop serves all timers of one interval on one beat, in the order in which they were made.
TEST(MenuBarBeat, the_title_is_of_the_same_second_as_the_countdown) {
    FakePlatform platform;
    const auto virtualLoop =
        std::exchange(platform.mainLoop, std::unique_ptr<MainLoop>(std::make_unique<QtMainLoop>()));
    Settings settings(*platform.defaults, *platform.mainLoop);
    Stats stats(*platform.defaults, *platform.mainLoop);
    BreakController controller(servicesOf(platform), settings, stats);
    settings.microInterval = 50;
    settings.longEnabled = false;
    controller.start();
    const MenuBarController menuBar(platform.menuBar, *platform.mainLoop, controller, settings, stats, [] {});

    const auto agrees = [&] {
        const auto next = controller.next();
        return controller.microElapsed > 0 && next &&
               platform.menuBar.title == shortRemainingTime(next->remaining);
    };
    constexpr Seconds enough = 20;
    EXPECT_TRUE(waitUntil([&] { return agrees() || controller.microElapsed >= enough; }));
    EXPECT_LT(controller.microElapsed, enough) << "it lags behind";
}

} // namespace pavonel::test
