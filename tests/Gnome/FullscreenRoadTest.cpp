#include "Gnome/GnomeDesktop.h"
#include "support/waitUntil.h"

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

/// A compositor without a layer shell that Pavonel reaches without an X server: its breaks are fullscreen
/// windows there.
struct FullscreenRoad : testing::Test {
    FullscreenRoad() {
        desktop.environment().remove(u"DISPLAY"_s);
        desktop.store({{u"microDuration"_s, 600}, {u"pauseOnFullscreen"_s, false}});
    }
    void start() {
        desktop.startProgram();
        desktop.takeBreak();
        ASSERT_TRUE(desktop.waitForBreak());
    }

    /// The Shell has some of its own.
    const QString notices = u"Main.messageTray.getSources().flatMap(source => source.notifications)"
                            ".filter(each => each.title.startsWith('Micro break'))"_s;
    GnomeDesktop desktop;
    GnomeShell &shell = desktop.shell();
};

} // namespace

TEST_F(FullscreenRoad, a_break_covers_every_output_and_has_the_keyboard) {
    start();
    shell.press({u"Escape"_s});
    EXPECT_TRUE(desktop.waitForNoBreak());
    desktop.takeBreak();
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_EQ(desktop.complaints().toStdString(), "");
}

TEST_F(FullscreenRoad, a_break_lies_above_a_fullscreen_window) {
    OtherWindow other(shell.environment(), u"other"_s, OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.isPainted(GnomeShell::outputSize));
    start();
    shell.press({u"Escape"_s});
    EXPECT_TRUE(desktop.waitForNoBreak());
}

TEST_F(FullscreenRoad, a_break_comes_to_the_front_again_when_a_fullscreen_window_opens_during_it) {
    start();
    OtherWindow other(shell.environment(), u"other"_s, OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.isPainted(GnomeShell::outputSize));
    EXPECT_TRUE(desktop.waitForBreak());
}

/// Our panels cannot be placed there.
TEST_F(FullscreenRoad, a_notification_announces_a_break_and_its_button_starts_it) {
    const auto daemon = shell.startNotifications();
    const auto titles = [&] { return shell.eval(notices + u".map(each => each.title).join()"_s); };
    OtherWindow other(shell.environment(), u"other"_s);
    ASSERT_TRUE(other.becomesActive());
    desktop.store({{u"microInterval"_s, 600}, {u"preNotifySeconds"_s, 599}, {u"microDuration"_s, 600}});
    desktop.startProgram();
    EXPECT_TRUE(waitUntil([&] { return titles() == u"\"Micro break coming up\""_s; }))
        << qPrintable(titles());
    EXPECT_FALSE(shell.hasWindow(u"Pavonel Heads-up"_s));
    EXPECT_TRUE(shell.hasFocus(u"other"_s));
    shell.eval(notices + u".forEach(each => each.actions[0].callback())"_s);
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_TRUE(waitUntil([&] { return titles() == u"\"\""_s; })) << qPrintable(titles());
}

TEST_F(FullscreenRoad, a_break_survives_outputs_that_go_and_come) {
    start();
    shell.setOutputs(1);
    EXPECT_TRUE(waitUntil([&] { return shell.picture().width() == GnomeShell::outputSize.width(); }));
    EXPECT_TRUE(desktop.waitForBreak(1));
    shell.setOutputs(2);
    EXPECT_TRUE(desktop.waitForBreak());
    shell.press({u"Escape"_s});
    EXPECT_TRUE(desktop.waitForNoBreak());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

} // namespace pavonel::test
