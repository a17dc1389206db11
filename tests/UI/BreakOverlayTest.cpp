#include "UI/BreakOverlay.h"

#include "UI/SkipButton.h"
#include "support/PaintSpy.h"
#include "support/Scenario.h"
#include "support/waitUntil.h"
#include "support/windows.h"

#include <QBackingStore>
#include <QKeyEvent>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr auto title = "Pavonel Break";
constexpr FakeHotKeys::Key escape{53, 0, 10};

class Overlay : public ::testing::Test {
protected:
    Overlay() {
        scenario.controller.onBreakStart = [this](BreakKind) { overlays->show(); };
        scenario.controller.onBreakEnd = [this] { overlays->hide(); };
    }

    void useThreeScreens() {
        scenario.platform.fakeScreens.screens = {
            {QStringLiteral("A"), {0, 0, 800, 600}, {0, 0, 800, 600}, false},
            {QStringLiteral("B"), {800, 0, 640, 480}, {800, 0, 640, 480}, true},
            {QStringLiteral("C"), {1440, 0, 800, 600}, {1440, 0, 800, 600}, false},
        };
    }

    void startBreak(Seconds duration = 20) {
        scenario.controller.startBreak(BreakKind::micro, BreakController::Initiator::user, duration);
    }

    /// Whether the program kept the key to itself.
    static bool press(QWidget &target, int key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        event.ignore();
        return QApplication::sendEvent(&target, &event) && event.isAccepted();
    }

    bool isBreaking() const { return scenario.controller.phase == Phase::breaking; }
    const OverlayManager::Windows &windows() const { return overlays->windows(); }
    FakeHotKeys &keys() { return scenario.platform.keys; }

    Scenario scenario;
    HotKeyManager hotKeys{*scenario.platform.hotKeys, scenario.platform.loop};
    std::optional<OverlayManager> overlays{std::in_place, scenario.platform, scenario.controller,
                                           scenario.settings, hotKeys};
};

} // namespace

TEST_F(Overlay, a_picture_prepared_for_a_break_that_does_not_come_is_given_back) {
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("picture.png"));
    const auto save = [&](const QColor &colour) {
        QImage picture(8, 8, QImage::Format_RGB32);
        picture.fill(colour);
        EXPECT_TRUE(picture.save(path));
    };
    const auto comesToShow = [this](auto isRight) {
        return waitUntil([&] {
            scenario.platform.loop.advance(0);
            return isRight(windows().front()->grab().toImage().pixelColor(5, 5));
        });
    };
    const auto isRed = [](const QColor &seen) { return seen.red() > 100 && seen.green() == 0; };
    const auto isGreen = [](const QColor &seen) { return seen.green() > 100 && seen.red() == 0; };
    save(Qt::red);
    scenario.settings.customBackgroundPath = path;
    startBreak();
    ASSERT_TRUE(comesToShow(isRed));
    scenario.controller.endBreak(BreakController::Ending::cutShort);
    scenario.platform.loop.advance(1);

    overlays->expect();
    ASSERT_TRUE(waitUntil([] { return !BackgroundTask::anyRunning(); }));
    scenario.platform.loop.advance(0);
    save(Qt::green);
    overlays->standDown();
    scenario.platform.loop.advance(0);

    startBreak();
    EXPECT_TRUE(comesToShow(isGreen)) << "it shows a picture that it had kept";
}

TEST_F(Overlay, one_window_a_screen_in_the_order_of_the_screens_exactly_on_its_frame) {
    useThreeScreens();
    startBreak();
    ASSERT_EQ(windows().size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        const Screen &screen = scenario.platform.fakeScreens.screens[i];
        EXPECT_EQ(windows()[i]->geometry(), screen.frame.toRect());
        EXPECT_EQ(windows()[i]->screenName(), screen.name);
        EXPECT_EQ(windows()[i]->view().geometry(), QRect(QPoint(0, 0), screen.frame.size().toSize()));
        EXPECT_TRUE(windows()[i]->isVisible());
    }
}

