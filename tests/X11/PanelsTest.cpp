#include "Platform/Linux/X11/X11Screens.h"
#include "Platform/Linux/X11/X11WindowLayers.h"
#include "Platform/Qt/QtMainLoop.h"
#include "Platform/Qt/QtPointer.h"
#include "UI/Controls/Button.h"
#include "UI/Panels/FloatingCountdownController.h"
#include "UI/Panels/HeadsUpController.h"
#include "UI/Panels/ToastController.h"
#include "X11/server.h"
#include "support/FakePlatform.h"
#include "support/Styled.h"
#include "support/XClient.h"
#include "support/waitUntil.h"
#include "support/windows.h"

#include <QGuiApplication>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr QColor windowColour(30, 160, 60);
const QString posture = QStringLiteral("Check your posture — shoulders back, screen at eye level.");

/// Real time, screens, pointer and windows; all else is fake.
struct XPlatform : FakePlatform {
    XPlatform() {
        mainLoop = std::make_unique<QtMainLoop>();
        const std::shared_ptr<X11Connection> connection = X11Connection::open(server().display());
        screens = std::make_unique<X11Screens>(connection);
        pointer = std::make_unique<QtPointer>();
        windowLayers = std::make_unique<X11WindowLayers>(connection);
    }
};

class PanelsOnX11 : public testing::Test {
protected:
    PanelsOnX11() : other(server().display()) {}
    ~PanelsOnX11() override {
        server().stopWindowManager();
        server().setMonitors({});
        waitUntil([] { return QGuiApplication::screens().size() == 1; });
    }

    void useThreeMonitors() {
        server().setMonitors(threeMonitors);
        ASSERT_TRUE(waitUntil([] { return QGuiApplication::screens().size() == 3; }));
    }

    static void pointAt(QPoint at) {
        server().xdotool({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y())});
    }
    static void clickAt(QPoint at) {
        pointAt(at);
        server().xdotool({QStringLiteral("click"), QStringLiteral("1")});
    }

    /// Where the server has the slab of the only panel of this title, in pixels.
    std::optional<QRect> seen(const char *title) {
        QWidget *window = shownWindow(title);
        if (!window)
            return std::nullopt;
        const auto id = static_cast<xcb_window_t>(window->winId());
        const auto frame = other.isViewable(id) ? other.geometry(id) : std::nullopt;
        return frame ? std::optional(frame->marginsRemoved(window->contentsMargins())) : std::nullopt;
    }
    bool standsAt(const char *title, const QRect &place) {
        return waitUntil([&] { return seen(title) == place; });
    }
    /// Shown, painted and faded in.
    bool isPainted(QPoint at) {
        return waitUntil([&] { return qGray(server().colourAt(at).rgb()) > 230; });
    }

    void showHeadsUp() { headsUp.show(BreakKind::micro, QStringLiteral("Micro break")); }
    static QPoint middleOf(const QString &buttonText) {
        for (const auto *button : childrenOf<Button>(shownWindow("Pavonel Heads-up"))) {
            if (button->text() == buttonText || button->accessibleName() == buttonText)
                return button->mapToGlobal(button->rect().center());
        }
        ADD_FAILURE() << "no such button";
        return {};
    }

    XPlatform platform;
    Styled styled{platform};
    Settings settings{*platform.defaults, *platform.mainLoop};
    Stats stats{*platform.defaults, *platform.mainLoop};
    BreakController controller{
        {*platform.mainLoop, platform, *platform.processes, *platform.sounds}, settings, stats};
    HeadsUpController headsUp{platform, *platform.notifications, controller, settings};
    FloatingCountdownController countdown{platform, *platform.pointer, controller};
    ToastController toast{platform, *platform.notifications};
    XClient other;
};

