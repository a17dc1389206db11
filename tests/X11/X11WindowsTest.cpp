#include "Platform/Linux/X11/X11Windows.h"

#include "Core/ActivityMonitor.h"
#include "Core/Settings.h"
#include "Platform/Linux/Applications/LinuxApplications.h"
#include "Platform/Linux/X11/X11Points.h"
#include "Platform/Qt/QtScreens.h"
#include "X11/server.h"
#include "support/FakePlatform.h"
#include "support/Printing.h"
#include "support/XClient.h"
#include "support/waitUntil.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QTemporaryDir>
#include <QWidget>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using WindowManager = XServer::WindowManager;

const std::vector<QRect> twoMonitors = {{0, 0, 1920, 1080}, {1920, 0, 1600, 900}};

/// The scheduler's questions over real windows, processes and screens, and another program with windows.
class X11WindowsTest : public testing::Test {
protected:
    X11WindowsTest() : other(std::make_unique<XClient>(server().display())) {
        windows = std::make_shared<X11Windows>(X11Connection::open(server().display()));
        sensors.windowList = std::make_unique<X11WindowList>(windows);
        sensors.screens = std::make_unique<QtScreens>();
        sensors.applications = std::make_unique<LinuxApplications>(
            std::make_unique<X11FrontWindow>(windows), nullptr,
            LinuxApplications::Folders{.processes = "/proc", .desktopFiles = {folder.path()}});
        const QString path = folder.filePath(QStringLiteral("pavonel-test-player"));
        QFile::copy(QFileInfo(QStringLiteral("/usr/bin/sleep")).canonicalFilePath(), path);
        player.emplace(path, QStringList{QStringLiteral("300")});
    }
    ~X11WindowsTest() override {
        server().stopWindowManager();
        server().setMonitors({});
        waitUntil([] { return QGuiApplication::screens().size() == 1; });
    }

    void setMonitors(const std::vector<QRect> &monitors) {
        server().setMonitors(monitors);
        ASSERT_TRUE(waitUntil([&] {
            const auto attached = QGuiApplication::screens();
            return static_cast<std::size_t>(attached.size()) == monitors.size() &&
                   attached.first()->geometry() == monitors.front();
        }));
    }