TEST_F(Overlay, every_window_is_in_the_overlay_layer_of_its_screen_and_named) {
    useThreeScreens();
    startBreak();
    const auto &assignments = scenario.platform.layers.assignments;
    ASSERT_EQ(assignments.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(assignments[i].window, windows()[i]->windowHandle());
        EXPECT_EQ(assignments[i].layer, WindowLayer::overlay);
        EXPECT_EQ(assignments[i].screen.name, windows()[i]->screenName());
        EXPECT_EQ(windows()[i]->windowTitle(), QString::fromUtf8(title));
        EXPECT_EQ(windows()[i]->accessibleName(), QString::fromUtf8(title));
    }
}

TEST_F(Overlay, with_three_screens_only_the_window_on_the_main_one_has_text_ring_and_button) {
    useThreeScreens();
    startBreak();
    EXPECT_FALSE(windows()[0]->view().isPrimary());
    EXPECT_TRUE(windows()[1]->view().isPrimary());
    EXPECT_FALSE(windows()[2]->view().isPrimary());
    EXPECT_TRUE(windows()[1]->view().skipButton()->isVisible());
}

TEST_F(Overlay, without_a_main_screen_no_window_has_text) {
    useThreeScreens();
    scenario.platform.fakeScreens.screens[1].isMain = false;
    startBreak();
    for (const auto &window : windows())
        EXPECT_FALSE(window->view().isPrimary());
}

TEST_F(Overlay, without_screens_a_break_runs_all_the_same) {
    scenario.platform.fakeScreens.screens.clear();
    startBreak(3);
    EXPECT_TRUE(windows().empty());
    scenario.advance(5);
    EXPECT_FALSE(isBreaking());
}

TEST_F(Overlay, a_second_show_adds_nothing) {
    useThreeScreens();
    startBreak();
    const auto *first = windows().front().get();
    overlays->show();
    EXPECT_EQ(windows().size(), 3U);
    EXPECT_EQ(windows().front().get(), first);
    EXPECT_EQ(keys().attempts.size(), 1U);
}

TEST_F(Overlay, fades_in_within_045_seconds) {
    startBreak();
    EXPECT_EQ(windows().front()->windowOpacity(), 0);
    scenario.platform.loop.advance(0.4);
    EXPECT_LT(windows().front()->windowOpacity(), 1);
    scenario.platform.loop.advance(0.06);
    EXPECT_EQ(windows().front()->windowOpacity(), 1);
}

TEST_F(Overlay, fades_out_within_03_seconds_and_then_goes_and_gives_the_keyboard_back) {
    startBreak();
    EXPECT_EQ(scenario.platform.layers.keyboardTaken, 1);
    scenario.platform.loop.advance(1);
    overlays->hide();
    EXPECT_TRUE(windows().empty()) << "at once";
    scenario.platform.loop.advance(0.28);
    EXPECT_EQ(visibleWindows(title).size(), 1U);
    EXPECT_EQ(scenario.platform.layers.keyboardYielded, 0);
    scenario.platform.loop.advance(0.04);
    EXPECT_TRUE(visibleWindows(title).empty());
    EXPECT_EQ(scenario.platform.layers.keyboardYielded, 1);
}

TEST_F(Overlay, with_reduced_motion_it_comes_and_goes_at_once) {
    scenario.platform.colours.current.reducedMotion = true;
    startBreak();
    EXPECT_EQ(windows().front()->windowOpacity(), 1);
    overlays->hide();
    scenario.platform.loop.advance(0);
    EXPECT_TRUE(visibleWindows(title).empty());
}

TEST_F(Overlay, hide_followed_at_once_by_show_fades_the_old_windows_out_while_new_ones_fade_in) {
    startBreak();
    scenario.platform.loop.advance(1);
    QWidget *old = windows().front().get();
    overlays->hide();
    overlays->show();
    ASSERT_EQ(windows().size(), 1U);
    EXPECT_NE(windows().front().get(), old);
    scenario.platform.loop.advance(0.15);
    EXPECT_EQ(visibleWindows(title).size(), 2U);
    EXPECT_GT(old->windowOpacity(), 0);
    EXPECT_LT(old->windowOpacity(), 1);
    EXPECT_GT(windows().front()->windowOpacity(), 0);
    scenario.platform.loop.advance(0.16);
    EXPECT_EQ(visibleWindows(title), std::vector<QWidget *>{windows().front().get()});
    EXPECT_EQ(scenario.platform.layers.keyboardYielded, 0) << "the new break needs the keyboard";
    scenario.platform.loop.advance(0.2);
    EXPECT_EQ(windows().front()->windowOpacity(), 1);
}

