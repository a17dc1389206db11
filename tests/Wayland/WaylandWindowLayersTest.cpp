#include "Platform/Linux/Wayland/WaylandWindowLayers.h"

#include "Platform/Inset.h"
#include "Platform/Linux/Wayland/QtWayland.h"
#include "Platform/Qt/QtWindowLayers.h"
#include "Wayland/compositor.h"
#include "support/OtherWindow.h"
#include "support/VirtualInput.h"
#include "support/waitUntil.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWidget>
#include <QWindow>
#include <qpa/qplatformscreen.h>
#include <qpa/qwindowsysteminterface.h>

#include <array>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

constexpr QColor green(20, 160, 40);
constexpr QColor blue(20, 40, 160);
const QByteArray keyA = "key " + QByteArray::number(Qt::Key_A);

/// A window made as the contract of WindowLayers says.
class Layered final : public QWidget {
public:
    Layered(WindowLayers &layers, WindowLayer layer, const Screen &screen, const QRect &at,
            const QColor &colour, Qt::WindowFlags more = {})
        : colour_(colour) {
        setWindowFlags(layers.windowFlags(layer) | more);
        setAttribute(Qt::WA_ShowWithoutActivating, layer == WindowLayer::panel);
        setGeometry(at);
        winId();
        layers.show(*windowHandle(), layer, screen);
    }

    int keyPresses = 0;
    int clicks = 0;

private:
    void keyPressEvent(QKeyEvent *) override { ++keyPresses; }
    void mousePressEvent(QMouseEvent *) override { ++clicks; }
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), colour_); }

    QColor colour_;
};

/// As Qt makes one while there is no output. What follows it in memory is anything.
class PlaceholderScreen final : public QPlatformPlaceholderScreen {
public:
    PlaceholderScreen() { behind_.fill(0xff); }

private:
    std::array<unsigned char, 4096> behind_{};
};

class WaylandWindowLayersTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_NE(layers, nullptr); }

    std::unique_ptr<Layered> overlay(int index) {
        const Screen screen = screens.all()[static_cast<std::size_t>(index)];
        return std::make_unique<Layered>(*layers, WindowLayer::overlay, screen, screen.frame.toRect(), blue);
    }
    std::unique_ptr<Layered> panel(const QRect &at, Qt::WindowFlags more = {}) {
        return std::make_unique<Layered>(*layers, WindowLayer::panel, screens.all().front(), at, green, more);
    }
    static bool becomes(QPoint point, const QColor &colour) {
        return waitUntil([&] { return compositor().picture().pixelColor(point) == colour; });
    }

    std::shared_ptr<WorkedOn> workedOn = std::make_shared<WorkedOn>();
    QtScreens screens{workedOn};
    std::unique_ptr<WaylandWindowLayers> layers = WaylandWindowLayers::make(workedOn);
};

TEST_F(WaylandWindowLayersTest, overlays_cover_their_outputs_and_have_the_keyboard) {
    const auto first = overlay(0);
    const auto second = overlay(1);
    EXPECT_TRUE(becomes({1, 1}, blue));
    EXPECT_TRUE(becomes({2047, 767}, blue));
    compositor().input().press(VirtualInput::a);
    EXPECT_TRUE(waitUntil([&] { return first->keyPresses + second->keyPresses == 1; }));
}

TEST_F(WaylandWindowLayersTest,
       a_panel_stands_where_it_shall_above_a_fullscreen_window_without_the_keyboard) {
    OtherWindow other(compositor().environment(), QStringLiteral("player"), OtherWindow::State::fullscreen);
    ASSERT_TRUE(other.becomesActive() && other.isPainted(Sway::outputSize));
    const auto shown = panel({500, 20, 300, 100});
    EXPECT_TRUE(becomes({500, 20}, green));
    EXPECT_TRUE(becomes({799, 119}, green));
    EXPECT_TRUE(becomes({800, 120}, OtherWindow::colour()));
    compositor().input().press(VirtualInput::a);
    EXPECT_TRUE(waitUntil([&] { return other.times(keyA) == 1; }));
    EXPECT_EQ(shown->keyPresses, 0);
}