    void install(const QString &identifier, const QByteArray &lines) {
        QFile file(folder.filePath(identifier + QStringLiteral(".desktop")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[Desktop Entry]\nType=Application\n" + lines);
    }

    /// A window of the player, in front.
    xcb_window_t open(const QRect &at, XClient::Kind kind = XClient::Kind::normal) {
        const xcb_window_t window = other->open(at, Qt::black, kind);
        const auto process = static_cast<std::uint32_t>(player->process().processId());
        xcb_change_property(other->xcb(), XCB_PROP_MODE_REPLACE, window, other->atom("_NET_WM_PID"),
                            XCB_ATOM_CARDINAL, 32, 1, &process);
        setClass(window, QByteArrayLiteral("player\0Player\0"));
        other->activate(window);
        EXPECT_TRUE(waitUntil([&] { return other->activeWindow() == window; }));
        return window;
    }
    void setClass(xcb_window_t window, const QByteArray &value) {
        xcb_change_property(other->xcb(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                            8, static_cast<std::uint32_t>(value.size()), value.constData());
    }

    auto reason() { return ActivityMonitor(sensors).currentPauseReason(settings); }
    bool becomes(std::optional<PauseReason> wanted) {
        return waitUntil([&] { return reason() == wanted; });
    }
    /// The answer after everything that is on its way has been noticed.
    auto settledReason() {
        waitUntil([this] { return !reason(); }, 500);
        return reason();
    }
    bool isFront(const QString &identifier) {
        return waitUntil([&] {
            const auto front = sensors.applications->frontmost();
            return front && front->bundleIdentifier == identifier;
        });
    }

    QTemporaryDir folder;
    std::optional<ChildProcess> player;
    std::unique_ptr<XClient> other;
    std::shared_ptr<X11Windows> windows;
    FakePlatform sensors;
    Settings settings{sensors.fakeDefaults, sensors.loop};
};

class WindowsUnderEveryManager : public X11WindowsTest, public testing::WithParamInterface<WindowManager> {
protected:
    WindowsUnderEveryManager() {
        setMonitors(twoMonitors);
        server().start(GetParam());
    }
};

INSTANTIATE_TEST_SUITE_P(X11, WindowsUnderEveryManager,
                         testing::Values(WindowManager::openbox, WindowManager::xfwm4),
                         [](const auto &manager) {
                             return manager.param == WindowManager::openbox ? "openbox" : "xfwm4";
                         });

} // namespace

TEST_P(WindowsUnderEveryManager, a_fullscreen_window_of_another_program_in_front_holds) {
    EXPECT_EQ(settledReason(), std::nullopt);
    open({0, 0, 800, 600}, XClient::Kind::fullscreen);
    EXPECT_TRUE(becomes(PauseReason::fullscreen));
    other.reset();
    EXPECT_TRUE(becomes(std::nullopt)) << "the program is gone";
}

TEST_F(X11WindowsTest, a_window_two_points_smaller_than_the_screen_does_not_hold) {
    setMonitors(twoMonitors);
    server().start(WindowManager::openbox); // others keep frames on the screen, and so windows smaller
    const xcb_window_t window = open({0, 0, 1918, 1078});
    EXPECT_EQ(settledReason(), std::nullopt);
    other->move(window, {0, 0, 1919, 1079});
    EXPECT_TRUE(becomes(PauseReason::fullscreen)) << "one point does not matter";
}

TEST_P(WindowsUnderEveryManager, a_window_as_large_as_the_second_screen_holds_there) {
    open({1920, 0, 1600, 900}, XClient::Kind::fullscreen);
    EXPECT_TRUE(becomes(PauseReason::fullscreen));
}

TEST_P(WindowsUnderEveryManager, a_fullscreen_window_behind_another_program_does_not_hold) {
    open({0, 0, 1920, 1080}, XClient::Kind::fullscreen);
    EXPECT_TRUE(becomes(PauseReason::fullscreen));
    QWidget ours;
    ours.setGeometry(2000, 100, 300, 200);
    ours.show();
    ours.activateWindow();
    EXPECT_TRUE(becomes(std::nullopt));
}

TEST_P(WindowsUnderEveryManager, a_minimised_window_is_not_on_screen) {
    const xcb_window_t window = open({100, 100, 800, 600});
    ASSERT_TRUE(waitUntil([&] { return windows->onScreen().size() == 1; }));
    server().xdotool({QStringLiteral("windowminimize"), QString::number(window)});
    EXPECT_TRUE(waitUntil([&] { return windows->onScreen().empty(); }));
    other->activate(window);
    EXPECT_TRUE(waitUntil([&] { return windows->onScreen().size() == 1; }));
}

TEST_P(WindowsUnderEveryManager, a_window_on_another_desktop_is_not_on_screen) {
    const auto goTo = [](const char *desktop) {
        server().xdotool({QStringLiteral("set_desktop"), QString::fromLatin1(desktop)});
    };
    server().xdotool({QStringLiteral("set_num_desktops"), QStringLiteral("2")});
    goTo("0");
    open({100, 100, 800, 600});
    ASSERT_TRUE(waitUntil([&] { return windows->onScreen().size() == 1; }));
    goTo("1");
    EXPECT_TRUE(waitUntil([&] { return windows->onScreen().empty(); }));
    goTo("0");
    EXPECT_TRUE(waitUntil([&] { return windows->onScreen().size() == 1; }));
}

TEST_P(WindowsUnderEveryManager, a_window_tells_its_owner_its_layer_and_its_bounds) {
    open({100, 150, 800, 600});
    std::vector<OnScreenWindow> seen;
    ASSERT_TRUE(waitUntil([&] {
        seen = windows->onScreen();
        return seen.size() == 1 && seen.front().bounds->size() == QSizeF(800, 600);
    }));
    EXPECT_EQ(seen.front().owner, player->process().processId());
    EXPECT_EQ(seen.front().layer, 0);
    const xcb_window_t dock = open({0, 0, 1000, 30}, XClient::Kind::dock);
    ASSERT_TRUE(waitUntil([&] { return windows->onScreen().size() == 2; })) << dock;
    for (const OnScreenWindow &window : windows->onScreen()) {
        if (window.bounds->height() < 100) {
            EXPECT_GT(window.layer, 0) << "a panel is above the normal windows";
        }
    }
}

TEST_P(WindowsUnderEveryManager, a_focus_application_in_front_is_known_by_its_desktop_file) {
    install(QStringLiteral("org.example.Player"), "Exec=pavonel-test-player %U\n");
    settings.deepFocusApps = QStringList{QStringLiteral("org.example.Player")};
    const xcb_window_t window = open({100, 100, 800, 600});
    EXPECT_TRUE(becomes(PauseReason::deepFocus));
    settings.deepFocusApps = QStringList{QStringLiteral("org.example.player")};
    EXPECT_EQ(reason(), std::nullopt) << "the case of the letters counts";
    settings.deepFocusApps = QStringList{QStringLiteral("org.example.Player")};
    other->close(window);
    EXPECT_TRUE(becomes(std::nullopt));
}

TEST_P(WindowsUnderEveryManager, a_program_with_several_faces_is_known_by_the_class_of_its_window) {
    install(QStringLiteral("office-writer"),
            "Exec=pavonel-test-player --writer\nStartupWMClass=Office-Writer\n");
    install(QStringLiteral("office-calc"), "Exec=pavonel-test-player --calc\nStartupWMClass=Office-Calc\n");
    const xcb_window_t window = other->open({0, 0, 500, 400}, Qt::white);
    setClass(window, QByteArrayLiteral("office\0Office-Calc\0"));
    other->activate(window);
    EXPECT_TRUE(isFront(QStringLiteral("office-calc")));
}

TEST_F(X11WindowsTest, our_own_windows_never_count) {
    server().start(WindowManager::openbox);
    QWidget ours;
    ours.setGeometry(QGuiApplication::primaryScreen()->geometry());
    ours.showFullScreen();
    ASSERT_TRUE(waitUntil([&] { return other->activeWindow() == ours.winId(); }));
    waitUntil([&] { return windows->front().has_value(); }, 300);
    EXPECT_FALSE(windows->front());
    EXPECT_TRUE(windows->onScreen().empty());
    EXPECT_EQ(settledReason(), std::nullopt);
}

TEST_F(X11WindowsTest, a_window_of_another_machine_has_no_owner_here) {
    server().start(WindowManager::openbox);
    const xcb_window_t window = other->open({0, 0, 1920, 1080}, Qt::black, XClient::Kind::fullscreen);
    const auto process = static_cast<std::uint32_t>(player->process().processId());
    xcb_change_property(other->xcb(), XCB_PROP_MODE_REPLACE, window, other->atom("_NET_WM_PID"),
                        XCB_ATOM_CARDINAL, 32, 1, &process);
    xcb_change_property(other->xcb(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLIENT_MACHINE,
                        XCB_ATOM_STRING, 8, 9, "elsewhere");
    other->activate(window);
    ASSERT_TRUE(waitUntil([&] { return windows->front().has_value(); }));
    EXPECT_EQ(windows->front()->processId, 0);
    EXPECT_TRUE(windows->onScreen().empty());
}

TEST_F(X11WindowsTest, without_a_window_manager_nothing_is_in_front_and_the_reason_is_given) {
    other->open({0, 0, 5760, 1080}, Qt::black);
    EXPECT_EQ(settledReason(), std::nullopt);
    EXPECT_NE(sensors.windowList->limitation(), QString());
    EXPECT_NE(sensors.applications->limitation(), QString());
    server().start(WindowManager::openbox);
    EXPECT_TRUE(waitUntil([&] { return sensors.windowList->limitation().isEmpty(); }));
    EXPECT_EQ(sensors.applications->limitation(), QString());
}

TEST_F(X11WindowsTest, a_server_that_died_has_no_windows) {
    auto dying = std::make_unique<XServer>();
    dying->start(WindowManager::openbox);
    X11Windows watched(X11Connection::open(dying->display()));
    XClient client(dying->display());
    client.open({0, 0, 200, 200}, Qt::red);
    ASSERT_TRUE(waitUntil([&] { return watched.front().has_value(); }));
    dying.reset();
    EXPECT_TRUE(waitUntil([&] { return !watched.front(); }));
    EXPECT_TRUE(watched.onScreen().empty());
    EXPECT_FALSE(watched.isManaged());
}

TEST_F(X11WindowsTest, pixels_are_points_where_nothing_is_scaled) {
    EXPECT_EQ(pointsOfPixels({10, 20, 300, 200}), QRectF(10, 20, 300, 200));
    EXPECT_EQ(pointsOfPixels({-9000, -9000, 10, 10}), QRectF(-9000, -9000, 10, 10)) << "on no screen";
}

} // namespace pavonel::test