TEST_F(Overlay, a_break_that_ends_while_it_fades_in_turns_round) {
    startBreak();
    scenario.platform.loop.advance(0.2);
    QWidget *window = windows().front().get();
    const double reached = window->windowOpacity();
    overlays->hide();
    scenario.platform.loop.advance(0.02);
    EXPECT_LE(window->windowOpacity(), reached);
    scenario.platform.loop.advance(0.3);
    EXPECT_TRUE(visibleWindows(title).empty());
}

TEST_F(Overlay, hide_without_show_is_harmless) {
    overlays->hide();
    overlays->hide();
    scenario.platform.loop.advance(1);
    EXPECT_TRUE(windows().empty());
    EXPECT_EQ(scenario.platform.layers.keyboardYielded, 0);
}

TEST_F(Overlay, escape_reaches_the_program_and_ends_the_break_early) {
    startBreak();
    EXPECT_TRUE(press(*windows().front(), Qt::Key_Escape));
    EXPECT_FALSE(isBreaking());
    EXPECT_EQ(scenario.stats.today().skipped, 1);
}

TEST_F(Overlay, escape_in_any_other_window_of_ours_ends_the_break_too) {
    QWidget other;
    startBreak();
    EXPECT_TRUE(press(other, Qt::Key_Escape));
    EXPECT_FALSE(isBreaking());
}

TEST_F(Overlay, all_other_keys_pass_through) {
    startBreak();
    for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_A, Qt::Key_QuoteLeft})
        EXPECT_FALSE(press(*windows().front(), key));
    EXPECT_TRUE(isBreaking());
}

TEST_F(Overlay, escape_is_bound_system_wide_while_skipping_is_permitted) {
    startBreak();
    EXPECT_EQ(keys().registered, std::vector<FakeHotKeys::Key>{escape});
    keys().handler(10);
    scenario.platform.loop.advance(0);
    EXPECT_FALSE(isBreaking());
    EXPECT_EQ(scenario.stats.today().skipped, 1);
    EXPECT_TRUE(keys().registered.empty()) << "it is given back with the end of the break";
}

TEST_F(Overlay, a_binding_that_is_held_already_is_not_made_again) {
    hotKeys.registerBinding({HotKeyManager::escapeID, 53, 0, QStringLiteral("esc"), [] {}});
    startBreak();
    EXPECT_EQ(keys().attempts.size(), 1U);
}

TEST_F(Overlay, where_skipping_is_not_permitted_escape_is_handed_on_and_not_bound) {
    for (const auto &[allowSkip, strictMode] : {std::pair{true, true}, {false, true}, {false, false}}) {
        scenario.settings.allowSkip = allowSkip;
        scenario.settings.strictMode = strictMode;
        startBreak();
        EXPECT_FALSE(press(*windows().front(), Qt::Key_Escape));
        EXPECT_TRUE(isBreaking());
        EXPECT_TRUE(keys().registered.empty());
        EXPECT_FALSE(windows().front()->view().skipButton()->isVisible());
        scenario.controller.endBreak(BreakController::Ending::cutShort);
    }
}

TEST_F(Overlay, the_local_escape_is_judged_at_each_press_and_the_system_wide_one_at_the_start) {
    startBreak();
    scenario.settings.strictMode = true;
    EXPECT_FALSE(press(*windows().front(), Qt::Key_Escape));
    EXPECT_TRUE(isBreaking());
    EXPECT_EQ(keys().registered.size(), 1U);
    keys().handler(10);
    scenario.platform.loop.advance(0);
    EXPECT_FALSE(isBreaking());
}

TEST_F(Overlay, permission_that_comes_later_binds_no_key_but_lets_the_local_escape_through) {
    scenario.settings.strictMode = true;
    startBreak();
    scenario.settings.strictMode = false;
    EXPECT_TRUE(keys().registered.empty());
    EXPECT_TRUE(press(*windows().front(), Qt::Key_Escape));
    EXPECT_FALSE(isBreaking());
}

