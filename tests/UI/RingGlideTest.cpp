#include "UI/RingGlide.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr double smallestStep = 0.001;

class RingGlideTest : public ::testing::Test {
protected:
    RingGlideTest() { glide.setSmallestStep(smallestStep); }

    FakePlatform platform;
    std::vector<double> shown;
    RingGlide glide{platform.loop, platform.colours, [this] { shown.push_back(glide.reached()); }};
};

} // namespace

TEST_F(RingGlideTest, glides_evenly_for_a_second) {
    constexpr double frame = 0.1 / 20;
    glide.glideTo(0.1);
    platform.loop.advance(0.25);
    EXPECT_NEAR(glide.reached(), 0.025, frame);
    platform.loop.advance(0.48);
    EXPECT_NEAR(glide.reached(), 0.073, frame);
    platform.loop.advance(0.27);
    EXPECT_NEAR(glide.reached(), 0.1, smallestStep);
}

TEST_F(RingGlideTest, a_change_on_the_way_starts_where_it_stands) {
    glide.glideTo(0.1);
    platform.loop.advance(0.5);
    const double before = glide.reached();
    glide.glideTo(0.5);
    EXPECT_EQ(glide.reached(), before);
    platform.loop.advance(0.5);
    EXPECT_NEAR(glide.reached(), (0.05 + 0.5) / 2, 0.01);
}

TEST_F(RingGlideTest, shows_at_most_20_frames_a_second) {
    glide.glideTo(1);
    platform.loop.advance(1);
    EXPECT_LE(shown.size(), 20U);
    EXPECT_GE(shown.size(), 18U);
}

TEST_F(RingGlideTest, a_slow_arc_is_shown_only_when_it_has_moved_by_the_smallest_step) {
    for (int second = 1; second <= 300; ++second) {
        glide.glideTo(second / 300.0);
        platform.loop.advance(1);
    }
    EXPECT_LE(shown.size(), 1 / smallestStep);
    EXPECT_GE(shown.size(), 0.9 / smallestStep);
    EXPECT_NEAR(glide.reached(), 1, smallestStep);
}

TEST_F(RingGlideTest, an_arc_that_needs_seconds_for_a_step_still_moves) {
    for (int second = 1; second <= 50; ++second) {
        glide.glideTo(second * smallestStep / 10);
        platform.loop.advance(1);
    }
    EXPECT_NEAR(double(shown.size()), 5, 1);
}

TEST_F(RingGlideTest, with_reduced_motion_it_steps) {
    platform.colours.current.reducedMotion = true;
    glide.glideTo(0.05);
    EXPECT_EQ(shown, std::vector<double>{0.05});
    platform.loop.advance(5);
    EXPECT_EQ(shown.size(), 1U);
}

TEST_F(RingGlideTest, no_timer_runs_once_it_has_arrived) {
    glide.glideTo(0.1);
    platform.loop.advance(2);
    EXPECT_EQ(platform.loop.timerCount(), 0U);
}

TEST_F(RingGlideTest, the_same_progress_again_costs_nothing) {
    glide.jumpTo(0.5);
    glide.glideTo(0.5);
    EXPECT_EQ(platform.loop.timerCount(), 0U);
}

TEST_F(RingGlideTest, a_clock_set_back_does_not_turn_it_back) {
    glide.glideTo(0.1);
    platform.loop.advance(0.5);
    platform.loop.setClock(platform.loop.now() + -7200);
    platform.loop.advance(0.3);
    glide.glideTo(0.2);
    platform.loop.advance(1.1);
    EXPECT_NEAR(glide.reached(), 0.2, smallestStep);
}

} // namespace pavonel::test
