#include "EndToEnd/WaylandDesktop.h"
#include "support/KWin.h"
#include "support/KWinOutputs.h"
#include "support/Sway.h"
#include "support/waitUntil.h"

#include <QJsonArray>

#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QJsonObject longBreakSoon{{QStringLiteral("microInterval"), 2}, {QStringLiteral("microDuration"), 600}};
const QByteArray keyA = "key " + QByteArray::number(Qt::Key_A);

template <class Kind> std::unique_ptr<Compositor> make() {
    return std::make_unique<Kind>();
}

/// Around all that is nearly white: text and ring.
QRect whiteIn(const QImage &picture) {
    constexpr int nearlyWhite = 200;
    const QImage grey = picture.convertToFormat(QImage::Format_Grayscale8);
    QRect white;
    for (int y = 0; y < grey.height(); ++y) {
        for (int x = 0; x < grey.width(); ++x) {
            if (grey.constScanLine(y)[x] > nearlyWhite)
                white |= QRect(x, y, 1, 1);
        }
    }
    return white;
}

/// What holds on every compositor with a layer shell.
struct BreakOnWayland : testing::TestWithParam<std::unique_ptr<Compositor> (*)()> {
    void start(const QJsonObject &settings = longBreakSoon) {
        desktop.store(settings);
        desktop.startProgram();
    }
    void press(VirtualInput::Key key) { compositor.input().press(key); }

    WaylandDesktop desktop{GetParam()()};
    Compositor &compositor = desktop.compositor();
};

/// The system settings of Plasma switch outputs off and on, and scale them.
struct BreakOnKWin : testing::Test {
    void startBreak() {
        desktop.store(longBreakSoon);
        desktop.startProgram();
        ASSERT_TRUE(desktop.waitForBreak());
    }
    /// Everything is covered, in a picture of this size.
    bool isCovered(QSize size) {
        return waitUntil([&] {
            const QImage picture = kwin.picture();
            return picture.size() == size && WaylandDesktop::isCovered(picture);
        });
    }
    bool endsByEscape() {
        return waitUntil([&] {
            kwin.input().press(VirtualInput::escape);
            return desktop.showsNoBreak();
        });
    }

    static constexpr QSize one = Compositor::outputSize;
    static constexpr QSize both{2 * one.width(), one.height()};
    WaylandDesktop desktop{std::make_unique<KWin>()};
    KWin &kwin = static_cast<KWin &>(desktop.compositor());
    KWinOutputs outputs{kwin.socket()};
};

/// What only sway lets us do: pull cables, and change what its outputs are.
struct BreakOnSway : testing::Test {
    void startBreak() {
        desktop.store(longBreakSoon);
        desktop.startProgram();
        ASSERT_TRUE(desktop.waitForBreak());
    }
    bool isCovered(const char *output) {
        const QString name = QString::fromLatin1(output);
        return waitUntil([&] { return WaylandDesktop::isCovered(sway.picture(name)); });
    }
    bool isFree(const char *output) {
        const QString name = QString::fromLatin1(output);
        return waitUntil([&] {
            const QImage picture = sway.picture(name);
            return picture.pixelColor(picture.width() / 2, 5) == Compositor::background();
        });
    }
    void escape() { sway.input().press(VirtualInput::escape); }

    WaylandDesktop desktop{std::make_unique<Sway>()};
    Sway &sway = static_cast<Sway &>(desktop.compositor());
};

INSTANTIATE_TEST_SUITE_P(Desktops, BreakOnWayland, testing::Values(make<Sway>, make<KWin>),
                         [](const auto &each) { return each.index == 0 ? "sway" : "KWin"; });

TEST_P(BreakOnWayland, covers_every_output_and_shows_its_text_on_one) {
    start();
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_EQ(desktop.complaints().toStdString(), "");
}