TEST_F(WaylandWindowLayersTest, a_panel_moves) {
    const auto shown = panel({10, 10, 100, 100});
    ASSERT_TRUE(becomes({10, 10}, green));
    shown->move(600, 500);
    EXPECT_TRUE(becomes({650, 550}, green));
    EXPECT_TRUE(becomes({50, 50}, Sway::background()));
}

TEST_F(WaylandWindowLayersTest, clicks_reach_a_panel_only_within_the_shape_it_was_cut_to) {
    OtherWindow other(compositor().environment());
    ASSERT_TRUE(other.isPainted(Sway::outputSize));
    const auto shown = panel({100, 100, 200, 200});
    layers->cutTo(*shown->windowHandle(), QRegion(50, 50, 100, 100));
    ASSERT_TRUE(becomes({110, 110}, green));
    compositor().click({110, 110});
    EXPECT_TRUE(waitUntil([&] { return other.times("click") == 1; }));
    compositor().click({200, 200});
    EXPECT_TRUE(waitUntil([&] { return shown->clicks == 1; }));
}

TEST_F(WaylandWindowLayersTest, clicks_pass_through_a_panel_that_is_transparent_for_them) {
    OtherWindow other(compositor().environment());
    ASSERT_TRUE(other.isPainted(Sway::outputSize));
    const auto shown = panel({100, 100, 200, 200}, Qt::WindowTransparentForInput);
    ASSERT_TRUE(becomes({200, 200}, green));
    compositor().click({200, 200});
    EXPECT_TRUE(waitUntil([&] { return other.times("click") == 1; }));
    EXPECT_EQ(shown->clicks, 0);
}

TEST_F(WaylandWindowLayersTest, panels_lie_below_a_break_and_come_back_after_it) {
    const auto before = panel({100, 100, 200, 200});
    ASSERT_TRUE(becomes({200, 200}, green));
    auto covering = overlay(0);
    EXPECT_TRUE(becomes({200, 200}, blue));
    const auto during = panel({500, 100, 200, 200});
    EXPECT_TRUE(waitUntil([&] { return during->isVisible(); }));
    EXPECT_TRUE(becomes({600, 200}, blue));
    covering.reset();
    EXPECT_TRUE(becomes({200, 200}, green));
    EXPECT_TRUE(becomes({600, 200}, green));
}

TEST_F(WaylandWindowLayersTest, a_window_may_go_before_it_is_shown) {
    for (int round = 0; round < 50; ++round) {
        overlay(round % 2);
        panel({100, 100, 200, 200});
    }
    const auto last = panel({100, 100, 200, 200});
    EXPECT_TRUE(becomes({200, 200}, green));
}

TEST_F(WaylandWindowLayersTest, the_compositor_chooses_the_output_of_a_panel_and_we_follow) {
    const QString second = screens.all()[1].name;
    compositor().command(QStringLiteral("focus output ") + second);
    const auto shown = panel({500, 20, 300, 100});
    EXPECT_TRUE(becomes({1024 + 650, 70}, green));
    EXPECT_TRUE(waitUntil([&] { return *workedOn && (*workedOn)->name() == second; }));
    EXPECT_TRUE(screens.all()[1].isMain);
    compositor().command(QStringLiteral("focus output ") + screens.all()[0].name);
}

TEST_F(WaylandWindowLayersTest, outlives_an_output_that_goes_under_its_overlay) {
    const auto first = overlay(0);
    auto second = overlay(1);
    ASSERT_TRUE(becomes({2047, 767}, blue));
    compositor().removeOutput(screens.all()[1].name);
    EXPECT_TRUE(waitUntil([] { return QGuiApplication::screens().size() == 1; }));
    second.reset();
    EXPECT_TRUE(becomes({1, 1}, blue));
    ASSERT_TRUE(compositor().addOutput());
    EXPECT_TRUE(waitUntil([] { return QGuiApplication::screens().size() == 2; }));
}

