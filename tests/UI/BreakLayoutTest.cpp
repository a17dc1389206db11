#include "UI/BreakLayout.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr QSizeF screen(1920, 1080);
constexpr QSizeF capsule(140, 34);

BreakLayout::Sizes sizes(std::optional<QSizeF> skip = capsule) {
    return {.titleHeight = 16, .messageHeight = 34, .skip = skip};
}

} // namespace

TEST(BreakLayout, items_stand_28_points_apart_and_the_skip_button_8_more) {
    const BreakLayout layout = BreakLayout::of(screen, sizes());
    EXPECT_EQ(layout.ring.top() - layout.title.bottom(), 28);
    EXPECT_EQ(layout.message.top() - layout.ring.bottom(), 28);
    EXPECT_EQ(layout.skip.top() - layout.message.bottom(), 28 + 8);
}

TEST(BreakLayout, the_whole_stack_is_in_the_middle) {
    const BreakLayout layout = BreakLayout::of(screen, sizes());
    EXPECT_NEAR(layout.title.top(), 1080 - layout.skip.bottom(), 1);
    for (const QRectF &rect : {layout.title, layout.ring, layout.message, layout.skip})
        EXPECT_EQ(rect.center().x(), 960);
}

TEST(BreakLayout, without_a_skip_button_the_rest_is_in_the_middle) {
    const BreakLayout layout = BreakLayout::of(screen, sizes(std::nullopt));
    EXPECT_TRUE(layout.skip.isEmpty());
    EXPECT_NEAR(layout.title.top(), 1080 - layout.message.bottom(), 1);
}

TEST(BreakLayout, the_ring_is_a_square_of_240_points) {
    EXPECT_EQ(BreakLayout::of(screen, sizes()).ring.size(), QSizeF(240, 240));
}

TEST(BreakLayout, the_message_is_at_most_620_wide_and_60_points_from_the_edges) {
    EXPECT_EQ(BreakLayout::of(screen, sizes()).message.width(), 620);
    EXPECT_EQ(BreakLayout::of({640, 480}, sizes()).message.width(), 520);
    EXPECT_EQ(BreakLayout::of({640, 480}, sizes()).message.left(), 60);
}

TEST(BreakLayout, the_tallest_message_leaves_60_points_above_and_below) {
    BreakLayout::Sizes tallest = sizes();
    tallest.messageHeight = 0;
    tallest.messageHeight = BreakLayout::roomForMessage(screen, tallest);
    const BreakLayout layout = BreakLayout::of(screen, tallest);
    EXPECT_EQ(layout.title.top(), 60);
    EXPECT_EQ(layout.skip.bottom(), 1080 - 60);
}

TEST(BreakLayout, a_tiny_window_leaves_no_negative_room) {
    EXPECT_EQ(BreakLayout::roomForText({100, 100}), 0);
    EXPECT_EQ(BreakLayout::roomForMessage({100, 100}, sizes()), 0);
}

} // namespace pavonel::test