TEST_P(BreakOnWayland, stands_in_the_middle_where_the_user_has_qt_draw_larger) {
    desktop.environment().insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("1.5"));
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    QRect text;
    const auto isInTheMiddle = [&] {
        const QImage picture = compositor.picture();
        text = QRect();
        for (const int output : {0, 1})
            text |= whiteIn(picture.copy(WaylandDesktop::screen(output)));
        constexpr int aside = 3;
        return !text.isNull() && std::abs(text.center().x() - Compositor::outputSize.width() / 2) <= aside;
    };
    EXPECT_TRUE(waitUntil(isInTheMiddle)) << "from " << text.left() << " to " << text.right();
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_EQ(desktop.complaints().toStdString(), "");
}

TEST_P(BreakOnWayland, lies_above_a_fullscreen_window) {
    OtherWindow other(compositor.environment(), QStringLiteral("player"), OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.isPainted(Compositor::outputSize));
    QJsonObject settings = longBreakSoon;
    settings[QStringLiteral("pauseOnFullscreen")] = false;
    start(settings);
    EXPECT_TRUE(desktop.waitForBreak());
}

TEST_P(BreakOnWayland, stays_above_a_fullscreen_window_that_opens_during_it) {
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    OtherWindow other(compositor.environment(), QStringLiteral("player"), OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.isPainted(Compositor::outputSize));
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_TRUE(
        waitUntil([&] { // where new windows are given the keyboard, the break first has to get it back
            press(VirtualInput::escape);
            return desktop.showsNoBreak();
        }));
}

TEST_P(BreakOnWayland, takes_the_keyboard_until_escape_ends_it) {
    OtherWindow other(compositor.environment());
    ASSERT_TRUE(other.becomesActive());
    start();
    ASSERT_TRUE(desktop.waitForBreak());
    ASSERT_TRUE(other.becomesInactive());
    press(VirtualInput::a);
    press(VirtualInput::escape);
    EXPECT_TRUE(desktop.waitForNoBreak());
    ASSERT_TRUE(other.becomesActive());
    EXPECT_EQ(other.times(keyA), 0);
    const auto isActive = [&] { return other.times("active") > other.times("inactive"); };
    constexpr int turns = 10; // on a busy machine the next break may come before the key
    for (int turn = 0; turn < turns && other.times(keyA) == 0; ++turn) {
        ASSERT_TRUE(waitUntil([&] {
            if (!isActive())
                press(VirtualInput::escape);
            return isActive();
        }));
        press(VirtualInput::a);
        ASSERT_TRUE(waitUntil([&] { return other.times(keyA) > 0 || !isActive(); })) << "the key is lost";
    }
    EXPECT_EQ(other.times(keyA), 1);
}