TEST_F(Overlay, after_the_end_escape_belongs_to_others_again) {
    startBreak();
    overlays->hide();
    QWidget other;
    EXPECT_FALSE(press(other, Qt::Key_Escape));
}

TEST_F(Overlay, a_click_on_windows_that_fade_out_does_not_end_the_next_break) {
    startBreak();
    SkipButton *old = windows().front()->view().skipButton();
    scenario.controller.endBreak(BreakController::Ending::cutShort);
    startBreak();
    click(*old);
    EXPECT_TRUE(isBreaking());
}

TEST_F(Overlay, a_screen_without_text_is_not_painted_again_when_it_fades_out) {
    useThreeScreens();
    startBreak();
    QApplication::processEvents();
    PaintSpy left(windows().front()->view());
    PaintSpy right(windows().back()->view());
    scenario.controller.endBreak(BreakController::Ending::cutShort);
    QApplication::processEvents();
    EXPECT_EQ(left.paints + right.paints, 0);
}

TEST_F(Overlay, every_window_has_its_memory_before_the_first_one_is_painted) {
    useThreeScreens();
    startBreak();
    for (const auto &window : windows())
        EXPECT_EQ(window->backingStore()->size(), window->size());
}

TEST_F(Overlay, the_frames_of_a_fade_ask_the_desktop_nothing) {
    startBreak();
    const int asked = scenario.platform.layers.fadeQuestions;
    scenario.platform.loop.advance(0.45);
    EXPECT_EQ(windows().front()->windowOpacity(), 1);
    EXPECT_EQ(scenario.platform.layers.fadeQuestions, asked);
}

TEST_F(Overlay, a_break_cannot_be_closed_away) {
    startBreak();
    EXPECT_FALSE(windows().front()->close());
    EXPECT_TRUE(windows().front()->isVisible());
}

TEST_F(Overlay, a_window_goes_with_its_screen) {
    useThreeScreens();
    startBreak();
    scenario.platform.fakeScreens.screens.erase(scenario.platform.fakeScreens.screens.begin() + 2);
    Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
    ASSERT_EQ(windows().size(), 2U);
    EXPECT_EQ(windows()[1]->screenName(), QStringLiteral("B"));
    scenario.advance(25);
    EXPECT_FALSE(isBreaking());
    EXPECT_TRUE(visibleWindows(title).empty());
}

TEST_F(Overlay, a_screen_that_comes_back_gets_a_window_again) {
    useThreeScreens();
    startBreak();
    scenario.platform.loop.advance(1);
    auto &screens = scenario.platform.fakeScreens.screens;
    const Screen gone = screens[2];
    screens.erase(screens.begin() + 2);
    Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
    screens.push_back(gone);
    Q_EMIT qGuiApp->screenAdded(QGuiApplication::primaryScreen());
    ASSERT_EQ(windows().size(), 3U);
    EXPECT_EQ(windows()[2]->geometry(), gone.frame.toRect());
    EXPECT_EQ(windows()[2]->windowOpacity(), 1);
}

TEST_F(Overlay, the_only_screen_shows_the_time_again_when_it_comes_back) {
    startBreak();
    auto &screens = scenario.platform.fakeScreens.screens;
    const auto all = std::exchange(screens, {});
    Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
    EXPECT_TRUE(windows().empty());
    screens = all;
    Q_EMIT qGuiApp->screenAdded(QGuiApplication::primaryScreen());
    ASSERT_EQ(windows().size(), 1U);
    EXPECT_TRUE(windows()[0]->view().isPrimary());
    EXPECT_EQ(scenario.platform.layers.keyboardTaken, 2);
}

TEST_F(Overlay, a_screen_that_comes_back_after_the_break_stays_free) {
    startBreak();
    auto &screens = scenario.platform.fakeScreens.screens;
    const auto all = std::exchange(screens, {});
    Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
    scenario.controller.endBreak(BreakController::Ending::cutShort);
    screens = all;
    Q_EMIT qGuiApp->screenAdded(QGuiApplication::primaryScreen());
    EXPECT_TRUE(visibleWindows(title).empty());
}

