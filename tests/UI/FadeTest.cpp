#include "UI/Fade.h"

#include "support/FakePlatform.h"

#include <algorithm>
#include <optional>

#include <gtest/gtest.h>

namespace pavonel::test {

struct FadeTest : ::testing::Test {
    FakePlatform platform;
    std::vector<double> applied;
    int completions = 0;
    std::optional<Fade> fade{std::in_place, platform.loop, platform.colours,
                             [this](double opacity) { applied.push_back(opacity); }};
    Fade::Completion count = [this] { ++completions; };
};

TEST_F(FadeTest, reaches_its_target_after_its_duration_and_not_before) {
    fade->to(1, 0.45, count);
    platform.loop.advance(0.44);
    EXPECT_EQ(completions, 0);
    EXPECT_LT(fade->opacity(), 1);
    platform.loop.advance(0.02);
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(applied.back(), 1);
}

TEST_F(FadeTest, moves_evenly_about_its_middle_and_never_back) {
    fade->to(1, 0.5);
    platform.loop.advance(0.25);
    EXPECT_NEAR(fade->opacity(), 0.5, 0.06);
    platform.loop.advance(0.5);
    EXPECT_TRUE(std::is_sorted(applied.begin(), applied.end()));
    EXPECT_GT(applied.size(), 25U);
}

TEST_F(FadeTest, turns_round_where_it_stands) {
    fade->to(1, 0.5, count);
    platform.loop.advance(0.25);
    const double reached = fade->opacity();
    fade->to(0, 0.3);
    platform.loop.advance(0.02);
    EXPECT_LE(fade->opacity(), reached);
    EXPECT_GT(fade->opacity(), reached - 0.1);
    platform.loop.advance(1);
    EXPECT_EQ(fade->opacity(), 0);
    EXPECT_EQ(completions, 0) << "the completion of a fade that was replaced";
}

TEST_F(FadeTest, reduced_motion_sets_the_target_at_once) {
    platform.colours.current.reducedMotion = true;
    fade->to(1, 0.45, count);
    EXPECT_EQ(applied, std::vector<double>{1});
    EXPECT_EQ(completions, 0) << "from within the call";
    platform.loop.advance(0);
    EXPECT_EQ(completions, 1);
}

TEST_F(FadeTest, the_completion_may_destroy_the_fade) {
    fade->to(1, 0.1, [this] { fade.reset(); });
    platform.loop.advance(1);
    EXPECT_FALSE(fade);
    EXPECT_EQ(platform.loop.timerCount(), 0U);
}

TEST_F(FadeTest, a_destroyed_fade_calls_nobody) {
    fade->to(1, 0.1, count);
    fade.reset();
    applied.clear();
    platform.loop.advance(1);
    EXPECT_TRUE(applied.empty());
    EXPECT_EQ(completions, 0);
}

TEST_F(FadeTest, no_timer_runs_once_it_is_done) {
    fade->to(1, 0.1);
    platform.loop.advance(0.2);
    const auto frames = applied.size();
    platform.loop.advance(10);
    EXPECT_EQ(applied.size(), frames);
}

TEST_F(FadeTest, setting_the_clock_does_not_turn_it_back_nor_keep_it_from_ending) {
    fade->to(1, 0.5, count);
    platform.loop.advance(0.25);
    platform.loop.setClock(platform.loop.now() + -3600);
    platform.loop.advance(0.3);
    EXPECT_TRUE(std::is_sorted(applied.begin(), applied.end()));
    EXPECT_EQ(fade->opacity(), 1);
    EXPECT_EQ(completions, 1);
}

} // namespace pavonel::test
