#include "Platform/Linux/X11/X11Windows.h"

#include "Core/ActivityMonitor.h"
#include "Core/Settings.h"
#include "Platform/Linux/Applications/LinuxApplications.h"
#include "Platform/Linux/X11/X11Points.h"
#include "Platform/Qt/QtScreens.h"
#include "X11/OtherProgram.h"
#include "X11/server.h"
#include "support/FakePlatform.h"
#include "support/OtherWindow.h"
#include "support/Printing.h"
#include "support/waitUntil.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <numeric>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const std::vector<QRect> twoMonitors = {{0, 0, 1920, 1080}, {1920, 0, 1600, 900}};

/// The scheduler's questions over real windows, processes and screens, and another program with windows.
class X11WindowsTest : public testing::Test, protected OtherProgram {
protected:
    X11WindowsTest() {
        windows = std::make_shared<X11Windows>(X11Connection::open(server().display()));
        sensors.windowList = std::make_unique<X11WindowList>(windows);
        sensors.screens = std::make_unique<QtScreens>();
        sensors.applications = std::make_unique<LinuxApplications>(
            std::make_unique<X11FrontWindow>(windows), nullptr,
            LinuxApplications::Folders{.processes = "/proc", .desktopFiles = {folder.path()}}, sensors.loop);
    }
    ~X11WindowsTest() override { leaveServerAsFound(); }

    /// Pixels to a point, of every screen.
    static int ratio() { return static_cast<int>(qApp->devicePixelRatio()); }

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
                         testing::Values(WindowManager::openbox, WindowManager::xfwm4), managerName);

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
    const auto smallerBy = [](int points) {
        return QRect(QPoint(), QSize(1920, 1080) - QSize(points, points) * ratio());
    };
    const xcb_window_t window = open(smallerBy(2));
    EXPECT_EQ(settledReason(), std::nullopt);
    other->move(window, smallerBy(1));
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
    setProcess(window);
    setClass(window, QByteArrayLiteral("office\0Office-Calc\0"));
    other->activate(window);
    EXPECT_TRUE(isFront(QStringLiteral("office-calc")));
}

TEST_F(X11WindowsTest, a_window_is_known_by_the_instance_that_its_application_declares) {
    server().start(WindowManager::openbox);
    install(QStringLiteral("browser"), "Exec=pavonel-test-player\nStartupWMClass=Browser\n");
    install(QStringLiteral("web-mail"), "Exec=pavonel-test-player --app\nStartupWMClass=crx_mail\n");
    const xcb_window_t window = open({0, 0, 500, 400});
    setClass(window, QByteArrayLiteral("crx_mail\0Browser\0"));
    other->activate(window);
    EXPECT_TRUE(isFront(QStringLiteral("web-mail")));
    setClass(window, QByteArrayLiteral("browser\0Browser\0"));
    other->activate(window);
    EXPECT_TRUE(isFront(QStringLiteral("browser")));
}

