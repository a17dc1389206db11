#include "EndToEnd/WaylandDesktop.h"
#include "support/Weston.h"
#include "support/waitUntil.h"

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QByteArray keyA = "key " + QByteArray::number(Qt::Key_A);

/// A compositor with neither a layer shell nor an X server beside it: a break is a fullscreen window an
/// output.
struct BreakOnWeston : testing::Test {
    void start() {
        desktop.store({{QStringLiteral("microInterval"), 2}, {QStringLiteral("microDuration"), 600}});
        desktop.startProgram();
    }
    OtherWindow open(OtherWindow::State state) {
        return OtherWindow(weston.environment(), QStringLiteral("other"), state);
    }
    void escape() { weston.input().press(VirtualInput::escape); }

    WaylandDesktop desktop{std::make_unique<Weston>()};
    Compositor &weston = desktop.compositor();
};

TEST_F(BreakOnWeston, covers_every_output_and_shows_its_text_on_one) {
    start();
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_EQ(desktop.complaints().toStdString(), "");
}

TEST_F(BreakOnWeston, takes_the_keyboard_until_escape_ends_it) {
    OtherWindow other = open(OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.becomesActive() && other.isPainted(Compositor::outputSize));
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    ASSERT_TRUE(other.becomesInactive());
    weston.input().press(VirtualInput::a);
    escape();
    EXPECT_TRUE(desktop.waitForNoBreak());
    EXPECT_EQ(other.times(keyA), 0);
}

TEST_F(BreakOnWeston, comes_to_the_front_again_when_a_fullscreen_window_opens_during_it) {
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    OtherWindow other = open(OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.isPainted(Compositor::outputSize));
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_TRUE(waitUntil([&] { // it is seen before it has the keyboard
        escape();
        return desktop.showsNoBreak();
    }));
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_F(BreakOnWeston, comes_again_when_it_is_over) {
    start();
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(desktop.waitForBreak());
        escape();
        ASSERT_TRUE(desktop.waitForNoBreak());
    }
}

TEST_F(BreakOnWeston, is_saved_when_the_compositor_goes_from_under_it) {
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    weston.end();
    EXPECT_NE(desktop.waitForExit(), -1) << "the program crashed or stayed";
    EXPECT_EQ(desktop.statistics()[QStringLiteral("screenSeconds")].toDouble(), 2);
}

} // namespace

} // namespace pavonel::test