TEST_F(Overlay, when_the_main_screen_goes_another_one_shows_the_time) {
    useThreeScreens();
    startBreak();
    scenario.platform.fakeScreens.screens.erase(scenario.platform.fakeScreens.screens.begin() + 1);
    Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
    ASSERT_EQ(windows().size(), 2U);
    EXPECT_TRUE(windows()[0]->view().isPrimary());
    EXPECT_TRUE(windows()[0]->view().skipButton()->isVisible());
    EXPECT_EQ(scenario.platform.layers.keyboardTaken, 2);
}

TEST_F(Overlay, the_windows_follow_screens_that_move) {
    useThreeScreens();
    startBreak();
    auto &screens = scenario.platform.fakeScreens.screens;
    screens.erase(screens.begin());
    screens[0].frame.moveLeft(0);
    screens[1].frame.moveLeft(640);
    Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
    EXPECT_EQ(windows()[0]->geometry(), QRect(0, 0, 640, 480));
    EXPECT_EQ(windows()[1]->geometry(), QRect(640, 0, 800, 600));
}

TEST_F(Overlay, all_screens_may_go) {
    useThreeScreens();
    startBreak(5);
    scenario.platform.fakeScreens.screens.clear();
    Q_EMIT qGuiApp->screenRemoved(QGuiApplication::primaryScreen());
    EXPECT_TRUE(windows().empty());
    scenario.advance(10);
    EXPECT_FALSE(isBreaking());
}

TEST_F(Overlay, screens_that_come_during_a_break_get_no_window) {
    startBreak();
    useThreeScreens();
    Q_EMIT qGuiApp->screenAdded(QGuiApplication::primaryScreen());
    scenario.advance(1);
    EXPECT_EQ(windows().size(), 1U);
}

TEST_F(Overlay, screens_that_come_during_a_break_are_covered_where_one_that_is_back_may_have_another_name) {
    scenario.platform.fakeScreens.keepsNames = false;
    startBreak();
    useThreeScreens();
    Q_EMIT qGuiApp->screenAdded(QGuiApplication::primaryScreen());
    EXPECT_EQ(windows().size(), 3U);
    overlays->hide();
    Q_EMIT qGuiApp->screenAdded(QGuiApplication::primaryScreen());
    scenario.platform.loop.advance(1);
    EXPECT_TRUE(visibleWindows(title).empty()) << "the break is over";
}

TEST_F(Overlay, paints_its_fades_where_the_desktop_only_blends) {
    scenario.platform.layers.fades = false;
    startBreak();
    QWidget &window = *windows().front();
    const auto alpha = [&] { return window.grab().toImage().pixelColor(5, 5).alpha(); };
    EXPECT_EQ(alpha(), 0);
    scenario.platform.loop.advance(0.2);
    EXPECT_GT(alpha(), 0);
    EXPECT_LT(alpha(), 255);
    scenario.platform.loop.advance(0.3);
    EXPECT_EQ(alpha(), 255);
    EXPECT_EQ(window.graphicsEffect(), nullptr);
    overlays->hide();
    scenario.platform.loop.advance(0.15);
    EXPECT_GT(alpha(), 0);
    EXPECT_LT(alpha(), 255);
}

TEST_F(Overlay, a_manager_that_is_gone_makes_escape_do_nothing) {
    startBreak();
    overlays.reset();
    EXPECT_TRUE(visibleWindows(title).empty());
    EXPECT_TRUE(keys().registered.empty());
    QWidget other;
    EXPECT_FALSE(press(other, Qt::Key_Escape));
    keys().handler(10);
    scenario.platform.loop.advance(1);
    EXPECT_TRUE(isBreaking());
    scenario.controller.onBreakEnd = {};
}

TEST_F(Overlay, a_hundred_breaks_leave_nothing_behind) {
    scenario.advance(1);
    const auto timers = scenario.platform.loop.timerCount();
    for (int i = 0; i < 100; ++i) {
        startBreak(2);
        scenario.advance(3);
    }
    EXPECT_TRUE(visibleWindows(title).empty());
    EXPECT_EQ(scenario.platform.loop.timerCount(), timers);
    EXPECT_EQ(scenario.stats.today().micro, 100);
}

} // namespace pavonel::test
