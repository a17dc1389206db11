#include "support/Scenario.h"

#include <limits>
#include <random>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

using Initiator = BreakController::Initiator;

/// Every number of the settings, so that a test can set them all to nonsense.
std::vector<Setting<double> *> numbersOf(Settings &s) {
    return {&s.microInterval,    &s.microDuration,    &s.longInterval,    &s.longDuration,
            &s.preNotifySeconds, &s.idleResetSeconds, &s.postureInterval, &s.blinkInterval};
}

std::vector<Setting<bool> *> switchesOf(Settings &s) {
    return {&s.microEnabled,      &s.longEnabled,         &s.allowSkip,         &s.allowPostpone,
            &s.strictMode,        &s.naturalBreakEnabled, &s.postureEnabled,    &s.blinkEnabled,
            &s.pauseOnMicrophone, &s.soundEnabled,        &s.pauseOnFullscreen, &s.pauseOnAudio};
}

/// What everybody who shows the controller relies on.
void expectSound(const Scenario &s) {
    const BreakController &c = s.controller;
    ASSERT_EQ(c.phase == Phase::breaking, c.currentBreak->has_value());
    ASSERT_TRUE(c.phase == Phase::paused || !c.pauseUntil->has_value());
    ASSERT_GE(c.microElapsed, 0);
    ASSERT_GE(c.longElapsed, 0);
    ASSERT_FALSE(clockString(c.breakRemaining).isEmpty()); // ends the process on what it cannot show
    ASSERT_FALSE(humanString(c.breakTotal).isEmpty());
    if (const auto next = c.next()) {
        ASSERT_GE(next->remaining, 0);
        ASSERT_FALSE(clockString(next->remaining).isEmpty());
    }
}

} // namespace

TEST(BadInput, intervals_of_zero_or_less_start_a_break_on_every_counted_tick) {
    for (const double interval : {0.0, -0.0, -1.0, -1e300}) {
        Scenario s;
        s.settings.microInterval = interval;
        s.advance(1);
        EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::micro);
        s.advance(20 + 1);
        EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::micro);
        EXPECT_EQ(s.stats.today().micro, 1);
    }
}

TEST(BadInput, durations_of_zero_or_less_end_a_break_on_the_next_tick) {
    for (const double duration : {0.0, -5.0, -1e300}) {
        Scenario s;
        s.settings.microDuration = duration;
        s.advance(1200);
        EXPECT_EQ(s.controller.phase, Phase::breaking);
        ASSERT_NO_FATAL_FAILURE(expectSound(s));
        s.advance(1);
        EXPECT_EQ(s.controller.phase, Phase::counting);
        EXPECT_EQ(s.stats.today().micro, 1);
    }
}

TEST(BadInput, an_interval_beyond_all_times_never_falls_due_and_can_be_shown) {
    Scenario s;
    s.settings.microInterval = 1e300;
    s.settings.longInterval = std::numeric_limits<double>::max();
    s.advance(100);
    ASSERT_NO_FATAL_FAILURE(expectSound(s));
    EXPECT_EQ(s.controller.phase, Phase::counting);
}

TEST(BadInput, a_duration_beyond_all_times_can_be_shown_and_ended) {
    Scenario s;
    s.settings.longDuration = 1e300;
    s.controller.startBreak(BreakKind::long_, Initiator::user);
    s.advance(10);
    ASSERT_NO_FATAL_FAILURE(expectSound(s));
    s.controller.skip();
    EXPECT_EQ(s.controller.phase, Phase::counting);
}

TEST(BadInput, a_lead_time_or_a_reset_time_below_zero_is_harmless) {
    Scenario s;
    s.settings.preNotifySeconds = -30;
    s.advance(1200);
    EXPECT_EQ(s.events, QStringList{QStringLiteral("1200 start Micro break")});
    s.settings.idleResetSeconds = -1; // everybody counts as idle
    s.advance(1000);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.stats.today().screenSeconds, 1200);
}

