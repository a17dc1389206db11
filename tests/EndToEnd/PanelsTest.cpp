#include "EndToEnd/Desktop.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QJsonObject breakInTenSeconds{{QStringLiteral("microInterval"), 10},
                                    {QStringLiteral("preNotifySeconds"), 9},
                                    {QStringLiteral("postureInterval"), 2}};

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

bool standsAt(Desktop &desktop, const char *title, const QRect &place) {
    return waitUntil([&] {
        const auto window = find(desktop, title);
        return window && window->frame == place;
    });
}

/// What reaches the server late does so when the window goes; nobody calls that shown.
bool staysOpaque(Desktop &desktop, const char *title) {
    constexpr int enough = 2000; // milliseconds
    QElapsedTimer opaque;
    return waitUntil([&] {
        const auto window = find(desktop, title);
        if (!window || desktop.tree().opacity(*window) < 1)
            opaque.invalidate();
        else if (!opaque.isValid())
            opaque.start();
        return opaque.isValid() && opaque.elapsed() > enough;
    });
}

/// Which event loop of Qt's the program runs.
enum class Loop { ofGlib, ofQt };

class PanelsIn : public testing::TestWithParam<Loop> {};

INSTANTIATE_TEST_SUITE_P(Loops, PanelsIn, testing::Values(Loop::ofGlib, Loop::ofQt),
                         [](const auto &loop) { return loop.param == Loop::ofGlib ? "OfGlib" : "OfQt"; });

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

/// The pointer rests, and nothing else of Pavonel's makes Qt speak with the X server.
TEST_P(PanelsIn, a_toast_is_faded_in_while_it_is_all_that_happens) {
    Desktop desktop(XServer::WindowManager::xfwm4WithCompositor);
    desktop.environment().insert(QStringLiteral("QT_NO_GLIB"),
                                 GetParam() == Loop::ofGlib ? QString() : QStringLiteral("1"));
    desktop.store({{QStringLiteral("microInterval"), 3600}, {QStringLiteral("postureInterval"), 8}});
    desktop.startProgram();
    EXPECT_TRUE(staysOpaque(desktop, "Pavonel Toast"));
}

} // namespace pavonel::test