class InsetTest : public WaylandWindowLayersTest {
protected:
    void SetUp() override {
        WaylandWindowLayersTest::SetUp();
        large = overlay(0);
        ASSERT_TRUE(becomes({1, 1}, blue));
        inset = layers->inset(*large->windowHandle(), place);
        ASSERT_TRUE(inset);
    }

    void fill(const QRect &part, const QColor &colour) {
        QPainter(&inset->picture()).fillRect(part, colour);
        inset->show(part);
    }

    static constexpr QRect place{300, 200, 80, 60};
    std::unique_ptr<Layered> large;
    std::unique_ptr<Inset> inset;
};

TEST_F(InsetTest, shows_its_picture_in_its_place_in_the_window) {
    fill(inset->picture().rect(), green);
    for (const QPoint corner : {place.topLeft(), place.bottomRight()})
        EXPECT_TRUE(becomes(corner, green));
    EXPECT_TRUE(becomes(place.topLeft() - QPoint(1, 1), blue));
    EXPECT_TRUE(becomes(place.bottomRight() + QPoint(1, 1), blue));
}

TEST_F(InsetTest, a_hundred_changes_faster_than_the_compositor_takes_them_all_arrive) {
    fill(inset->picture().rect(), blue);
    const int width = place.width();
    for (int i = 0; i < 100; ++i)
        fill({i % width, i / width, 1, 1}, green);
    EXPECT_TRUE(waitUntil([&] {
        const QImage picture = compositor().picture();
        return picture.pixelColor(place.topLeft()) == green &&
               picture.pixelColor(place.topLeft() + QPoint(50, 0)) == green &&
               picture.pixelColor(place.topLeft() + QPoint(99 % width, 1)) == green &&
               picture.pixelColor(place.topLeft() + QPoint(99 % width + 1, 1)) == blue;
    }));
}

TEST_F(InsetTest, leaves_clicks_to_the_window_and_the_window_as_it_was) {
    fill(inset->picture().rect(), green);
    ASSERT_TRUE(becomes(place.center(), green));
    compositor().click(place.center());
    EXPECT_TRUE(waitUntil([&] { return large->clicks == 1; }));
    inset.reset();
    large->update();
    EXPECT_TRUE(becomes(place.center(), blue));
}

TEST_F(InsetTest, may_be_shown_in_a_window_that_is_gone) {
    fill(inset->picture().rect(), green);
    ASSERT_TRUE(becomes(place.center(), green));
    large->hide();
    fill(inset->picture().rect(), blue);
    inset.reset();
    large.reset();
    const auto next = overlay(0);
    EXPECT_TRUE(becomes({1, 1}, blue));
}

TEST_F(InsetTest, may_be_shown_first_in_a_window_that_is_gone) {
    large->hide();
    fill(inset->picture().rect(), green);
    inset.reset();
    large.reset();
    const auto next = overlay(0);
    EXPECT_TRUE(becomes({1, 1}, blue));
}

/// As where there is no layer shell.
TEST(InsetOfFullscreenWindow, is_a_part_of_the_window_again_when_that_opens_anew) {
    WaylandInsets insets;
    QtWindowLayers layers([&](QWindow &window, const QRect &points) { return insets.make(window, points); });
    const auto becomes = [](QPoint point, const QColor &colour) {
        return waitUntil([&] { return compositor().picture().pixelColor(point) == colour; });
    };
    const Screen screen = QtScreens().all().front();
    Layered large(layers, WindowLayer::overlay, screen, screen.frame.toRect(), blue);
    ASSERT_TRUE(becomes({1, 1}, blue));
    constexpr QRect place(300, 200, 80, 60);
    const auto inset = layers.inset(*large.windowHandle(), place);
    ASSERT_TRUE(inset);
    inset->picture().fill(green);
    inset->show(inset->picture().rect());
    ASSERT_TRUE(becomes(place.center(), green));
    large.windowHandle()->hide();
    ASSERT_TRUE(becomes(place.center(), Sway::background()));
    large.windowHandle()->showFullScreen();
    ASSERT_TRUE(becomes({1, 1}, blue));
    inset->show({0, 0, 1, 1});
    EXPECT_TRUE(becomes(place.bottomRight(), green)) << "all of it";
}