TEST_P(BreakOnWayland, cannot_be_escaped_in_strict_mode) {
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

TEST_F(BreakOnSway, covers_outputs_that_are_attached_during_it) {
    startBreak();
    sway.removeOutput(QStringLiteral("X11-1"));
    EXPECT_TRUE(waitUntil([&] { return sway.picture().width() == Compositor::outputSize.width(); }));
    EXPECT_TRUE(isCovered("X11-2"));
    ASSERT_TRUE(sway.addOutput());
    EXPECT_TRUE(isCovered("X11-3"));
    EXPECT_TRUE(isCovered("X11-2"));
    escape();
    EXPECT_TRUE(isFree("X11-2"));
    EXPECT_TRUE(isFree("X11-3"));
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_F(BreakOnSway, follows_an_output_that_changes_its_scale_and_its_mode) {
    startBreak();
    for (const char *scale : {"2", "1.5", "1"}) {
        sway.command(QStringLiteral("output X11-1 scale ") + QString::fromLatin1(scale));
        EXPECT_TRUE(isCovered("X11-1")) << scale;
    }
    sway.command(QStringLiteral("output X11-2 mode --custom 800x600"));
    EXPECT_TRUE(waitUntil([&] { return sway.picture(QStringLiteral("X11-2")).size() == QSize(800, 600); }));
    EXPECT_TRUE(isCovered("X11-2"));
    EXPECT_TRUE(isCovered("X11-1"));
    escape();
    EXPECT_TRUE(isFree("X11-1"));
    EXPECT_TRUE(isFree("X11-2"));
}

TEST_F(BreakOnSway, runs_on_while_every_output_is_gone) {
    startBreak();
    sway.removeOutput(QStringLiteral("X11-1"));
    sway.removeOutput(QStringLiteral("X11-2"));
    EXPECT_TRUE(waitUntil([&] { return sway.ask(QStringLiteral("get_outputs")).array().isEmpty(); }));
    if (!sway.addOutput())
        GTEST_SKIP() << "This sway crashes when an output comes after the last one went.";
    EXPECT_TRUE(isCovered("X11-3"));
    escape();
    EXPECT_TRUE(isFree("X11-3"));
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_F(BreakOnKWin, covers_outputs_that_go_and_come_during_it) {
    startBreak();
    outputs.setEnabled(1, false);
    EXPECT_TRUE(isCovered(one));
    outputs.setEnabled(1, true);
    EXPECT_TRUE(isCovered(both));
    outputs.setEnabled(0, false);
    EXPECT_TRUE(waitUntil([&] { return WaylandDesktop::isCovered(kwin.picture()); }));
    outputs.setEnabled(0, true);
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_TRUE(endsByEscape());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_F(BreakOnKWin, follows_an_output_that_changes_its_scale) {
    startBreak();
    for (const double scale : {2.0, 1.5, 1.0}) {
        outputs.setScale(0, scale);
        EXPECT_TRUE(waitUntil([&] { return WaylandDesktop::isCovered(kwin.picture()); })) << scale;
    }
    EXPECT_TRUE(endsByEscape());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
}

TEST_P(BreakOnWayland, is_announced_by_a_notice_that_takes_clicks_and_leaves_the_keyboard_to_others) {
    OtherWindow other(compositor.environment(), QStringLiteral("player"), OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.becomesActive() && other.isPainted(Compositor::outputSize));
    start({{QStringLiteral("microInterval"), 600},
           {QStringLiteral("preNotifySeconds"), 599},
           {QStringLiteral("microDuration"), 600},
           {QStringLiteral("showFloatingCountdown"), true},
           {QStringLiteral("pauseOnFullscreen"), false}});
    const QRect notice(Compositor::outputSize.width() - 18 - 340, 18, 340, 132);
    const QRect countdown(notice.right() + 1 - 86, notice.bottom() + 1 + 12, 86, 30);
    for (const QRect &slab : {notice, countdown}) {
        EXPECT_TRUE(waitUntil([&] {
            return compositor.picture().pixelColor(slab.center().x(), slab.bottom() - 3) !=
                   OtherWindow::colour();
        }));
    }
    compositor.click(countdown.center());
    EXPECT_TRUE(waitUntil([&] { return other.times("click") == 1; }));
    press(VirtualInput::a);
    EXPECT_TRUE(waitUntil([&] { return other.times(keyA) == 1; }));
    const QPoint startNow = notice.topLeft() + QPoint(14 + 20, 14 + 32 + 12 + 10);
    compositor.click(startNow);
    EXPECT_TRUE(desktop.waitForBreak());
    EXPECT_EQ(other.times("click"), 1);
}

TEST_P(BreakOnWayland, is_saved_when_the_compositor_goes_from_under_it) {
    start({{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 600}});
    ASSERT_TRUE(desktop.waitForBreak());
    compositor.end();
    EXPECT_NE(desktop.waitForExit(), -1) << "the program crashed or stayed";
    EXPECT_EQ(desktop.statistics()[QStringLiteral("screenSeconds")].toDouble(), 3);
}

TEST_P(BreakOnWayland, comes_again_when_it_is_over) {
    start();
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(desktop.waitForBreak());
        press(VirtualInput::escape);
        ASSERT_TRUE(desktop.waitForNoBreak());
    }
}

} // namespace

} // namespace pavonel::test
