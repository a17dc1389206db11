#include "UI/Panels/FloatingCountdownController.h"
#include "UI/Panels/HeadsUpController.h"
#include "support/Scenario.h"
#include "support/windows.h"

#include <QAbstractButton>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

class FloatingCountdown : public ::testing::Test {
protected:
    Scenario scenario;
    FloatingCountdownController countdown{scenario.platform, scenario.platform.mouse, scenario.controller};

    static QWidget *panel() { return shownWindow("Pavonel Countdown"); }
    static QImage picture() { return panel()->grab(panel()->contentsRect()).toImage(); }

    struct PaintCount final : QObject {
        int paints = 0;
        bool eventFilter(QObject *, QEvent *event) override {
            paints += event->type() == QEvent::Paint;
            return false;
        }
    };
    struct MoveCount final : QObject {
        int moves = 0;
        bool eventFilter(QObject *, QEvent *event) override {
            moves += event->type() == QEvent::Move;
            return false;
        }
    };
};

} // namespace

TEST_F(FloatingCountdown, stands_16_points_right_of_and_12_below_the_pointer_at_once) {
    scenario.platform.mouse.where = QPointF(640, 480);
    countdown.show();
    EXPECT_EQ(slabOf(panel()), QRect(656, 492, 86, 30));
}

TEST_F(FloatingCountdown, turns_dark_as_a_whole_with_the_desktop) {
    countdown.show();
    QApplication::processEvents();
    PaintCount counted;
    panel()->installEventFilter(&counted);
    scenario.platform.colours.change({true, false, {}});
    QApplication::processEvents();
    EXPECT_EQ(counted.paints, 1) << "it does not wait for the next second";
    const QImage turned = picture();
    countdown.hide();
    countdown.show();
    EXPECT_EQ(turned, picture()) << "it looks like one that was dark from the start";
}

TEST_F(FloatingCountdown, follows_the_pointer_thirty_times_a_second) {
    countdown.show();
    MoveCount counted;
    panel()->installEventFilter(&counted);
    for (int frame = 0; frame < 30; ++frame) {
        *scenario.platform.mouse.where += QPointF(5, 2);
        scenario.platform.loop.advance(1.0 / 30);
        EXPECT_EQ(slabOf(panel()).topLeft(), (*scenario.platform.mouse.where + QPointF(16, 12)).toPoint());
    }
    EXPECT_EQ(counted.moves, 30);
}

TEST_F(FloatingCountdown, stays_beside_the_pointer_on_a_second_screen) {
    scenario.platform.fakeScreens.screens = {
        {QStringLiteral("A"), {0, 0, 1920, 1080}, {0, 24, 1920, 1056}, true},
        {QStringLiteral("B"), {-1280, -200, 1280, 720}, {-1280, -200, 1280, 720}, false}};
    countdown.show();
    scenario.platform.mouse.where = QPointF(-700, -150);
    scenario.platform.loop.advance(0.04);
    EXPECT_EQ(slabOf(panel()).topLeft(), QPoint(-684, -138));
}

TEST_F(FloatingCountdown, is_never_cut_by_an_edge_of_the_screen_nor_lies_over_the_pointer) {
    countdown.show();
    const QRect screen = scenario.platform.fakeScreens.screens[0].frame.toRect();
    for (const int x : {screen.left(), screen.right() - 40, screen.right()}) {
        for (const int y : {screen.top(), screen.bottom() - 20, screen.bottom()}) {
            scenario.platform.mouse.where = QPointF(x, y);
            scenario.platform.loop.advance(0.04);
            EXPECT_TRUE(screen.contains(slabOf(panel()))) << x << ' ' << y;
            EXPECT_FALSE(slabOf(panel()).contains(QPoint(x, y))) << x << ' ' << y;
        }
    }
}

TEST_F(FloatingCountdown, between_two_screens_it_stays_whole_on_that_of_the_pointer) {
    scenario.platform.fakeScreens.screens = {
        {QStringLiteral("A"), {0, 0, 1920, 1080}, {0, 24, 1920, 1056}, true},
        {QStringLiteral("B"), {1920, 0, 1280, 720}, {1920, 0, 1280, 720}, false}};
    countdown.show();
    scenario.platform.mouse.where = QPointF(1919, 300);
    scenario.platform.loop.advance(0.04);
    EXPECT_EQ(slabOf(panel()).topLeft(), QPoint(1920 - 86, 312));
    scenario.platform.mouse.where = QPointF(1920, 300);
    scenario.platform.loop.advance(0.04);
    EXPECT_EQ(slabOf(panel()).topLeft(), QPoint(1936, 312));
}

TEST_F(FloatingCountdown, asks_for_the_screens_when_it_appears_and_when_they_change) {
    countdown.show();
    auto &screens = scenario.platform.fakeScreens;
    const int queries = screens.queries;
    for (int frame = 0; frame < 30; ++frame) {
        *scenario.platform.mouse.where += QPointF(5, 2);
        scenario.platform.loop.advance(1.0 / 30);
    }
    EXPECT_EQ(screens.queries, queries);
    screens.screens = {{QStringLiteral("A"), {0, 0, 1280, 720}, {0, 0, 1280, 720}, true}};
    scenario.platform.mouse.where = QPointF(1279, 300);
    tellThatScreensChanged();
    EXPECT_EQ(slabOf(panel()).topLeft(), QPoint(1280 - 86, 312));
}

