#include "X11/server.h"
#include "support/waitUntil.h"

#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

namespace pavonel::test {

TEST(XServer, monitors_come_and_go_while_programs_run) {
    ASSERT_EQ(QGuiApplication::screens().size(), 1);

    server().setMonitors({{0, 0, 1920, 1080}, {1920, 0, 1920, 1080}, {3840, 0, 1920, 1080}});
    EXPECT_TRUE(waitUntil([] { return QGuiApplication::screens().size() == 3; }));
    server().setMonitors({{0, 0, 1920, 1080}, {1920, 0, 1920, 1080}});
    EXPECT_TRUE(waitUntil([] { return QGuiApplication::screens().size() == 2; }));
    server().setMonitors({});
    EXPECT_TRUE(waitUntil([] {
        return QGuiApplication::screens().size() == 1 &&
               QGuiApplication::primaryScreen()->geometry() == QRect(0, 0, 5760, 1080);
    }));
}

TEST(XServer, every_window_manager_starts_and_makes_room_for_the_next) {
    using enum XServer::WindowManager;
    for (const auto manager : {openbox, xfwm4, xfwm4WithCompositor, openbox})
        server().start(manager);
    server().stopWindowManager();
}

TEST(XServer, a_picture_has_the_size_of_all_monitors) {
    EXPECT_EQ(server().picture().size(), QSize(5760, 1080));
}

} // namespace pavonel::test
