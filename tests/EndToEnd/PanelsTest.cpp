#include "EndToEnd/Desktop.h"

#include <functional>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QJsonObject breakInTenSeconds{{QStringLiteral("microInterval"), 10},
                                    {QStringLiteral("preNotifySeconds"), 9},
                                    {QStringLiteral("postureInterval"), 2}};

const QJsonObject headsUpForLong{{QStringLiteral("microInterval"), 600},
                                 {QStringLiteral("preNotifySeconds"), 598},
                                 {QStringLiteral("postureInterval"), 0}};

/// The programs of this test are started with two pixels a point.
struct DoubleScale {
    DoubleScale() { qputenv("QT_SCALE_FACTOR", "2"); }
    ~DoubleScale() { qunsetenv("QT_SCALE_FACTOR"); }
};

std::optional<SeenWindow> find(Desktop &desktop, const char *title) {
    for (const SeenWindow &window : desktop.tree().visible()) {
        if (window.title == QString::fromUtf8(title))
            return window;
    }
    return std::nullopt;
}

/// In vain once the program has ended.
bool stands(Desktop &desktop, const char *title, const std::function<bool(const QRect &)> &well) {
    bool does = false;
    waitUntil([&] {
        const auto window = find(desktop, title);
        does = window && well(window->frame);
        return does || !desktop.isRunning();
    });
    return does;
}

bool standsAt(Desktop &desktop, const char *title, const QRect &place) {
    return stands(desktop, title, [&](const QRect &frame) { return frame == place; });
}

/// With its shadow, where a compositor runs.
bool headsUpStandsOn(Desktop &desktop, const QRect &screen) {
    const QSize size(340, 132);
    const QRect place(screen.topRight() + QPoint(1 - 18 - size.width(), 18), size);
    return stands(desktop, "Pavonel Heads-up", [&](const QRect &frame) {
        return frame.contains(place) && place.adjusted(-100, -100, 100, 100).contains(frame);
    });
}

/// Both that wait for a break, on the screen at the left upper corner.
bool standIn(Desktop &desktop, QSize screen) {
    const QRect whole({0, 0}, screen);
    return headsUpStandsOn(desktop, whole) && stands(desktop, "Pavonel Countdown", [&](const QRect &frame) {
               return whole.contains(frame.center());
           });
}

class PanelsUnder : public testing::TestWithParam<XServer::WindowManager> {};

INSTANTIATE_TEST_SUITE_P(WindowManagers, PanelsUnder,
                         testing::Values(XServer::WindowManager::openbox, XServer::WindowManager::xfwm4,
                                         XServer::WindowManager::xfwm4WithCompositor),
                         [](const auto &manager) {
                             switch (manager.param) {
                             case XServer::WindowManager::openbox:
                                 return "openbox";
                             case XServer::WindowManager::xfwm4:
                                 return "xfwm4";
                             default:
                                 return "xfwm4WithCompositor";
                             }
                         });

} // namespace

TEST(Panels, stand_to_the_pixel_on_the_screen_of_the_pointer) {
    Desktop desktop;
    desktop.store(breakInTenSeconds);
    desktop.startProgram();
    const QPoint pointer = Desktop::screen(1).center() + QPoint(7, 300);
    EXPECT_TRUE(standsAt(desktop, "Pavonel Toast", {1280 + 640 - 190, 24, 380, 56}));
    EXPECT_TRUE(standsAt(desktop, "Pavonel Heads-up", {2560 - 340 - 18, 18, 340, 132}));
    EXPECT_TRUE(standsAt(desktop, "Pavonel Countdown", {pointer + QPoint(16, 12), QSize(86, 30)}));
}

TEST(Panels, stand_to_the_pixel_at_two_pixels_a_point) {
    const DoubleScale scale;
    Desktop desktop;
    desktop.store(breakInTenSeconds);
    desktop.server().xdotool({QStringLiteral("mousemove"), QStringLiteral("1500"), QStringLiteral("400")});
    desktop.startProgram();
    EXPECT_TRUE(standsAt(desktop, "Pavonel Toast", {1280 + 640 - 380, 48, 760, 112}));
    EXPECT_TRUE(standsAt(desktop, "Pavonel Heads-up", {2560 - 680 - 36, 36, 680, 264}));
    EXPECT_TRUE(standsAt(desktop, "Pavonel Countdown", {1532, 424, 172, 60}));
}

TEST_P(PanelsUnder, follow_a_screen_that_changes_its_mode) {
    Desktop desktop(GetParam());
    desktop.server().setMonitors({});
    desktop.store(headsUpForLong);
    desktop.startProgram();
    ASSERT_TRUE(headsUpStandsOn(desktop, {0, 0, 3840, 720}));
    for (const QSize mode : {QSize(1280, 720), QSize(1920, 700), QSize(3840, 720)}) {
        desktop.server().setMode(mode);
        EXPECT_TRUE(standIn(desktop, mode)) << mode.width() << " x " << mode.height();
    }
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_P(PanelsUnder, follow_a_screen_that_changes_its_mode_again_and_again_at_once) {
    Desktop desktop(GetParam());
    desktop.server().setMonitors({});
    desktop.store(headsUpForLong);
    desktop.startProgram();
    ASSERT_TRUE(headsUpStandsOn(desktop, {0, 0, 3840, 720}));
    for (int round = 0; round < 3; ++round) {
        for (const QSize mode : {QSize(1280, 720), QSize(3840, 720), QSize(1920, 700)})
            desktop.server().setMode(mode);
    }
    EXPECT_TRUE(standIn(desktop, {1920, 700}));
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_P(PanelsUnder, appear_on_the_screen_that_is_left_when_theirs_is_removed) {
    Desktop desktop(GetParam());
    desktop.store(headsUpForLong);
    desktop.startProgram();
    ASSERT_TRUE(headsUpStandsOn(desktop, Desktop::screen(1)));
    desktop.server().setMonitors({Desktop::screen(0)});
    EXPECT_TRUE(standIn(desktop, Desktop::screen(0).size()));
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

} // namespace pavonel::test
