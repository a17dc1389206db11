#include "EndToEnd/SwayDesktop.h"
#include "support/VirtualInput.h"
#include "support/waitUntil.h"

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QJsonObject longBreakSoon{{QStringLiteral("microInterval"), 2}, {QStringLiteral("microDuration"), 600}};
const QByteArray keyA = "key " + QByteArray::number(Qt::Key_A);

struct BreakOnSway : testing::Test {
    void start(const QJsonObject &settings = longBreakSoon) {
        desktop.store(settings);
        desktop.startProgram();
    }
    void press(VirtualInput::Key key) { sway.input().press(key); }

    SwayDesktop desktop;
    Sway &sway = desktop.sway();
};

TEST_F(BreakOnSway, covers_every_output_and_shows_its_text_on_one) {
    start();
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_EQ(desktop.complaints().toStdString(), "");
}

TEST_F(BreakOnSway, lies_above_a_fullscreen_window) {
    OtherWindow other(sway.environment(), QStringLiteral("player"), OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.isPainted(Sway::outputSize));
    start();
    EXPECT_TRUE(desktop.waitForBreak());
}

TEST_F(BreakOnSway, stays_above_a_fullscreen_window_that_opens_during_it) {
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    OtherWindow other(sway.environment(), QStringLiteral("player"), OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.isPainted(Sway::outputSize));
    EXPECT_TRUE(desktop.waitForBreak());
    press(VirtualInput::escape);
    EXPECT_TRUE(desktop.waitForNoBreak());
}

TEST_F(BreakOnSway, takes_the_keyboard_until_escape_ends_it) {
    OtherWindow other(sway.environment());
    ASSERT_TRUE(other.becomesActive());
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    ASSERT_TRUE(other.becomesInactive());
    press(VirtualInput::a);
    press(VirtualInput::escape);
    EXPECT_TRUE(desktop.waitForNoBreak());
    ASSERT_TRUE(other.becomesActive());
    EXPECT_EQ(other.times(keyA), 0);
    press(VirtualInput::a);
    EXPECT_TRUE(waitUntil([&] { return other.times(keyA) == 1; }));
}

TEST_F(BreakOnSway, cannot_be_escaped_in_strict_mode) {
    start({{QStringLiteral("microInterval"), 4},
           {QStringLiteral("microDuration"), 6},
           {QStringLiteral("strictMode"), true}});
    ASSERT_TRUE(desktop.waitForBreak());
    press(VirtualInput::escape);
    EXPECT_TRUE(desktop.waitForNoBreak());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_GE(desktop.statistics()[QStringLiteral("micro")].toInt(), 1);
    EXPECT_EQ(desktop.statistics()[QStringLiteral("skipped")].toInt(), 0);
}

TEST_F(BreakOnSway, survives_outputs_that_go_and_come) {
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    sway.removeOutput(QStringLiteral("X11-1"));
    EXPECT_TRUE(waitUntil([&] { return sway.picture().width() == Sway::outputSize.width(); }));
    EXPECT_TRUE(desktop.isRunning());
    sway.addOutput();
    EXPECT_TRUE(waitUntil([&] { return sway.picture().width() == 2 * Sway::outputSize.width(); }));
    press(VirtualInput::escape);
    EXPECT_TRUE(desktop.waitForNoBreak());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_F(BreakOnSway, is_announced_by_a_notice_that_takes_clicks_and_leaves_the_keyboard_to_others) {
    OtherWindow other(sway.environment());
    ASSERT_TRUE(other.becomesActive() && other.isPainted(Sway::outputSize));
    start({{QStringLiteral("microInterval"), 600},
           {QStringLiteral("preNotifySeconds"), 599},
           {QStringLiteral("microDuration"), 600},
           {QStringLiteral("showFloatingCountdown"), true}});
    const QRect notice(Sway::outputSize.width() - 18 - 340, 18, 340, 132);
    const QRect countdown(notice.right() + 1 - 86, notice.bottom() + 1 + 12, 86, 30);
    for (const QRect &slab : {notice, countdown}) {
        EXPECT_TRUE(waitUntil([&] {
            return sway.picture().pixelColor(slab.center().x(), slab.bottom() - 3) != OtherWindow::colour();
        }));
    }
    sway.click(countdown.center());
    EXPECT_TRUE(waitUntil([&] { return other.times("click") == 1; }));
    press(VirtualInput::a);
    EXPECT_TRUE(waitUntil([&] { return other.times(keyA) == 1; }));
    const QPoint startNow = notice.topLeft() + QPoint(14 + 20, 14 + 32 + 12 + 10);
    sway.click(startNow);
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_EQ(other.times("click"), 1);
}

TEST_F(BreakOnSway, comes_again_when_it_is_over) {
    start();
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(desktop.waitForBreak());
        press(VirtualInput::escape);
        ASSERT_TRUE(desktop.waitForNoBreak());
    }
}

} // namespace

} // namespace pavonel::test