class PanelsUnderEveryManager : public PanelsOnX11, public testing::WithParamInterface<WindowManager> {
protected:
    PanelsUnderEveryManager() { server().start(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(X11, PanelsUnderEveryManager, everyManager, managerName);

} // namespace

TEST_P(PanelsUnderEveryManager, heads_up_and_toast_stand_on_the_main_screen_to_the_pixel) {
    useThreeMonitors();
    pointAt({2500, 700});
    showHeadsUp();
    toast.show(posture, QStringLiteral("figure.stand"));
    EXPECT_TRUE(standsAt("Pavonel Heads-up", {3840 - 340 - 18, 18, 340, 132}));
    EXPECT_TRUE(standsAt("Pavonel Toast", {1920 + 960 - 190, 24, 380, 56}));
}

TEST_P(PanelsUnderEveryManager, the_countdown_follows_the_pointer_across_all_screens) {
    useThreeMonitors();
    pointAt({100, 100});
    countdown.show();
    EXPECT_TRUE(standsAt("Pavonel Countdown", {116, 112, 86, 30}));
    for (const QPoint at : {QPoint(1921, 500), QPoint(4000, 900), QPoint(0, 0)}) {
        pointAt(at);
        EXPECT_TRUE(standsAt("Pavonel Countdown", QRect(at + QPoint(16, 12), QSize(86, 30)))) << at.x();
    }
}

TEST_P(PanelsUnderEveryManager, the_countdown_stays_whole_at_the_edges_of_a_screen) {
    useThreeMonitors();
    pointAt({1919, 500});
    countdown.show();
    EXPECT_TRUE(standsAt("Pavonel Countdown", {1920 - 86, 512, 86, 30}));
    pointAt({5759, 1079});
    EXPECT_TRUE(standsAt("Pavonel Countdown", {5760 - 86, 1079 - 12 - 30, 86, 30}));
}

TEST_P(PanelsUnderEveryManager, clicks_on_the_toast_and_its_shadow_reach_the_window_below) {
    other.open({1500, 0, 2800, 400}, windowColour);
    toast.show(posture, QStringLiteral("figure.stand"));
    const QPoint middle(5760 / 2, 24 + 28);
    ASSERT_TRUE(waitUntil([&] { return seen("Pavonel Toast").has_value(); }));
    clickAt(middle);
    EXPECT_TRUE(waitUntil([&] { return other.clicks() == 1; }));
    clickAt(middle + QPoint(0, 28 + 6));
    EXPECT_TRUE(waitUntil([&] { return other.clicks() == 2; }));
}

TEST_P(PanelsUnderEveryManager, clicks_on_the_countdown_reach_the_window_below) {
    FakePointer still;
    FloatingCountdownController resting(platform, still, controller);
    other.open({200, 100, 800, 600}, windowColour);
    resting.show();
    ASSERT_TRUE(standsAt("Pavonel Countdown", {416, 312, 86, 30}));
    clickAt({416 + 43, 312 + 15});
    EXPECT_TRUE(waitUntil([&] { return other.clicks() == 1; }));
}

TEST_P(PanelsUnderEveryManager, the_buttons_of_the_heads_up_work_while_another_program_keeps_the_keyboard) {
    const auto editor = other.open({100, 100, 600, 400}, windowColour);
    other.activate(editor);
    ASSERT_TRUE(waitUntil([&] { return other.focused() == editor; }));
    controller.microElapsed = 1180;
    showHeadsUp();
    ASSERT_TRUE(waitUntil([&] { return seen("Pavonel Heads-up").has_value(); }));
    EXPECT_EQ(other.focused(), editor);

    clickAt(middleOf(QStringLiteral("+1 min")));
    EXPECT_TRUE(waitUntil([&] { return controller.microElapsed == 1120; }));
    clickAt(middleOf(QStringLiteral("Skip")));
    EXPECT_TRUE(waitUntil([&] { return controller.microElapsed == 0; }));
    EXPECT_EQ(other.focused(), editor);
    server().xdotool({QStringLiteral("key"), QStringLiteral("x")});
    EXPECT_TRUE(waitUntil([&] { return other.keyPresses() == 1; }));

    clickAt(middleOf(QStringLiteral("Dismiss this notice")));
    EXPECT_TRUE(waitUntil([&] { return visibleWindows("Pavonel Heads-up").empty(); }));
    EXPECT_EQ(other.focused(), editor);
    EXPECT_EQ(other.clicks(), 0) << "the notice took the clicks";
}

TEST_P(PanelsUnderEveryManager, the_corners_show_what_lies_below_and_are_never_black) {
    other.open({4000, 0, 1760, 600}, windowColour, XClient::Kind::unmanaged);
    platform.colours.current.reducedMotion = true;
    showHeadsUp();
    const QRect frame(5760 - 340 - 18, 18, 340, 132);
    ASSERT_TRUE(isPainted(frame.center() + QPoint(0, 40)));
    const QImage picture = server().picture();
    for (const QPoint corner : {frame.topLeft(), frame.topRight(), frame.bottomLeft(), frame.bottomRight()}) {
        const QColor pixel = picture.pixelColor(corner);
        EXPECT_GT(pixel.green(), pixel.red() + 40) << corner.x() << ", " << corner.y();
        EXPECT_GT(pixel.green(), windowColour.green() / 2) << corner.x() << ", " << corner.y();
        for (int x = -14; x <= 14; ++x) {
            for (int y = -14; y <= 14; ++y)
                ASSERT_GT(qGray(picture.pixel(corner + QPoint(x, y))), 60) << x << ", " << y;
        }
    }
}

TEST_F(PanelsOnX11, windows_are_blended_while_a_compositor_runs) {
    server().start(WindowManager::openbox);
    EXPECT_FALSE(platform.windowLayers->canBlend());
    server().start(WindowManager::xfwm4WithCompositor);
    EXPECT_TRUE(platform.windowLayers->canBlend());
    server().start(WindowManager::xfwm4);
    EXPECT_TRUE(waitUntil([&] { return !platform.windowLayers->canBlend(); }));
}

TEST_F(PanelsOnX11, the_heads_up_lies_above_a_fullscreen_window_that_opens_later) {
    server().start(WindowManager::openbox);
    showHeadsUp();
    ASSERT_TRUE(waitUntil([&] { return seen("Pavonel Heads-up").has_value(); }));
    const auto fullscreen = other.open({0, 0, 5760, 1080}, windowColour, XClient::Kind::fullscreen);
    EXPECT_TRUE(waitUntil([&] { return other.geometry(fullscreen) == QRect(0, 0, 5760, 1080); }));
    const auto id = static_cast<xcb_window_t>(shownWindow("Pavonel Heads-up")->winId());
    EXPECT_TRUE(waitUntil([&] { return other.topAt({5760 - 100, 60}) == id; }));
}

} // namespace pavonel::test
