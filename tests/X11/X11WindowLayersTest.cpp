#include "X11/LayeredWindows.h"

#include <QCoreApplication>

namespace pavonel::test {

INSTANTIATE_TEST_SUITE_P(X11, UnderEveryManager, everyManager, managerName);

TEST_P(UnderEveryManager, windows_blend_where_a_compositor_runs) {
    EXPECT_EQ(layers.canBlend(), GetParam() == WindowManager::xfwm4WithCompositor);
}

TEST_P(UnderEveryManager, an_overlay_covers_each_of_three_screens_exactly) {
    setMonitors(threeMonitors);
    const auto overlays = showOverlays();

    ASSERT_EQ(overlays.size(), 3U);
    for (std::size_t index = 0; index < overlays.size(); ++index) {
        EXPECT_TRUE(becomesTop(*overlays[index]));
        EXPECT_EQ(other.geometry(overlays[index]->id()), threeMonitors[index]);
        EXPECT_TRUE(getsPainted(*overlays[index]));
    }
}

TEST_P(UnderEveryManager, a_fullscreen_window_that_was_there_lies_below_a_break) {
    const auto fullscreen = other.open({0, 0, 5760, 1080}, theirs, XClient::Kind::fullscreen);
    other.activate(fullscreen);
    const auto overlays = showOverlays();

    EXPECT_TRUE(becomesTop(*overlays[0]));
    EXPECT_TRUE(getsPainted(*overlays[0]));
}

TEST_P(UnderEveryManager, a_fullscreen_window_that_opens_later_stays_below_a_break) {
    const auto overlays = showOverlays();
    ASSERT_TRUE(becomesTop(*overlays[0]));

    for (int round = 0; round < 3; ++round) {
        const auto fullscreen = other.open({0, 0, 5760, 1080}, theirs, XClient::Kind::fullscreen);
        EXPECT_TRUE(waitUntil([&] { return other.geometry(fullscreen) == QRect(0, 0, 5760, 1080); }));
        other.activate(fullscreen);
        EXPECT_TRUE(becomesTop(*overlays[0]));
        EXPECT_TRUE(getsPainted(*overlays[0]));
        other.raise(fullscreen);
        EXPECT_TRUE(becomesTop(*overlays[0]));
    }
}

TEST_F(X11WindowLayersTest, an_overlay_covers_the_last_pixel_of_a_screen_of_odd_size) {
    const std::vector<QRect> oddMonitors = {{0, 0, 1367, 769}, {1367, 0, 1921, 1079}, {3288, 0, 1365, 767}};
    setMonitors(oddMonitors);
    const auto overlays = showOverlays();
    ASSERT_EQ(overlays.size(), oddMonitors.size());
    const auto coversClosely = [&](const Layered &overlay, const QRect &monitor) {
        const auto at = other.geometry(overlay.id());
        return at && at->contains(monitor) && monitor.adjusted(0, 0, 1, 1).contains(*at);
    };
    for (std::size_t index = 0; index < overlays.size(); ++index) {
        const QRect &monitor = oddMonitors[index];
        EXPECT_TRUE(waitUntil([&] { return coversClosely(*overlays[index], monitor); }));
        EXPECT_TRUE(waitUntil([&] { return server().colourAt(monitor.bottomRight()) == ours; }));
    }
    settle();
    for (std::size_t index = 0; index < overlays.size(); ++index)
        EXPECT_TRUE(coversClosely(*overlays[index], oddMonitors[index])) << "and it stays so";
}

TEST(X11WindowLayers, under_other_scales_too_an_overlay_covers_the_last_pixel) {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char *scale : {"1.25", "1.5", "1.75", "2"}) {
        environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QString::fromLatin1(scale));
        const auto result = ChildProcess::run(
            QCoreApplication::applicationFilePath(),
            {QStringLiteral("--gtest_filter=*an_overlay_covers_the_last_pixel_of_a_screen_of_odd_size")},
            environment);
        EXPECT_EQ(result.status, 0) << scale << ":\n" << result.output.toStdString();
    }
}

TEST_F(X11WindowLayersTest, a_panel_that_opens_during_a_break_goes_below_it) {
    const auto overlays = showOverlays();
    ASSERT_TRUE(becomesTop(*overlays[0]));
    const auto notice = panel({0, 0, 5760, 1080});

    EXPECT_TRUE(waitUntil([&] { return other.isViewable(notice->id()); }));
    EXPECT_TRUE(becomesTop(*overlays[0]));
    EXPECT_TRUE(getsPainted(*overlays[0]));
}

