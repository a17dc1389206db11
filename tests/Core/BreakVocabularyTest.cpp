#include "Core/BreakVocabulary.h"

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

TEST(BreakKind, each_kind_has_a_title_for_a_break_without_one) {
    EXPECT_EQ(defaultTitle(BreakKind::micro), QStringLiteral("Micro break"));
    EXPECT_EQ(defaultTitle(BreakKind::long_), QStringLiteral("Long break"));
    EXPECT_EQ(defaultTitle(BreakKind::planned), QStringLiteral("Planned break"));
}

TEST(BreakKind, each_kind_has_a_name_for_other_programs) {
    EXPECT_EQ(name(BreakKind::micro), QStringLiteral("micro"));
    EXPECT_EQ(name(BreakKind::long_), QStringLiteral("long"));
    EXPECT_EQ(name(BreakKind::planned), QStringLiteral("planned"));
}

TEST(PauseReason, the_label_leads_back_to_the_reason) {
    const std::array labels{
        std::pair{PauseReason::fullscreen, QStringLiteral("Fullscreen app")},
        std::pair{PauseReason::audio, QStringLiteral("Video or audio playing")},
        std::pair{PauseReason::microphone, QStringLiteral("Meeting or call")},
        std::pair{PauseReason::screenSharing, QStringLiteral("Screen sharing or recording")},
        std::pair{PauseReason::deepFocus, QStringLiteral("Focus app in front")},
    };
    for (const auto &[reason, label] : labels) {
        EXPECT_EQ(rawValue(reason), label);
        EXPECT_EQ(pauseReason(label), reason);
    }
}

TEST(PauseReason, a_label_in_other_letters_is_none) {
    EXPECT_FALSE(pauseReason(QStringLiteral("fullscreen app")));
    EXPECT_FALSE(pauseReason(QStringLiteral("Fullscreen app ")));
    EXPECT_FALSE(pauseReason(QStringLiteral("fullscreen")));
    EXPECT_FALSE(pauseReason(QString()));
}

TEST(ClockString, rounds_to_whole_seconds_first) {
    EXPECT_EQ(clockString(59.6), QStringLiteral("1:00"));
    EXPECT_EQ(clockString(0.5), QStringLiteral("0:01"));
    EXPECT_EQ(clockString(0.49), QStringLiteral("0:00"));
    EXPECT_EQ(clockString(3599.5), QStringLiteral("1:00:00"));
}

TEST(ClockString, shows_hours_from_an_hour_up) {
    EXPECT_EQ(clockString(5), QStringLiteral("0:05"));
    EXPECT_EQ(clockString(75), QStringLiteral("1:15"));
    EXPECT_EQ(clockString(3599), QStringLiteral("59:59"));
    EXPECT_EQ(clockString(3600), QStringLiteral("1:00:00"));
    EXPECT_EQ(clockString(3725), QStringLiteral("1:02:05"));
    EXPECT_EQ(clockString(360000), QStringLiteral("100:00:00"));
}

TEST(ClockString, a_negative_duration_is_shown_as_it_is) {
    EXPECT_EQ(clockString(-0.5), QStringLiteral("0:-1")); // halves go away from zero
    EXPECT_EQ(clockString(-5), QStringLiteral("0:-5"));
}

TEST(HumanString, names_the_greatest_units) {
    EXPECT_EQ(humanString(0), QStringLiteral("0s"));
    EXPECT_EQ(humanString(45), QStringLiteral("45s"));
    EXPECT_EQ(humanString(59.4), QStringLiteral("59s"));
    EXPECT_EQ(humanString(59.5), QStringLiteral("1m"));
    EXPECT_EQ(humanString(60), QStringLiteral("1m"));
    EXPECT_EQ(humanString(119), QStringLiteral("1m"));
    EXPECT_EQ(humanString(3599), QStringLiteral("59m"));
    EXPECT_EQ(humanString(3600), QStringLiteral("1h"));
    EXPECT_EQ(humanString(3659), QStringLiteral("1h"));
    EXPECT_EQ(humanString(3660), QStringLiteral("1h 1m"));
    EXPECT_EQ(humanString(9000), QStringLiteral("2h 30m"));
}

TEST(DurationTexts, show_the_longest_duration_that_fits) {
    EXPECT_EQ(humanString(9e18), QStringLiteral("2500000000000000h"));
    EXPECT_EQ(clockString(9e18), QStringLiteral("2500000000000000:00:00"));
}

TEST(DurationTextsDeathTest, a_value_that_is_no_duration_stops_the_process) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(clockString(std::numeric_limits<double>::quiet_NaN()), "");
    EXPECT_DEATH(clockString(std::numeric_limits<double>::infinity()), "");
    EXPECT_DEATH(humanString(9223372036854775808.0), "");
}

} // namespace pavonel::test
