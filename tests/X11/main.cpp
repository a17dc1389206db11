#include "X11/server.h"

#include <QApplication>

#include <optional>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {
XServer *running = nullptr;
}

XServer &server() {
    return *running;
}

} // namespace pavonel::test

/// These tests run with Qt on a virtual X server, which has to be there before Qt is.
int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    std::optional<pavonel::test::XServer> server;
    if (GTEST_FLAG_GET(list_tests)) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    } else {
        server.emplace(QSize(5760, 1080));
        server->becomeOurDisplay();
        pavonel::test::running = &*server;
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
