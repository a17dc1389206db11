#include "X11/server.h"
#include "support/environment.h"
#include "support/waitUntil.h"

#include <QApplication>
#include <QScreen>

#include <cmath>
#include <optional>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {
XServer *running = nullptr;
}

XServer &server() {
    return *running;
}

void setMonitors(const std::vector<QRect> &monitors) {
    server().setMonitors(monitors);
    ASSERT_TRUE(waitUntil([&] {
        const auto attached = QGuiApplication::screens();
        const QScreen *first = attached.first();
        const QSizeF missing = QSizeF(first->size()) * first->devicePixelRatio() - monitors.front().size();
        return static_cast<std::size_t>(attached.size()) == monitors.size() &&
               std::abs(missing.width()) < 2 && std::abs(missing.height()) < 2; // points are whole
    }));
}

void leaveServerAsFound() {
    server().stopWindowManager();
    server().setMonitors({});
    waitUntil([] { return QGuiApplication::screens().size() == 1; });
}

} // namespace pavonel::test

/// These tests run with Qt on a virtual X server, which has to be there before Qt is.
int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
    pavonel::test::completeEnvironment();
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