TEST_F(X11WindowLayersTest, a_menu_of_another_program_opens_above_a_panel_but_below_a_break) {
    const auto notice = panel({100, 100, 300, 80});
    ASSERT_TRUE(waitUntil([&] { return notice->paints > 0; }));
    settle();
    const auto menu = other.open({100, 100, 300, 80}, theirs, XClient::Kind::unmanaged);
    settle();
    EXPECT_EQ(other.topAt(middle(*notice)), menu);

    const auto overlays = showOverlays();
    EXPECT_TRUE(becomesTop(*overlays[0]));
    const auto second = other.open({100, 100, 300, 80}, theirs, XClient::Kind::unmanaged);
    EXPECT_TRUE(waitUntil([&] { return other.topAt({150, 150}) == overlays[0]->id(); }));
    EXPECT_TRUE(other.isViewable(second));
}

TEST_F(X11WindowLayersTest, a_screen_locker_that_raises_itself_stays_above_a_break) {
    const auto overlays = showOverlays();
    ASSERT_TRUE(becomesTop(*overlays[0]));
    const auto locker = other.open({0, 0, 5760, 1080}, Qt::black, XClient::Kind::unmanaged);
    ASSERT_TRUE(becomesTop(*overlays[0])) << "a window that merely opens";

    settle();
    other.raise(locker);
    settle();
    EXPECT_EQ(other.topAt({150, 150}), locker);
}

TEST_F(X11WindowLayersTest, a_window_that_keeps_raising_itself_is_no_endless_fight) {
    const auto overlays = showOverlays();
    ASSERT_TRUE(becomesTop(*overlays[0]));
    const auto insistent = other.open({0, 0, 500, 500}, theirs);
    const auto neighbour = other.open({600, 0, 50, 50}, theirs);
    int lost = 0; // times that it lay above
    waitUntil(
        [&] {
            lost += other.topAt({100, 100}) == insistent;
            other.raise(lost % 2 ? neighbour : insistent);
            return false;
        },
        1500);
    EXPECT_TRUE(becomesTop(*overlays[0])) << "once it gives in, the break is on top again";
}

TEST_F(X11WindowLayersTest, a_monitor_may_go_during_a_break) {
    setMonitors(threeMonitors);
    auto overlays = showOverlays();
    for (const auto &each : overlays)
        ASSERT_TRUE(becomesTop(*each));

    setMonitors({threeMonitors[0], threeMonitors[1]});
    EXPECT_TRUE(becomesTop(*overlays[0]));
    EXPECT_TRUE(becomesTop(*overlays[1]));
    EXPECT_EQ(other.geometry(overlays[0]->id()), threeMonitors[0]);
    EXPECT_EQ(other.geometry(overlays[1]->id()), threeMonitors[1]);
    overlays.clear();
    EXPECT_EQ(showOverlays().size(), 2U);
}

TEST_F(X11WindowLayersTest, windows_are_known_by_the_programs_name) {
    const auto overlays = showOverlays();
    ASSERT_TRUE(becomesTop(*overlays[0]));
    EXPECT_EQ(other.bytes(overlays[0]->id(), "WM_CLASS"), QByteArray("pavonel\0pavonel\0", 16));
}

TEST_F(X11WindowLayersTest, cutting_a_window_serves_no_event_that_could_take_it_away) {
    const auto shown = panel({100, 100, 200, 100});
    bool served = false;
    QMetaObject::invokeMethod(
        shown.get(), [&] { served = true; }, Qt::QueuedConnection);
    layers.cutTo(*shown->windowHandle(), QRegion(0, 0, 100, 100));
    EXPECT_FALSE(served);
    EXPECT_TRUE(waitUntil([&] { return served; }));
}

TEST_F(X11WindowLayersTest, a_client_that_dies_during_a_break_does_no_harm) {
    server().start(WindowManager::openbox);
    auto dying = std::make_unique<XClient>(server().display());
    const auto window = dying->open({100, 100, 400, 300}, theirs);
    bringToFront(window);
    auto overlays = showOverlays();
    layers.takeKeyboard(*overlays[0]->windowHandle());
    ASSERT_TRUE(becomesTop(*overlays[0]));

    dying.reset();
    layers.yieldKeyboard();
    EXPECT_TRUE(becomesTop(*overlays[0]));
    const auto next = other.open({100, 100, 400, 300}, theirs);
    EXPECT_TRUE(other.isViewable(next));
    EXPECT_TRUE(becomesTop(*overlays[0]));
}

} // namespace pavonel::test
