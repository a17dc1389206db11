#include "EndToEnd/Desktop.h"

#include <QImage>

#include <algorithm>
#include <csignal>
#include <cstdlib>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// The sharpest step in brightness between two neighbouring pixels of a row: gradients have next to none.
int contrast(const QImage &picture, const QRect &area) {
    int sharpest = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        for (int x = area.left() + 1; x <= area.right(); ++x)
            sharpest = std::max(sharpest, std::abs(qGray(line[x]) - qGray(line[x - 1])));
    }
    return sharpest;
}

bool showsText(const QImage &picture, const QRect &screen) {
    return contrast(picture, screen.adjusted(8, 8, -8, -8)) > 40;
}

bool shows(const QImage &picture, const QRect &area, const QColor &colour) {
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        if (std::find(line + area.left(), line + area.right() + 1, colour.rgb()) != line + area.right() + 1)
            return true;
    }
    return false;
}

std::vector<QRect> sortedFrames(const std::vector<SeenWindow> &windows) {
    std::vector<QRect> frames;
    for (const SeenWindow &window : windows)
        frames.push_back(window.frame);
    std::ranges::sort(frames, {}, [](const QRect &frame) { return frame.x(); });
    return frames;
}

const QJsonObject breakAfterTwoSeconds{{QStringLiteral("microInterval"), 2},
                                       {QStringLiteral("microDuration"), 600}};

void startAndWaitForBreak(Desktop &desktop, QJsonObject settings = breakAfterTwoSeconds) {
    desktop.store(settings);
    desktop.startProgram();
    ASSERT_TRUE(desktop.waitForOverlays());
}

/// A painted break screen listens to the keyboard too.
void waitForText(Desktop &desktop) {
    EXPECT_TRUE(waitUntil([&] { return showsText(desktop.server().picture(), Desktop::screen(1)); }))
        << "no text on the screen of the pointer";
}

int count(const Desktop &desktop, const char *what) {
    return desktop.statistics()[QLatin1StringView(what)].toInt(-1);
}

} // namespace

TEST(Break, covers_every_screen_when_it_is_due_and_not_before) {
    Desktop desktop;
    startAndWaitForBreak(desktop, {{QStringLiteral("microInterval"), 3}});

    const qint64 late = desktop.millisecondsSinceStart() - 3000;
    std::printf("overlays %lld ms after the due tick, the start of the program included\n",
                static_cast<long long>(late));
    EXPECT_GE(late, 0);
    EXPECT_EQ(sortedFrames(desktop.overlays()),
              (std::vector{Desktop::screen(0), Desktop::screen(1), Desktop::screen(2)}));
    EXPECT_TRUE(waitUntil([&] {
        const QImage picture = desktop.server().picture();
        return !shows(picture, picture.rect(), Desktop::background());
    })) << "something of the desktop can still be seen";
}

TEST(Break, only_the_main_screen_has_the_text) {
    Desktop desktop;
    startAndWaitForBreak(desktop);

    waitForText(desktop);
    const QImage picture = desktop.server().picture();
    EXPECT_FALSE(showsText(picture, Desktop::screen(0)));
    EXPECT_FALSE(showsText(picture, Desktop::screen(2)));
}

TEST(Break, escape_ends_it_and_counts_a_skip) {
    Desktop desktop;
    startAndWaitForBreak(desktop,
                         {{QStringLiteral("microInterval"), 10}, {QStringLiteral("microDuration"), 600}});
    waitForText(desktop);

    desktop.pressEscape();

    EXPECT_TRUE(desktop.waitForNoOverlay());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_EQ(count(desktop, "skipped"), 1);
    EXPECT_EQ(count(desktop, "micro"), 0);
}

TEST(Break, a_strict_one_holds_against_escape_and_is_counted_when_it_is_over) {
    Desktop desktop;
    startAndWaitForBreak(desktop, {{QStringLiteral("microInterval"), 3},
                                   {QStringLiteral("microDuration"), 4},
                                   {QStringLiteral("strictMode"), true}});
    waitForText(desktop);

    desktop.pressEscape();

    EXPECT_TRUE(desktop.waitForNoOverlay());
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_EQ(count(desktop, "skipped"), 0);
    EXPECT_GE(count(desktop, "micro"), 1);
}

class BreakUnder : public testing::TestWithParam<XServer::WindowManager> {};

INSTANTIATE_TEST_SUITE_P(WindowManagers, BreakUnder,
                         testing::Values(XServer::WindowManager::openbox,
                                         XServer::WindowManager::xfwm4WithCompositor),
                         [](const auto &manager) {
                             return manager.param == XServer::WindowManager::openbox ? "openbox" : "xfwm4";
                         });

TEST_P(BreakUnder, a_fullscreen_window_opened_meanwhile_stays_below) {
    Desktop desktop(GetParam());
    startAndWaitForBreak(desktop);

    const auto title = QStringLiteral("A film");
    const QColor film(0, 255, 0);
    desktop.tree().openFullscreen(title, Desktop::screen(0), film);

    ASSERT_TRUE(waitUntil([&] {
        return std::ranges::any_of(desktop.tree().visible(), [&](const SeenWindow &window) {
            return window.title == title && window.frame.size() == Desktop::screen(0).size();
        });
    }));
    // It may flash up before the overlay hears of it; after that it must stay away.
    int quiet = 0;
    EXPECT_TRUE(waitUntil([&] {
        const QImage picture = desktop.server().picture();
        quiet = shows(picture, picture.rect(), film) ? 0 : quiet + 1;
        return quiet == 20;
    })) << "the film lies above the break screen";
    EXPECT_EQ(desktop.overlays().size(), std::size_t{Desktop::screens});
}

TEST(Break, a_screen_removed_meanwhile_does_no_harm) {
    Desktop desktop;
    startAndWaitForBreak(desktop,
                         {{QStringLiteral("microInterval"), 3}, {QStringLiteral("microDuration"), 5}});

    desktop.server().setMonitors({Desktop::screen(0), Desktop::screen(1)});

    EXPECT_TRUE(desktop.waitForNoOverlay());
    EXPECT_TRUE(desktop.waitForOverlays(2)) << "the next break is for the screens that are left";
    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_GE(count(desktop, "micro"), 1);
}

TEST(Break, two_follow_each_other_back_to_back) {
    Desktop desktop;
    startAndWaitForBreak(desktop,
                         {{QStringLiteral("microInterval"), 1}, {QStringLiteral("microDuration"), 2}});

    EXPECT_TRUE(desktop.waitForNoOverlay());
    EXPECT_TRUE(desktop.waitForOverlays());
    EXPECT_TRUE(desktop.waitForNoOverlay());

    EXPECT_EQ(desktop.endProgram(SIGTERM), 0);
    EXPECT_GE(count(desktop, "micro"), 2);
    EXPECT_EQ(count(desktop, "skipped"), 0);
}

} // namespace pavonel::test
