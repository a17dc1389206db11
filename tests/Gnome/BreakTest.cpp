#include "Gnome/GnomeDesktop.h"
#include "support/waitUntil.h"

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

const QByteArray keyA = "key " + QByteArray::number(Qt::Key_A);

/// With our extension and without it.
struct BreakOnGnome : testing::TestWithParam<GnomeShell::Extension> {
    /// With a break that somebody asked for.
    void start(const QJsonObject &settings = {{u"microDuration"_s, 600}}) {
        desktop.store(settings);
        desktop.startProgram();
        desktop.takeBreak();
    }
    OtherWindow openWindow(OtherWindow::State state = OtherWindow::State::normal) {
        return OtherWindow(shell.environment(), u"other"_s, state);
    }

    GnomeDesktop desktop{GetParam()};
    GnomeShell &shell = desktop.shell();
};

TEST_P(BreakOnGnome, covers_every_output_and_shows_its_text_on_one) {
    start();
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_EQ(desktop.complaints().toStdString(), "");
}

TEST_P(BreakOnGnome, lies_above_a_fullscreen_window) {
    OtherWindow other = openWindow(OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.isPainted(GnomeShell::outputSize));
    start();
    EXPECT_TRUE(desktop.waitForBreak());
}

TEST_P(BreakOnGnome, stays_above_a_fullscreen_window_that_opens_during_it) {
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    OtherWindow other = openWindow(OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.isPainted(GnomeShell::outputSize));
    EXPECT_TRUE(desktop.waitForBreak());
    shell.press({u"Escape"_s});
    EXPECT_TRUE(desktop.waitForNoBreak());
}

TEST_P(BreakOnGnome, takes_the_keyboard_until_escape_ends_it) {
    OtherWindow other = openWindow();
    ASSERT_TRUE(other.becomesActive());
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    ASSERT_TRUE(other.becomesInactive());
    shell.press({u"a"_s});
    shell.press({u"Escape"_s});
    EXPECT_TRUE(desktop.waitForNoBreak());
    ASSERT_TRUE(other.becomesActive());
    EXPECT_EQ(other.times(keyA), 0);
    shell.press({u"a"_s});
    EXPECT_TRUE(waitUntil([&] { return other.times(keyA) == 1; }));
}

TEST_P(BreakOnGnome, takes_the_keyboard_back_from_a_window_that_opens_during_it) {
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    OtherWindow other = openWindow();
    ASSERT_TRUE(waitUntil([&] { return shell.hasWindow(u"other"_s) && shell.hasFocus(u"Pavonel Break"_s); }));
    shell.press({u"a"_s});
    shell.press({u"Escape"_s});
    EXPECT_TRUE(desktop.waitForNoBreak());
    EXPECT_EQ(other.times(keyA), 0);
}

TEST_P(BreakOnGnome, cannot_be_escaped_in_strict_mode) {
    start({{u"microDuration"_s, 10}, {u"strictMode"_s, true}});
    ASSERT_TRUE(desktop.waitForBreak());
    shell.press({u"Escape"_s});
    EXPECT_TRUE(desktop.waitForNoBreak());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_GE(desktop.statistics()[u"micro"_s].toInt(), 1);
    EXPECT_EQ(desktop.statistics()[u"skipped"_s].toInt(), 0);
}

TEST_P(BreakOnGnome, survives_outputs_that_go_and_come) {
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    shell.setOutputs(1);
    EXPECT_TRUE(waitUntil([&] { return shell.picture().width() == GnomeShell::outputSize.width(); }));
    EXPECT_TRUE(desktop.waitForBreak(1));
    shell.setOutputs(2);
    EXPECT_TRUE(waitUntil([&] { return shell.picture().width() == 2 * GnomeShell::outputSize.width(); }));
    shell.press({u"Escape"_s});
    EXPECT_TRUE(desktop.waitForNoBreak());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_P(BreakOnGnome, is_announced_by_a_notice_that_takes_clicks_and_leaves_the_keyboard_to_others) {
    OtherWindow other = openWindow(OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.becomesActive() && other.isPainted(GnomeShell::outputSize));
    desktop.store({{u"microInterval"_s, 600},
                   {u"preNotifySeconds"_s, 599},
                   {u"microDuration"_s, 600},
                   {u"pauseOnFullscreen"_s, false}});
    desktop.startProgram();
    const auto notice = [&](const QImage &picture) {
        return QRect(picture.width() / 2 - 18 - 340, 0, 340, 250);
    };
    QPoint startNow;
    ASSERT_TRUE(waitUntil([&] {
        const QImage picture = shell.picture();
        const QRect area = notice(picture);
        const int x = area.center().x();
        for (int y = 18; y < area.bottom(); ++y) {
            if (picture.pixelColor(x, y) != OtherWindow::colour() &&
                picture.pixelColor(x, y + 100) != OtherWindow::colour()) {
                startNow = QPoint(area.left() + 14 + 20, y + 14 + 32 + 12 + 10);
                return true;
            }
        }
        return false;
    }));
    shell.press({u"a"_s});
    EXPECT_TRUE(waitUntil([&] { return other.times(keyA) == 1; }));
    ASSERT_TRUE(waitUntil([&] { return shell.takesClicks(QStringLiteral("Pavonel Heads-up"), startNow); }));
    shell.click(startNow);
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_EQ(other.times("click"), 0);
}

TEST_P(BreakOnGnome, comes_again_when_it_is_over) {
    start();
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(desktop.waitForBreak());
        shell.press({u"Escape"_s});
        ASSERT_TRUE(desktop.waitForNoBreak());
        desktop.takeBreak();
    }
}

INSTANTIATE_TEST_SUITE_P(, BreakOnGnome,
                         testing::Values(GnomeShell::Extension::missing, GnomeShell::Extension::enabled),
                         [](const auto &each) {
                             return each.param == GnomeShell::Extension::missing ? "without_the_extension"
                                                                                 : "with_the_extension";
                         });

} // namespace

} // namespace pavonel::test