TEST(BadInput, reminders_without_an_interval_come_every_counted_second) {
    Scenario s;
    s.settings.postureInterval = 0;
    s.settings.blinkEnabled = true;
    s.settings.blinkInterval = -7;
    s.advance(3);
    EXPECT_EQ(s.events.size(), 6);
}

TEST(BadInput, a_planned_break_without_a_length_is_counted) {
    Scenario s;
    s.onlyPlannedBreaks();
    s.plan(9, 1, 0);
    s.plan(9, 2, -60);
    s.advance(180);
    EXPECT_EQ(s.stats.today().planned, 2);
}

TEST(BadInput, texts_of_any_length_and_script_reach_the_break_unchanged) {
    for (const QString &text :
         {QString(10000, u'x'), QStringLiteral("خذ استراحة"), QStringLiteral("👩‍💻 \u202Eabc"),
          QString(), QStringLiteral("%1 %n <b>&amp;\n"), QString(QChar(0xD800))}) {
        Scenario s;
        s.settings.messages = QStringList{text};
        s.controller.startBreak(BreakKind::planned, Initiator::user, 5, text);
        EXPECT_EQ(s.controller.breakMessage, text);
        EXPECT_EQ(s.controller.breakTitle, text);
    }
}

TEST(BadInput, a_wrong_type_under_every_key_at_once_leaves_the_defaults) {
    FakePlatform platform;
    {
        const Settings settings(platform.fakeDefaults, platform.loop);
        for (const StoredSetting *setting : settings.all())
            platform.fakeDefaults.values[setting->key()] = Instant{};
    }
    Settings settings(platform.fakeDefaults, platform.loop);
    Stats stats(platform.fakeDefaults, platform.loop);
    BreakController controller(servicesOf(platform), settings, stats);
    controller.start();
    platform.loop.advance(1200);
    EXPECT_EQ(controller.currentBreak.get(), BreakKind::micro);
    EXPECT_EQ(controller.breakTotal, 20);
}

TEST(BadInput, idle_times_that_are_none_count_as_activity) {
    Scenario s;
    for (const double idle : {std::numeric_limits<double>::quiet_NaN(), -1e9}) {
        s.platform.idle.seconds = idle;
        s.advance(10);
    }
    EXPECT_EQ(s.controller.microElapsed, 20);
    s.platform.idle.seconds = std::numeric_limits<double>::infinity();
    s.advance(1);
    EXPECT_EQ(s.controller.longElapsed, 0);
}

TEST(BadInput, any_settings_and_any_commands_keep_the_controller_sound) {
    const std::array numbers{0.0, -1.0, 0.5, 1.0, 3.0, 20.0, 1e-300, 1e300, -1e300, 9.3e18};
    for (unsigned seed = 1; seed <= 20; ++seed) {
        std::mt19937 random(seed);
        const auto roll = [&](std::size_t sides) { return random() % sides; };
        Scenario s;
        s.plan(9, 5, numbers[roll(numbers.size())]);
        for (int step = 0; step < 300; ++step) {
            const auto number = numbers[roll(numbers.size())];
            switch (roll(12)) {
            case 0:
                *numbersOf(s.settings)[roll(8)] = number;
                break;
            case 1:
                *switchesOf(s.settings)[roll(12)] = roll(2) == 0;
                break;
            case 2:
                s.controller.skip();
                break;
            case 3:
                s.controller.postpone(roll(2) == 0 ? 60 : 300);
                break;
            case 4:
                s.controller.togglePause();
                break;
            case 5:
                s.controller.pause(number);
                break;
            case 6:
                s.controller.startBreak(BreakKind::long_, Initiator::user);
                break;
            case 7:
                s.platform.idle.seconds = number;
                break;
            case 8:
                s.platform.audio.input = roll(2) == 0;
                break;
            case 9:
                s.controller.endBreak(BreakController::Ending::cutShort);
                break;
            default:
                s.advance(static_cast<double>(roll(50)));
            }
            ASSERT_NO_FATAL_FAILURE(expectSound(s)) << "seed " << seed << ", step " << step;
        }
    }
}

} // namespace pavonel::test