TEST_F(X11WindowsTest, two_sandboxed_programs_with_the_same_process_number_are_told_apart) {
    setMonitors(twoMonitors);
    server().start(WindowManager::openbox);
    XClient film(server().display());
    const xcb_window_t window = film.open({1920, 0, 1600, 900}, Qt::black, XClient::Kind::fullscreen);
    setProcess(window);
    open({0, 0, 800, 600});
    EXPECT_EQ(settledReason(), std::nullopt) << "the film is not in front";
    film.activate(window);
    EXPECT_TRUE(becomes(PauseReason::fullscreen));
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

TEST_F(X11WindowsTest, a_window_with_absurd_properties_is_a_window_like_any_other) {
    server().start(WindowManager::openbox);
    const xcb_window_t window = open({0, 0, 800, 600});
    const QByteArray part(8'000'000, 'x');
    for (const char *property : {"WM_NAME", "WM_CLASS", "_NET_WM_NAME"}) {
        xcb_delete_property(other->xcb(), window, other->atom(property));
        for (int i = 0; i < 4; ++i)
            xcb_change_property(other->xcb(), XCB_PROP_MODE_APPEND, window, other->atom(property),
                                XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(part.size()), part.data());
    }
    other->activate(window);
    ASSERT_TRUE(waitUntil([&] {
        const auto front = windows->front();
        return front && front->windowClass.startsWith(u'x');
    }));
    EXPECT_LE(windows->front()->windowClass.size(), 256);
}

TEST_F(X11WindowsTest, windows_that_only_a_list_claims_are_not_on_the_screen) {
    server().start(WindowManager::openbox);
    open({0, 0, 800, 600});
    ASSERT_TRUE(waitUntil([&] { return windows->onScreen().size() == 1; }));
    const auto x = X11Connection::open(server().display());
    std::vector<std::uint32_t> claimed(60'000);
    std::iota(claimed.begin(), claimed.end(), 0x700000);
    // Late after the opening of the window the manager may still write what is true over a claim.
    const auto claim = [&](const char *list) {
        const auto listed = x->numbers(x->root(), list);
        if (!listed.empty() && listed.front() == claimed.front())
            return;
        xcb_change_property(other->xcb(), XCB_PROP_MODE_REPLACE, other->root(), other->atom(list),
                            XCB_ATOM_WINDOW, 32, static_cast<std::uint32_t>(claimed.size()), claimed.data());
        xcb_flush(other->xcb());
    };
    waitUntil(
        [&] {
            claim("_NET_CLIENT_LIST_STACKING");
            return windows->onScreen().size() != 1;
        },
        500);
    EXPECT_EQ(windows->onScreen().size(), 1U) << "the other list still names the true one";
    EXPECT_TRUE(waitUntil([&] {
        claim("_NET_CLIENT_LIST_STACKING");
        claim("_NET_CLIENT_LIST");
        return windows->onScreen().empty();
    }));
}

TEST_F(X11WindowsTest, a_machine_that_is_renamed_keeps_its_windows_and_gets_new_ones) {
    QByteArray name = "before";
    X11Windows renamed(X11Connection::open(server().display()), [&] { return name; });
    server().start(WindowManager::openbox);
    setMachine(open({0, 0, 400, 300}), "before");
    ASSERT_TRUE(waitUntil([&] { return renamed.onScreen().size() == 1; }));
    name = "after";
    setMachine(open({0, 0, 500, 300}), "after");
    EXPECT_TRUE(waitUntil([&] { return renamed.onScreen().size() == 2; }));
}

TEST_F(X11WindowsTest, a_window_under_the_number_of_a_closed_one_is_watched_as_well) {
    server().start(WindowManager::openbox);
    const auto isSeenAs = [this](QSizeF size) {
        const auto seen = windows->onScreen();
        return seen.size() == 1 && seen.front().bounds->size() == size / ratio();
    };
    const xcb_window_t number = open({100, 100, 800, 600});
    ASSERT_TRUE(waitUntil([&] { return isSeenAs({800, 600}); }));
    other->close(number);
    const auto x = X11Connection::open(server().display());
    ASSERT_TRUE(waitUntil([&] { return x->numbers(x->root(), "_NET_CLIENT_LIST").empty(); }));
    xcb_create_window(other->xcb(), XCB_COPY_FROM_PARENT, number, other->root(), 100, 100, 500, 400, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    setProcess(number);
    xcb_map_window(other->xcb(), number);
    other->activate(number);
    ASSERT_TRUE(waitUntil([&] { return other->activeWindow() == number && other->isViewable(number); }));
    ASSERT_TRUE(waitUntil([&] { return isSeenAs({500, 400}); }));
    other->move(number, {100, 100, 700, 300});
    EXPECT_TRUE(waitUntil([&] { return isSeenAs({700, 300}); }));
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
    OtherWindow window(dying->environment());
    ASSERT_TRUE(waitUntil([&] { return watched.front().has_value(); }));
    dying.reset();
    EXPECT_TRUE(waitUntil([&] { return !watched.front(); }));
    EXPECT_TRUE(watched.onScreen().empty());
    EXPECT_FALSE(watched.isManaged());
}

TEST_F(X11WindowsTest, pixels_become_points_of_the_screen_that_they_are_on) {
    setMonitors(twoMonitors);
    const auto screens = QGuiApplication::screens();
    ASSERT_EQ(screens.size(), 2);
    for (qsizetype index = 0; index < screens.size(); ++index) {
        const QPoint corner = twoMonitors[static_cast<std::size_t>(index)].topLeft();
        const QRect pixels(corner + QPoint(40, 20) * ratio(), QSize(300, 200) * ratio());
        EXPECT_EQ(pointsOfPixels(pixels),
                  QRectF(screens[index]->geometry().topLeft() + QPoint(40, 20), QSize(300, 200)));
    }
    EXPECT_EQ(pointsOfPixels({-9000, -9000, 10, 10}), QRectF(-9000, -9000, 10, 10)) << "on no screen";
}

TEST(X11Windows, at_twice_the_scale_a_point_is_two_pixels) {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
    const auto result =
        ChildProcess::run(QCoreApplication::applicationFilePath(),
                          {QStringLiteral("--gtest_filter=*pixels_become_points*:*two_points_smaller*:*"
                                          "another_program_in_front_holds/openbox:"
                                          "*as_large_as_the_second_screen_holds_there/openbox")},
                          environment);
    EXPECT_EQ(result.status, 0) << result.output.toStdString();
    EXPECT_TRUE(result.output.contains("[  PASSED  ] 4 tests.")) << result.output.toStdString();
}

} // namespace pavonel::test
