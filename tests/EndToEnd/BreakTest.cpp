#include "EndToEnd/Desktop.h"
#include "EndToEnd/Remote.h"
#include "support/MessageBus.h"
#include "support/pixels.h"

#include <QImage>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

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

/// Where a break screen has its text.
QRect middleOf(const QRect &screen) {
    return {screen.center() - QPoint(150, 150), QSize(300, 300)};
}

/// A painted break screen listens to the keyboard too.
void waitForText(Desktop &desktop) {
    EXPECT_TRUE(waitUntil([&] {
        const QImage picture = desktop.server().picture(middleOf(Desktop::screen(1)));
        return contrast(picture, picture.rect()) > 40;
    })) << "no text on the screen of the pointer";
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
    constexpr int early = 50; // a beat of a second may give way by a twentieth
    EXPECT_GE(late, -early);
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

/// The frames of the overlays, each covering its screen, with nothing of the desktop to be seen and the text
/// in the middle of the screen that has it.
bool coverExactly(Desktop &desktop, const std::vector<QRect> &screens, const QRect &withText) {
    const QImage picture = desktop.server().picture();
    return sortedFrames(desktop.overlays()) == screens &&
           std::ranges::none_of(screens,
                                [&](const QRect &screen) {
                                    return !picture.rect().contains(screen) ||
                                           shows(picture, screen, Desktop::background());
                                }) &&
           contrast(picture, middleOf(withText)) > 40;
}

TEST(Break, it_follows_a_screen_that_changes_its_mode) {
    Desktop desktop;
    desktop.server().setMonitors({});
    desktop.store(breakAfterTwoSeconds);
    desktop.startProgram();
    ASSERT_TRUE(desktop.waitForOverlays(1));

    for (const QSize mode : {QSize(1280, 720), QSize(1920, 700), QSize(800, 600), QSize(3840, 720)}) {
        desktop.server().setMode(mode);
        const QRect screen({0, 0}, mode);
        EXPECT_TRUE(waitUntil([&] { return coverExactly(desktop, {screen}, screen); }))
            << mode.width() << " x " << mode.height();
    }
}

TEST(Break, it_covers_a_screen_that_was_off_for_a_moment) {
    Desktop desktop;
    desktop.server().setMonitors({});
    desktop.store(breakAfterTwoSeconds);
    desktop.startProgram();
    ASSERT_TRUE(desktop.waitForOverlays(1));

    desktop.server().run(QStringLiteral("xrandr"),
                         {QStringLiteral("--fbmm"), QStringLiteral("500x280"), QStringLiteral("--output"),
                          QStringLiteral("screen"), QStringLiteral("--off")});
    const QRect screen(0, 0, 1280, 720);
    desktop.server().setMode(screen.size());
    EXPECT_TRUE(waitUntil([&] { return coverExactly(desktop, {screen}, screen); }));
}

TEST(Break, it_covers_screens_that_come_back_in_another_size_and_place) {
    Desktop desktop;
    startAndWaitForBreak(desktop);
    waitForText(desktop);

    desktop.server().setMonitors({Desktop::screen(0)});
    ASSERT_TRUE(desktop.waitForOverlays(1));
    const std::vector<QRect> screens = {Desktop::screen(0), {1280, 0, 1024, 700}, {2304, 20, 1280, 700}};
    desktop.server().setMonitors(screens);
    EXPECT_TRUE(waitUntil([&] { return coverExactly(desktop, screens, screens[0]); }));
}

/// Large, for decoding it takes longer than showing a window does.
QString pictureIn(const QTemporaryDir &folder) {
    QImage picture(6000, 4000, QImage::Format_RGB32);
    picture.fill(QColor(255, 128, 0));
    const QString path = folder.filePath(QStringLiteral("sunset.png"));
    EXPECT_TRUE(picture.save(path));
    return path;
}

TEST(Break, shows_the_users_own_picture_from_the_first_moment) {
    const QTemporaryDir folder;
    Desktop desktop;
    desktop.store({{QStringLiteral("microInterval"), 3},
                   {QStringLiteral("preNotifySeconds"), 2},
                   {QStringLiteral("customBackgroundPath"), pictureIn(folder)}});
    desktop.startProgram();

    const QPoint aside = Desktop::screen(0).center();
    QList<QColor> seen; // one after the other
    EXPECT_TRUE(waitUntil([&] {
        const QColor colour = desktop.server().colourAt(aside);
        if (seen.isEmpty() || seen.last() != colour)
            seen.append(colour);
        return colour != Desktop::background() && desktop.overlays().size() == std::size_t{Desktop::screens};
    }));
    waitForText(desktop);
    const QColor atLast = desktop.server().colourAt(aside);
    EXPECT_GT(atLast.red(), 2 * atLast.blue()) << "not the picture";
    EXPECT_EQ(seen, (QList<QColor>{Desktop::background(), atLast})) << "something else before the picture";
}

/// Where memory is short, a thread that painting waits for would never come, and the break screen would stay.
TEST(Break, is_painted_without_a_new_thread) {
    const MessageBus bus;
    Desktop desktop;
    desktop.environment().insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus.address());
    desktop.startProgram();
    const Remote remote(desktop.environment());
    ASSERT_TRUE(remote.waitForIt());
    const QString ofAPool = QStringLiteral("Thread (pooled)");
    const QStringList before = desktop.threads(ofAPool);

    remote.choose(QStringLiteral("Take a micro break"));
    ASSERT_TRUE(desktop.waitForOverlays());
    waitForText(desktop);
    EXPECT_EQ(desktop.threads(ofAPool), before);
}

TEST(Break, its_code_leaves_memory_when_it_is_over) {
    Desktop desktop;
    startAndWaitForBreak(desktop,
                         {{QStringLiteral("microInterval"), 2}, {QStringLiteral("microDuration"), 3}});
    waitForText(desktop);
    const int during = desktop.codeInMemory();
    ASSERT_GT(during, 0);
    EXPECT_TRUE(waitUntil([&] { return desktop.codeInMemory() < during * 3 / 4; }));
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
