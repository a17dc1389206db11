#include "UI/BreakLayout.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr QSizeF area(1920, 1080);
constexpr QSizeF capsule(140, 34);

BreakLayout::Sizes sizes(std::optional<QSizeF> skip = capsule) {
    return {.titleHeight = 16, .messageHeight = 34, .skip = skip};
}

} // namespace

TEST(BreakLayout, items_stand_28_points_apart_and_the_skip_button_8_more) {
    const BreakLayout layout = BreakLayout::of(area, sizes());
    EXPECT_EQ(layout.ring.top() - layout.title.bottom(), 28);
    EXPECT_EQ(layout.message.top() - layout.ring.bottom(), 28);
    EXPECT_EQ(layout.skip.top() - layout.message.bottom(), 28 + 8);
}

TEST(BreakLayout, the_whole_stack_is_in_the_middle) {
    const BreakLayout layout = BreakLayout::of(area, sizes());
    EXPECT_NEAR(layout.title.top(), 1080 - layout.skip.bottom(), 1);
    for (const QRectF &rect : {layout.title, layout.ring, layout.message, layout.skip})
        EXPECT_EQ(rect.center().x(), 960);
}

TEST(BreakLayout, without_a_skip_button_the_rest_is_in_the_middle) {
    const BreakLayout layout = BreakLayout::of(area, sizes(std::nullopt));
    EXPECT_TRUE(layout.skip.isEmpty());
    EXPECT_NEAR(layout.title.top(), 1080 - layout.message.bottom(), 1);
}

TEST(BreakLayout, the_ring_is_a_square_of_240_points) {
    EXPECT_EQ(BreakLayout::of(area, sizes()).ring.size(), QSizeF(240, 240));
}

TEST(BreakLayout, the_message_is_at_most_620_wide_and_60_points_from_the_edges) {
    EXPECT_EQ(BreakLayout::of(area, sizes()).message.width(), 620);
    EXPECT_EQ(BreakLayout::of({640, 480}, sizes()).message.width(), 520);
    EXPECT_EQ(BreakLayout::of({640, 480}, sizes()).message.left(), 60);
}

TEST(BreakLayout, the_tallest_message_leaves_60_points_above_and_below) {
    BreakLayout::Sizes tallest = sizes();
    tallest.messageHeight = 0;
    tallest.messageHeight = BreakLayout::roomForMessage(area, tallest);
    const BreakLayout layout = BreakLayout::of(area, tallest);
    EXPECT_EQ(layout.title.top(), 60);
    EXPECT_EQ(layout.skip.bottom(), 1080 - 60);
}

TEST(BreakLayout, on_a_small_screen_paddings_and_ring_give_way_in_proportion) {
    for (const QSizeF small : {QSizeF(640, 360), QSizeF(683, 384), QSizeF(800, 480)}) {
        for (const double lines : {1, 2, 4}) {
            BreakLayout::Sizes all = sizes();
            all.messageHeight = lines * 34;
            all.scale = BreakLayout::scaleFor(small, all);
            const BreakLayout layout = BreakLayout::of(small, all);
            EXPECT_LT(all.scale, 1);
            EXPECT_NEAR(layout.title.top(), 60 * all.scale, 1);
            EXPECT_NEAR(layout.skip.bottom(), small.height() - 60 * all.scale, 1);
            EXPECT_NEAR(layout.ring.width(), 240 * all.scale, 1);
            EXPECT_NEAR(layout.message.top() - layout.ring.bottom(), 28 * all.scale, 1);
            EXPECT_EQ(layout.message.height(), all.messageHeight);
            EXPECT_EQ(layout.skip.size(), capsule);
        }
    }
}

TEST(BreakLayout, an_ordinary_screen_has_everything_in_full_size) {
    BreakLayout::Sizes all = sizes();
    all.messageHeight = 4 * 34;
    EXPECT_EQ(BreakLayout::scaleFor({1280, 720}, all), 1);
}

TEST(BreakLayout, a_tiny_window_leaves_no_negative_room) {
    EXPECT_EQ(BreakLayout::roomForText({100, 100}), 0);
    EXPECT_EQ(BreakLayout::roomForMessage({100, 100}, sizes()), 0);
}

} // namespace pavonel::test
