#include "Platform/Linux/Wayland/Anchoring.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr std::uint32_t top = 1;
constexpr std::uint32_t bottom = 2;
constexpr std::uint32_t left = 4;
constexpr std::uint32_t right = 8;
constexpr QRect output(1000, 0, 1920, 1080);

TEST(Anchoring, holds_a_corner_at_its_two_edges) {
    EXPECT_EQ(Anchoring::of({2562, 18, 340, 132}, output), (Anchoring{top | right, {0, 18, 18, 0}}));
    EXPECT_EQ(Anchoring::of({1010, 1000, 86, 30}, output), (Anchoring{bottom | left, {10, 0, 0, 50}}));
}

TEST(Anchoring, holds_what_stands_in_the_middle_to_the_top_alone) {
    EXPECT_EQ(Anchoring::of({1770, 24, 380, 56}, output), (Anchoring{top, {0, 24, 0, 0}}));
    EXPECT_EQ(Anchoring::of({1769, 24, 381, 56}, output), (Anchoring{top, {0, 24, 0, 0}}));
}

TEST(Anchoring, keeps_what_reaches_beyond_the_edge) {
    EXPECT_EQ(Anchoring::of({2532, -2, 400, 192}, output), (Anchoring{top | right, {0, -2, -12, 0}}));
}

} // namespace

} // namespace pavonel::test
