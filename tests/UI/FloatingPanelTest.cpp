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
        panel->present(corner, mainScreen(platform.screens->all()));
        return panel;
    }
};

} // namespace

TEST_F(FloatingPanelTest, its_slab_stands_at_the_wanted_place_with_room_for_its_shadow_around) {
    const auto panel = present();
    EXPECT_EQ(slabOf(panel.get()), QRect(corner, QSize(200, 100)));
    EXPECT_EQ(panel->geometry(), QRect(500 - 30, 300 - 20, 260, 160));
}

TEST_F(FloatingPanelTest, its_window_is_no_larger_than_the_slab_where_nothing_is_blended) {
    platform.layers.blends = false;
    const auto panel = present();
    EXPECT_EQ(panel->geometry(), QRect(corner, QSize(200, 100)));
}

TEST_F(FloatingPanelTest, its_corners_are_clear_where_windows_are_blended) {
    const auto panel = present();
    const QImage image = panel->grab(panel->contentsRect()).toImage();
    EXPECT_LT(qAlpha(image.pixel(0, 0)), 40);
    EXPECT_LT(qAlpha(image.pixel(199, 99)), 40);
    EXPECT_GT(qAlpha(image.pixel(100, 50)), 230);
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

TEST_F(FloatingPanelTest, its_shadow_is_soft) {
    const auto panel = present();
    const QImage image = panel->grab().toImage();
    const auto alphaAt = [&](int x, int y) { return qAlpha(image.pixel(x, y)); };
    EXPECT_GT(alphaAt(130, 122), 20) << "right below its lower edge";
    EXPECT_GT(alphaAt(130, 122), alphaAt(130, 135));
    EXPECT_LE(alphaAt(130, 159), 2) << "no edge where it ends";
    EXPECT_LE(alphaAt(0, 80), 2);
    EXPECT_LE(alphaAt(130, 0), 2);
}

TEST_F(FloatingPanelTest, its_material_is_the_same_with_and_without_a_shadow_below_it) {
    const auto panel = present();
    const QImage image = panel->grab().toImage();
    const QColor material = panel->colours().panel;
    EXPECT_EQ(qAlpha(image.pixel(130, 70)), material.alpha());
}

TEST_F(FloatingPanelTest, only_its_slab_receives_clicks) {
    const auto panel = present();
    EXPECT_EQ(platform.layers.lastCut.boundingRect(), panel->contentsRect());
    EXPECT_FALSE(platform.layers.lastCut.contains(panel->contentsRect().topLeft()));
}

TEST_F(FloatingPanelTest, has_no_shadow_where_nothing_is_blended) {
    platform.layers.blends = false;
    const auto panel = present();
    EXPECT_TRUE(panel->contentsMargins().isNull());
}

} // namespace pavonel::test