/// On an output with three pixels to two points, of whole points in both directions.
class ScaledInsetTest : public WaylandWindowLayersTest {
protected:
    void SetUp() override {
        WaylandWindowLayersTest::SetUp();
        output = screens.all()[0].name;
        ASSERT_TRUE(becomes({1200, 768}, 1.5));
        large = overlay(0);
        ASSERT_TRUE(waitUntil([&] { return pixel({3, 3}) == blue && pixel({1195, 760}) == blue; }));
    }
    ~ScaledInsetTest() override {
        large.reset();
        EXPECT_TRUE(becomes(Sway::outputSize, 1));
    }
    bool becomes(QSize size, double scale) {
        compositor().command(u"output %1 mode --custom %2x%3 scale %4"_s.arg(output)
                                 .arg(size.width())
                                 .arg(size.height())
                                 .arg(scale));
        return waitUntil([&] { return screens.all()[0].frame.size() == QSizeF(size) / scale; });
    }
    QColor pixel(QPoint at) { return compositor().picture(output).pixelColor(at); }

    static constexpr QRect place{300, 200, 80, 60};
    static constexpr QRect pixels{450, 300, 120, 90};
    QString output;
    std::unique_ptr<Layered> large;
};

TEST_F(ScaledInsetTest, shows_its_picture_in_its_place_in_the_window) {
    const auto inset = layers->inset(*large->windowHandle(), place);
    ASSERT_TRUE(inset);
    inset->picture().fill(green);
    inset->show(inset->picture().rect());
    EXPECT_TRUE(waitUntil([&] {
        const QImage picture = compositor().picture(output);
        const QRect within = pixels.adjusted(1, 1, -1, -1); // its edge may be blended
        const QRect around = pixels.adjusted(-1, -1, 1, 1);
        return picture.pixelColor(within.topLeft()) == green &&
               picture.pixelColor(within.bottomRight()) == green &&
               picture.pixelColor(around.topLeft()) == blue &&
               picture.pixelColor(around.bottomRight()) == blue;
    }));
}

TEST_F(ScaledInsetTest, of_that_scale_shows_each_pixel_as_one) {
    WaylandInsets insets;
    const auto inset = insets.make(*large->windowHandle(), place, 1.5);
    ASSERT_TRUE(inset);
    ASSERT_EQ(inset->picture().size(), pixels.size());
    const auto colourAt = [](int x, int y) { return (x + y) % 2 == 0 ? green : QColor(Qt::black); };
    for (int y = 0; y < pixels.height(); ++y) {
        for (int x = 0; x < pixels.width(); ++x)
            inset->picture().setPixelColor(x, y, colourAt(x, y));
    }
    inset->show(inset->picture().rect());
    EXPECT_TRUE(waitUntil([&] {
        const QImage picture = compositor().picture(output);
        return picture.copy(pixels).convertToFormat(QImage::Format_RGB32) ==
                   inset->picture().convertToFormat(QImage::Format_RGB32) &&
               picture.pixelColor(pixels.topLeft() - QPoint(1, 1)) == blue &&
               picture.pixelColor(pixels.bottomRight() + QPoint(1, 1)) == blue;
    }));
}

TEST_F(WaylandWindowLayersTest, a_screen_of_qts_own_making_is_no_output) {
    auto *placeholder = new PlaceholderScreen;
    QWindowSystemInterface::handleScreenAdded(placeholder);
    EXPECT_EQ(qtWayland::outputOf(placeholder->screen()), nullptr);
    QWindowSystemInterface::handleScreenRemoved(placeholder);
}

} // namespace

} // namespace pavonel::test
