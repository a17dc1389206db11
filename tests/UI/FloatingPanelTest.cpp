#include "UI/Panels/FloatingPanel.h"

#include "support/FakePlatform.h"
#include "support/windows.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

class FloatingPanelTest : public ::testing::Test {
protected:
    FakePlatform platform;
    static constexpr QPoint corner{500, 300};

    std::unique_ptr<FloatingPanel> present() {
        auto panel =
            std::make_unique<FloatingPanel>(platform, FloatingPanel::Make{QStringLiteral("Panel"),
                                                                          {200, 100},
                                                                          14,
                                                                          0.08,
                                                                          FloatingPanel::Mouse::received,
                                                                          {10, 30, 0.22}});
        panel->present(corner, mainScreen(*platform.screens));
        return panel;
    }
    static QWidget *shadow() { return shownWindow("Pavonel Shadow"); }
};

} // namespace

TEST_F(FloatingPanelTest, its_window_is_no_larger_than_the_panel) {
    const auto panel = present();
    EXPECT_EQ(panel->geometry(), QRect(corner, QSize(200, 100)));
}

TEST_F(FloatingPanelTest, its_corners_are_clear_where_windows_are_blended) {
    const auto panel = present();
    const QImage image = panel->grab().toImage();
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(image.pixel(199, 99)), 0);
    EXPECT_GT(qAlpha(image.pixel(100, 50)), 230);
    EXPECT_TRUE(platform.layers.lastCut.isEmpty());
}

TEST_F(FloatingPanelTest, is_opaque_and_cut_to_its_outline_where_nothing_is_blended) {
    platform.layers.blends = false;
    const auto panel = present();
    EXPECT_FALSE(panel->testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_FALSE(platform.layers.lastCut.contains(QPoint(0, 0)));
    EXPECT_FALSE(platform.layers.lastCut.contains(QPoint(199, 0)));
    EXPECT_TRUE(platform.layers.lastCut.contains(QPoint(14, 0)));
    EXPECT_TRUE(platform.layers.lastCut.contains(QPoint(0, 50)));
    const QImage image = panel->grab().toImage();
    for (const QRect &part : platform.layers.lastCut)
        ASSERT_GT(qGray(image.pixel(part.topLeft())), 150) << part.x() << ", " << part.y();
}

TEST_F(FloatingPanelTest, its_shadow_lies_right_below_it_and_reaches_beyond_it_on_all_sides) {
    const auto panel = present();
    ASSERT_NE(shadow(), nullptr);
    EXPECT_EQ(shadow()->geometry(), QRect(500 - 30, 300 - 20, 260, 160));
    ASSERT_EQ(platform.layers.assignments.size(), 2U);
    EXPECT_EQ(platform.layers.assignments[0].window, shadow()->windowHandle());
    EXPECT_EQ(platform.layers.assignments[1].window, panel->windowHandle());
}

TEST_F(FloatingPanelTest, its_shadow_is_soft_and_leaves_the_panel_clean) {
    const auto panel = present();
    const QImage image = shadow()->grab().toImage();
    const auto alphaAt = [&](int x, int y) { return qAlpha(image.pixel(x, y)); };
    EXPECT_EQ(alphaAt(130, 70), 0) << "below the panel";
    EXPECT_GT(alphaAt(130, 122), 20) << "right below its lower edge";
    EXPECT_GT(alphaAt(130, 122), alphaAt(130, 135));
    EXPECT_LE(alphaAt(130, 159), 2) << "no edge where it ends";
    EXPECT_LE(alphaAt(0, 80), 2);
    EXPECT_LE(alphaAt(130, 0), 2);
}

TEST_F(FloatingPanelTest, its_shadow_lets_clicks_pass) {
    const auto panel = present();
    EXPECT_TRUE(shadow()->windowFlags() & Qt::WindowTransparentForInput);
    EXPECT_TRUE(shadow()->windowFlags() & Qt::WindowDoesNotAcceptFocus);
}

TEST_F(FloatingPanelTest, its_shadow_follows_fades_and_goes_with_it) {
    auto panel = present();
    panel->move(510, 320);
    EXPECT_EQ(shadow()->pos(), QPoint(480, 300));
    panel->setOpacity(0.5);
    EXPECT_NEAR(shadow()->windowOpacity(), 0.5, 0.01);
    panel.reset();
    EXPECT_EQ(shadow(), nullptr);
}

TEST_F(FloatingPanelTest, has_no_shadow_where_nothing_is_blended) {
    platform.layers.blends = false;
    const auto panel = present();
    EXPECT_EQ(shadow(), nullptr);
}

} // namespace pavonel::test
