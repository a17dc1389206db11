#include "Core/RelativeTime.h"

#include "support/Printing.h"

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr Seconds hour = 3600;
constexpr Seconds day = 24 * hour;

/// Of a moment this many seconds after now.
std::string named(Seconds away) {
    const Instant now{std::chrono::duration<Seconds>(1.77e9)};
    return relativeTime(now + away, now).toStdString();
}

} // namespace

TEST(RelativeTime, names_what_is_past) {
    const std::pair<Seconds, const char *> cases[] = {
        {0, "now"},
        {-0.9, "now"},
        {-1, "1 second ago"},
        {-59.9, "59 seconds ago"},
        {-60, "1 minute ago"},
        {-5 * 60 - 3, "5 minutes ago"},
        {-hour + 1, "59 minutes ago"},
        {-hour, "1 hour ago"},
        {-23 * hour, "23 hours ago"},
        {-day, "yesterday"},
        {-47 * hour, "yesterday"},
        {-2 * day, "2 days ago"},
        {-6.9 * day, "6 days ago"},
        {-7 * day, "last week"},
        {-14 * day, "2 weeks ago"},
        {-29 * day, "4 weeks ago"},
        {-30 * day, "last month"},
        {-364 * day, "12 months ago"},
        {-365 * day, "last year"},
        {-3 * 365 * day, "3 years ago"},
    };
    for (const auto &[away, text] : cases)
        EXPECT_EQ(named(away), text) << away;
}

TEST(RelativeTime, names_what_a_clock_that_was_set_back_makes_future) {
    const std::pair<Seconds, const char *> cases[] = {
        {0.5, "now"},
        {1, "in 1 second"},
        {90, "in 1 minute"},
        {2 * hour, "in 2 hours"},
        {1.5 * day, "tomorrow"},
        {7 * day, "next week"},
        {40 * day, "next month"},
        {900 * day, "in 2 years"},
    };
    for (const auto &[away, text] : cases)
        EXPECT_EQ(named(away), text) << away;
}

TEST(RelativeTime, answers_for_moments_that_no_calendar_has) {
    using Limits = std::numeric_limits<Seconds>;
    EXPECT_EQ(named(-1e300), "31709 years ago");
    EXPECT_EQ(named(Limits::infinity()), "in 31709 years");
    EXPECT_FALSE(named(Limits::quiet_NaN()).empty());
}

} // namespace pavonel::test