TEST_F(FloatingCountdown, at_rest_it_follows_its_screen) {
    scenario.platform.mouse.where.reset();
    countdown.show();
    scenario.platform.fakeScreens.screens = {
        {QStringLiteral("B"), {0, 0, 1280, 720}, {0, 0, 1280, 720}, true}};
    tellThatScreensChanged();
    EXPECT_EQ(slabOf(panel()), QRect(1280 - 18 - 86, 18 + 132 + 12, 86, 30));
    EXPECT_EQ(scenario.platform.layers.assignments.back().screen.name, QStringLiteral("B"));
}

TEST_F(FloatingCountdown, does_not_move_while_the_pointer_rests) {
    countdown.show();
    MoveCount counted;
    panel()->installEventFilter(&counted);
    scenario.platform.loop.advance(5);
    EXPECT_EQ(counted.moves, 0);
}

TEST_F(FloatingCountdown, is_drawn_again_only_when_its_text_changed) {
    countdown.show();
    QApplication::processEvents();
    PaintCount counted;
    for (auto *child : panel()->findChildren<QWidget *>())
        child->installEventFilter(&counted);
    scenario.platform.mouse.where = QPointF(10, 10);
    for (int i = 0; i < 10; ++i) {
        scenario.controller.longElapsed = i;
        scenario.platform.loop.advance(0.05);
        QApplication::processEvents();
    }
    EXPECT_EQ(counted.paints, 0);
    scenario.advance(1);
    QApplication::processEvents();
    EXPECT_EQ(counted.paints, 1);
}

TEST_F(FloatingCountdown, shows_the_time_to_the_coming_break) {
    scenario.advance(1176);
    countdown.show();
    const QImage at24 = picture();
    scenario.advance(1);
    EXPECT_NE(picture(), at24);
    scenario.controller.microElapsed = 1176;
    scenario.platform.loop.advance(0);
    EXPECT_EQ(picture(), at24);
}

TEST_F(FloatingCountdown, shows_0_00_when_no_break_is_scheduled) {
    scenario.settings.microEnabled = false;
    scenario.settings.longEnabled = false;
    countdown.show();
    const QImage without = picture();
    scenario.settings.microEnabled = true;
    scenario.controller.microElapsed = 1200;
    scenario.platform.loop.advance(0);
    EXPECT_EQ(picture(), without);
}

TEST_F(FloatingCountdown, a_repeated_show_changes_nothing) {
    countdown.show();
    QWidget *first = panel();
    countdown.show();
    EXPECT_EQ(panel(), first);
}

TEST_F(FloatingCountdown, appears_and_goes_at_once_and_looks_no_longer_for_the_pointer) {
    const auto timers = scenario.platform.loop.timerCount();
    countdown.show();
    EXPECT_EQ(panel()->windowOpacity(), 1);
    countdown.hide();
    EXPECT_TRUE(visibleWindows("Pavonel Countdown").empty());
    EXPECT_EQ(scenario.platform.loop.timerCount(), timers);
    countdown.hide();
}

TEST_F(FloatingCountdown, lets_clicks_pass_and_never_takes_the_keyboard) {
    countdown.show();
    EXPECT_TRUE(panel()->windowFlags() & Qt::WindowTransparentForInput);
    EXPECT_TRUE(panel()->windowFlags() & Qt::WindowDoesNotAcceptFocus);
    EXPECT_EQ(scenario.platform.layers.assignments.back().layer, WindowLayer::panel);
}

TEST_F(FloatingCountdown, rests_below_the_heads_up_where_nobody_tells_where_the_pointer_is) {
    scenario.platform.mouse.where.reset();
    countdown.show();
    scenario.platform.loop.advance(1);
    EXPECT_EQ(slabOf(panel()), QRect(1920 - 18 - 86, 24 + 18 + 132 + 12, 86, 30));
}

TEST_F(FloatingCountdown, closing_the_heads_up_leaves_it_and_the_coming_break_untouched) {
    HeadsUpController headsUp(scenario.platform, scenario.platform.notices, scenario.controller,
                              scenario.settings);
    scenario.advance(1170);
    headsUp.show(BreakKind::micro, QStringLiteral("Micro break"));
    countdown.show();
    for (auto *close : shownWindow("Pavonel Heads-up")->findChildren<QAbstractButton *>()) {
        if (close->accessibleName() == QStringLiteral("Dismiss this notice"))
            click(*close);
    }
    EXPECT_EQ(shownWindow("Pavonel Heads-up"), nullptr);
    EXPECT_NE(panel(), nullptr);
    EXPECT_EQ(scenario.controller.phase, Phase::headsUp);
    EXPECT_EQ(scenario.controller.next()->remaining, 30);
}

} // namespace pavonel::test
