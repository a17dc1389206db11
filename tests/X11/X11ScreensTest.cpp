#include "Platform/Linux/X11/X11Screens.h"

#include "X11/server.h"
#include "support/XClient.h"
#include "support/waitUntil.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

class X11ScreensTest : public testing::Test {
protected:
    X11ScreensTest()
        : connection(X11Connection::open(server().display())), screens(connection),
          other(server().display()) {
        setMonitors(threeMonitors);
    }
    ~X11ScreensTest() override { leaveServerAsFound(); }

    std::vector<QRect> visibleFrames() {
        std::vector<QRect> frames;
        for (const Screen &screen : screens.all())
            frames.push_back(screen.visibleFrame.toRect());
        return frames;
    }
    bool become(const std::vector<QRect> &wanted) {
        return waitUntil([&] { return visibleFrames() == wanted; });
    }
    /// The index of the main screen; -1 when there is none or more than one.
    int mainScreen() {
        int main = -1;
        const auto all = screens.all();
        for (std::size_t index = 0; index < all.size(); ++index) {
            if (all[index].isMain)
                main = main == -1 ? static_cast<int>(index) : -2;
        }
        return main;
    }
    bool isMainSoon(int index) {
        return waitUntil([&] { return mainScreen() == index; });
    }
    static void movePointer(int x, int y) {
        server().xdotool({QStringLiteral("mousemove"), QString::number(x), QString::number(y)});
    }

    std::shared_ptr<X11Connection> connection;
    X11Screens screens;
    XClient other;
};

} // namespace

TEST_F(X11ScreensTest, each_monitor_is_a_screen) {
    const auto all = screens.all();
    ASSERT_EQ(all.size(), 3U);
    for (std::size_t index = 0; index < all.size(); ++index) {
        EXPECT_EQ(all[index].frame, QRectF(threeMonitors[index]));
        EXPECT_EQ(all[index].visibleFrame, QRectF(threeMonitors[index]));
    }
    EXPECT_EQ(all[0].name, QStringLiteral("A"));

    setMonitors({threeMonitors[0], threeMonitors[1]});
    EXPECT_EQ(screens.all().size(), 2U);
}

TEST_F(X11ScreensTest, a_dock_takes_room_only_on_its_own_monitor) {
    server().start(XServer::WindowManager::openbox);
    other.openDock({1920, 1000, 1920, 80}, {0, 0, 0, 80, 0, 0, 0, 0, 0, 0, 1920, 3839});
    EXPECT_TRUE(become({threeMonitors[0], {1920, 0, 1920, 1000}, threeMonitors[2]}));

    const auto second = other.openDock({0, 0, 1920, 30}, {0, 0, 30, 0, 0, 0, 0, 0, 0, 1919, 0, 0});
    EXPECT_TRUE(become({{0, 30, 1920, 1050}, {1920, 0, 1920, 1000}, threeMonitors[2]}));
    other.close(second);
    EXPECT_TRUE(become({threeMonitors[0], {1920, 0, 1920, 1000}, threeMonitors[2]}));
}

TEST_F(X11ScreensTest, a_dock_at_an_inner_edge_leaves_the_neighbours_alone) {
    server().start(XServer::WindowManager::openbox);
    other.openDock({3840, 0, 60, 1080}, {3900, 0, 0, 0, 0, 1079, 0, 0, 0, 0, 0, 0});
    EXPECT_TRUE(become({threeMonitors[0], threeMonitors[1], {3900, 0, 1860, 1080}}));
}

TEST_F(X11ScreensTest, without_a_dock_the_whole_monitor_is_visible_again) {
    server().start(XServer::WindowManager::openbox);
    {
        XClient panel(server().display());
        panel.openDock({0, 0, 1920, 30}, {0, 0, 30, 0, 0, 0, 0, 0, 0, 1919, 0, 0});
        ASSERT_TRUE(become({{0, 30, 1920, 1050}, threeMonitors[1], threeMonitors[2]}));
    }
    EXPECT_TRUE(become(threeMonitors)) << "its program died";
}

TEST_F(X11ScreensTest, a_broken_dock_does_no_harm) {
    server().start(XServer::WindowManager::openbox);
    const auto most = 0xffffffffU;
    other.openDock({0, 0, 100, 30}, {most, most, most, most, most, most, most, most, most, most, most, most});
    other.openDock({0, 0, 100, 30}, {1, 2, 3});
    const auto good = other.openDock({0, 0, 1920, 40}, {0, 0, 40, 0, 0, 0, 0, 0, 0, 1919, 0, 0});
    EXPECT_TRUE(become({{0, 40, 1920, 1040}, threeMonitors[1], threeMonitors[2]}));
    other.close(good);
    EXPECT_TRUE(become(threeMonitors));
}

TEST_F(X11ScreensTest, the_main_screen_is_that_of_the_active_window) {
    server().start(XServer::WindowManager::openbox);
    movePointer(100, 100);
    const auto window = other.open({4000, 100, 400, 300}, Qt::red);
    other.activate(window);
    EXPECT_TRUE(isMainSoon(2));
    EXPECT_TRUE(waitUntil([&] { return other.activeWindow() == window; }));

    other.move(window, {2000, 100, 400, 300});
    EXPECT_TRUE(isMainSoon(1)) << "it follows the window";
    other.move(window, {1500, 100, 600, 300});
    EXPECT_TRUE(isMainSoon(0)) << "most of it is there";
}

TEST_F(X11ScreensTest, without_an_active_window_the_main_screen_is_that_of_the_pointer) {
    for (int index : {2, 0, 1}) {
        movePointer(1920 * index + 900, 500);
        EXPECT_TRUE(isMainSoon(index));
    }
    server().start(XServer::WindowManager::openbox);
    const auto window = other.open({100, 100, 400, 300}, Qt::red);
    other.activate(window);
    EXPECT_TRUE(isMainSoon(0));
    other.close(window);
    EXPECT_TRUE(isMainSoon(1)) << "openbox goes on naming a window that was closed";
}

TEST_F(X11ScreensTest, the_icons_of_the_desktop_do_not_make_a_main_screen) {
    server().start(XServer::WindowManager::openbox);
    movePointer(4000, 500);
    const auto desktop = other.open({0, 0, 5760, 1080}, Qt::gray, XClient::Kind::desktop);
    other.activate(desktop);
    other.focus(desktop);
    EXPECT_TRUE(waitUntil([&] { return other.activeWindow() == desktop; }));
    EXPECT_TRUE(isMainSoon(2));
}

TEST_F(X11ScreensTest, an_answer_costs_no_question_while_nothing_changes) {
    server().start(XServer::WindowManager::openbox);
    const auto window = other.open({4000, 100, 400, 300}, Qt::red);
    other.activate(window);
    ASSERT_TRUE(isMainSoon(2));
    ASSERT_TRUE(waitUntil([&] { return other.activeWindow() == window; }));
    int turns = 0;
    waitUntil([&] { return ++turns > 10; });

    // A request's number tells how many came before it.
    screens.all();
    const auto before = xcb_no_operation(connection->xcb()).sequence;
    for (int round = 0; round < 100; ++round)
        screens.all();
    EXPECT_EQ(xcb_no_operation(connection->xcb()).sequence - before, 1U);
}

} // namespace pavonel::test
