#include "support/Scenario.h"

#include <memory>

#include <gtest/gtest.h>

namespace pavonel::test {

TEST(BreakController, starts_counting_with_nothing_done) {
    const Scenario s;
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.controller.pauseReason.get(), std::nullopt);
    EXPECT_EQ(s.controller.currentBreak.get(), std::nullopt);
    EXPECT_EQ(s.controller.pauseUntil.get(), std::nullopt);
    EXPECT_EQ(s.controller.microElapsed, 0);
    EXPECT_EQ(s.controller.longElapsed, 0);
    EXPECT_EQ(s.controller.breakRemaining, 0);
    EXPECT_EQ(s.controller.breakTotal, 1);
    EXPECT_EQ(s.controller.breakMessage, QString());
    EXPECT_EQ(s.controller.breakTitle, QString());
}

TEST(BreakController, a_tick_is_one_second_of_screen_time_on_both_counters_and_the_day) {
    Scenario s;
    s.advance(90);
    EXPECT_EQ(s.controller.microElapsed, 90);
    EXPECT_EQ(s.controller.longElapsed, 90);
    EXPECT_EQ(s.stats.today(), Day{.screenSeconds = 90});
}

TEST(BreakController, one_tick_reads_the_clock_once) {
    Scenario s;
    s.plan(9, 30, 40);
    const auto expectOneReadATick = [&s](const char *what, Seconds ticks) {
        s.platform.loop.clockReads = 0;
        s.advance(ticks);
        EXPECT_EQ(s.platform.loop.clockReads, ticks) << what;
    };
    expectOneReadATick("counting, a heads-up and a micro break", 1300);
    expectOneReadATick("a planned break", 600);
    ASSERT_EQ(s.stats.today().planned, 1);
    s.controller.pause(100);
    expectOneReadATick("a pause and its end", 101);
    s.platform.idle.seconds = 400;
    expectOneReadATick("an idle spell", 10);
}

TEST(BreakController, starting_again_replaces_the_timer) {
    Scenario s;
    s.controller.start();
    s.controller.start();
    s.advance(10);
    EXPECT_EQ(s.controller.microElapsed, 10);
}

TEST(BreakController, a_controller_that_is_gone_does_not_tick) {
    FakePlatform platform;
    Settings settings(platform.fakeDefaults, platform.loop);
    Stats stats(platform.fakeDefaults, platform.loop);
    auto controller = std::make_unique<BreakController>(servicesOf(platform), settings, stats);
    controller->start();
    platform.loop.advance(5);
    controller.reset();
    platform.loop.advance(5);
    EXPECT_EQ(stats.today().screenSeconds, 5);
    EXPECT_EQ(platform.loop.timerCount(), 0U);
}

TEST(BreakController, runs_without_anybody_listening) {
    FakePlatform platform;
    Settings settings(platform.fakeDefaults, platform.loop);
    Stats stats(platform.fakeDefaults, platform.loop);
    BreakController controller(servicesOf(platform), settings, stats);
    controller.start();
    platform.loop.advance(1200);
    EXPECT_EQ(controller.phase, Phase::breaking);
    controller.skip();
    platform.loop.advance(1170);
    EXPECT_EQ(controller.phase, Phase::headsUp);
    controller.pause();
    EXPECT_EQ(stats.today().skipped, 1);
}

// Natural breaks

TEST(BreakController, idle_for_exactly_the_reset_time_counts_nothing) {
    Scenario s;
    s.settings.microDuration = 100; // longer than the idle spell
    s.advance(500);
    s.platform.idle.seconds = 60;
    s.advance(1);
    EXPECT_EQ(s.controller.microElapsed, 500);
    EXPECT_EQ(s.controller.longElapsed, 500);
    EXPECT_EQ(s.stats.today().screenSeconds, 500);
}

TEST(BreakController, idle_just_below_the_reset_time_counts) {
    Scenario s;
    s.platform.idle.seconds = 59.999;
    s.advance(1);
    EXPECT_EQ(s.controller.microElapsed, 1);
}

TEST(BreakController, an_idle_spell_as_long_as_a_micro_break_resets_the_micro_counter_alone) {
    Scenario s;
    s.advance(500);
    s.platform.idle.seconds = 60; // a micro break lasts 20
    s.advance(1);
    EXPECT_EQ(s.controller.microElapsed, 0);
    EXPECT_EQ(s.controller.longElapsed, 500);
}

TEST(BreakController, an_idle_spell_as_long_as_a_long_break_resets_both_counters) {
    Scenario s;
    s.advance(500);
    s.platform.idle.seconds = 299;
    s.advance(1);
    EXPECT_EQ(s.controller.longElapsed, 500);
    s.platform.idle.seconds = 300;
    s.advance(1);
    EXPECT_EQ(s.controller.longElapsed, 0);
    EXPECT_EQ(s.controller.microElapsed, 0);
}

TEST(BreakController, with_long_breaks_off_an_idle_spell_of_any_length_keeps_the_long_counter) {
    Scenario s;
    s.settings.longEnabled = false;
    s.advance(500);
    s.platform.idle.seconds = 3000;
    s.advance(1);
    EXPECT_EQ(s.controller.longElapsed, 500);
    EXPECT_EQ(s.controller.microElapsed, 0);
}

TEST(BreakController, an_idle_spell_shorter_than_any_break_keeps_both_counters) {
    Scenario s;
    s.settings.microDuration = 120;
    s.advance(500);
    s.platform.idle.seconds = 119;
    s.advance(30);
    EXPECT_EQ(s.controller.microElapsed, 500);
    EXPECT_EQ(s.controller.longElapsed, 500);
}

TEST(BreakController, with_natural_breaks_off_idle_time_never_stops_the_counters) {
    Scenario s;
    s.settings.naturalBreakEnabled = false;
    s.platform.idle.seconds = 100000;
    s.advance(600);
    EXPECT_EQ(s.controller.microElapsed, 600);
    EXPECT_EQ(s.controller.longElapsed, 600);
}

TEST(BreakController, going_idle_withdraws_the_heads_up) {
    Scenario s;
    s.advance(1180);
    s.platform.idle.seconds = 60;
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.events.last(), QStringLiteral("1181 heads-up withdrawn"));
}

TEST(BreakController, going_idle_puts_the_statistics_on_disk_once) {
    Scenario s;
    s.advance(10);
    EXPECT_EQ(s.platform.fakeDefaults.saves, 0);
    s.platform.idle.seconds = 60;
    s.advance(30);
    EXPECT_EQ(s.platform.fakeDefaults.saves, 1);
}

TEST(BreakController, each_break_that_is_taken_cut_short_or_skipped_is_put_on_disk_at_once) {
    Scenario s;
    const auto &saves = s.platform.fakeDefaults.saves;
    s.advance(1199);
    EXPECT_EQ(saves, 0);
    s.controller.skip();
    EXPECT_EQ(saves, 1);
    s.advance(1200);
    ASSERT_EQ(s.controller.phase, Phase::breaking);
    EXPECT_EQ(saves, 1);
    s.advance(20);
    EXPECT_EQ(saves, 2);
    s.advance(1200);
    s.controller.skip();
    EXPECT_EQ(saves, 3);
}

TEST(BreakController, an_idle_tick_leaves_a_held_reason_as_it_was) {
    Scenario s;
    s.platform.audio.input = true;
    s.advance(1);
    s.platform.audio.input = false;
    s.platform.idle.seconds = 60;
    s.advance(1); // idleness is looked at first, so nobody asks for the reason
    EXPECT_EQ(s.controller.pauseReason.get(), PauseReason::microphone);
    s.platform.idle.seconds = 0;
    s.advance(1);
    EXPECT_EQ(s.controller.pauseReason.get(), std::nullopt);
}

// What holds the timer

TEST(BreakController, a_pause_reason_holds_the_counters_and_clears_by_itself) {
    Scenario s;
    s.advance(100);
    s.platform.audio.input = true;
    s.advance(50);
    EXPECT_EQ(s.controller.pauseReason.get(), PauseReason::microphone);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.controller.microElapsed, 100);
    EXPECT_EQ(s.stats.today().screenSeconds, 100);
    s.platform.audio.input = false;
    s.advance(1); // the tick that clears the reason counts
    EXPECT_EQ(s.controller.pauseReason.get(), std::nullopt);
    EXPECT_EQ(s.controller.microElapsed, 101);
}

TEST(BreakController, one_pause_reason_can_follow_another) {
    Scenario s;
    s.platform.audio.input = true;
    s.advance(1);
    s.platform.audio.input = false;
    s.platform.apps.applications = {{7, QStringLiteral("com.loom.desktop")}};
    s.advance(1);
    EXPECT_EQ(s.controller.pauseReason.get(), PauseReason::screenSharing);
    EXPECT_EQ(s.controller.microElapsed, 0);
}

TEST(BreakController, a_pause_reason_withdraws_the_heads_up_which_may_come_again) {
    Scenario s;
    s.advance(1180);
    s.platform.audio.input = true;
    s.advance(60);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.controller.microElapsed, 1179 + 1);
    s.platform.audio.input = false;
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::headsUp);
    EXPECT_EQ(s.events, (QStringList{QStringLiteral("1170 heads-up Micro break"),
                                     QStringLiteral("1181 heads-up withdrawn"),
                                     QStringLiteral("1241 heads-up Micro break")}));
    s.advance(19);
    EXPECT_EQ(s.controller.phase, Phase::breaking);
}

TEST(BreakController, a_break_in_progress_ignores_idleness_and_pause_reasons) {
    Scenario s;
    s.advance(1200);
    s.platform.idle.seconds = 1000;
    s.platform.audio.input = true;
    const int queries = s.platform.idle.queries + s.platform.audio.queries;
    s.advance(19);
    EXPECT_EQ(s.controller.breakRemaining, 1);
    EXPECT_EQ(s.platform.idle.queries + s.platform.audio.queries, queries);
    s.advance(1);
    EXPECT_EQ(s.stats.today().micro, 1);
}

// The user's pause

TEST(BreakController, a_timed_pause_is_lifted_by_a_tick_that_counts_nothing) {
    Scenario s;
    s.advance(100);
    s.controller.pause(900);
    EXPECT_EQ(s.controller.pauseUntil.get(), s.platform.loop.now() + 900);
    s.advance(899);
    EXPECT_EQ(s.controller.phase, Phase::paused);
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.controller.pauseUntil.get(), std::nullopt);
    EXPECT_EQ(s.controller.microElapsed, 100);
    s.advance(1);
    EXPECT_EQ(s.controller.microElapsed, 101);
}

TEST(BreakController, an_indefinite_pause_never_ends_by_itself) {
    Scenario s;
    s.controller.pause();
    s.advance(100000);
    EXPECT_EQ(s.controller.phase, Phase::paused);
    EXPECT_EQ(s.stats.today(), Day{});
}

TEST(BreakController, nothing_is_looked_at_during_a_pause) {
    Scenario s;
    s.controller.pause();
    s.advance(60);
    EXPECT_EQ(s.platform.idle.queries, 0);
    EXPECT_EQ(s.platform.audio.queries, 0);
}

// What comes next

TEST(BreakController, micro_and_long_due_at_once_a_micro_break_starts) {
    Scenario s;
    s.settings.longInterval = 1200;
    s.advance(1200);
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::micro);
}

TEST(BreakController, a_long_break_that_is_sooner_comes_first) {
    Scenario s;
    s.settings.longInterval = 1199;
    s.advance(1199);
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::long_);
    EXPECT_EQ(s.controller.breakTitle, QStringLiteral("Long break"));
    EXPECT_EQ(s.controller.breakTotal, 300);
}

TEST(BreakController, on_equal_times_both_win_over_a_planned_break) {
    Scenario s;
    const auto lunch = s.plan(9, 20);
    EXPECT_EQ(s.controller.next(), (NextBreak{BreakKind::micro, QStringLiteral("Micro break"), 1200, {}}));
    s.settings.microEnabled = false;
    s.settings.longInterval = 1200;
    EXPECT_EQ(s.controller.next(), (NextBreak{BreakKind::long_, QStringLiteral("Long break"), 1200, {}}));
    s.settings.longEnabled = false;
    EXPECT_EQ(s.controller.next(), (NextBreak{BreakKind::planned, QStringLiteral("Lunch"), 1200, lunch.id}));
}

TEST(BreakController, a_next_micro_or_long_break_has_no_planned_id) {
    Scenario s;
    s.plan(12, 0);
    EXPECT_EQ(s.controller.next()->plannedID, std::nullopt);
    s.settings.microEnabled = false;
    EXPECT_EQ(s.controller.next()->kind, BreakKind::long_);
    EXPECT_EQ(s.controller.next()->plannedID, std::nullopt);
}

TEST(BreakController, the_remaining_time_of_an_overdue_break_is_zero) {
    Scenario s;
    s.controller.microElapsed = 5000;
    EXPECT_EQ(s.controller.next()->remaining, 0);
}

TEST(BreakController, with_nothing_scheduled_no_break_starts_and_the_counters_grow) {
    Scenario s;
    s.settings.microEnabled = false;
    s.settings.longEnabled = false;
    s.settings.postureEnabled = false;
    s.advance(20000);
    EXPECT_EQ(s.controller.next(), std::nullopt);
    EXPECT_EQ(s.events, QStringList());
    EXPECT_EQ(s.controller.microElapsed, 20000);
    EXPECT_EQ(s.controller.longElapsed, 20000);
}

TEST(BreakController, without_lead_time_no_heads_up_is_raised) {
    Scenario s;
    s.settings.preNotifySeconds = 0;
    s.advance(1200);
    EXPECT_EQ(s.events, QStringList{QStringLiteral("1200 start Micro break")});
}

TEST(BreakController, a_lead_time_longer_than_the_interval_raises_the_heads_up_at_once) {
    Scenario s;
    s.settings.preNotifySeconds = 5000;
    s.advance(1);
    EXPECT_EQ(s.events, QStringList{QStringLiteral("1 heads-up Micro break")});
}

TEST(BreakController, a_heads_up_is_raised_once_for_each_approach) {
    Scenario s;
    s.advance(1199);
    EXPECT_EQ(s.eventsWith(QStringLiteral("heads-up")).size(), 1);
    s.controller.postpone(60);
    s.advance(60);
    EXPECT_EQ(s.eventsWith(QStringLiteral("heads-up Micro")).size(), 2);
}

TEST(BreakController, withdrawing_a_heads_up_that_is_not_raised_does_nothing) {
    Scenario s;
    s.controller.dismissHeadsUp();
    EXPECT_EQ(s.events, QStringList());
}

TEST(BreakController, a_change_of_a_setting_is_live_at_the_next_tick) {
    Scenario s;
    s.advance(100);
    s.settings.microInterval = 101;
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::breaking);
}

TEST(BreakController, a_planned_break_fires_before_the_counters_advance) {
    Scenario s;
    s.plan(9, 10);
    s.advance(600);
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::planned);
    EXPECT_EQ(s.controller.microElapsed, 599);
    EXPECT_EQ(s.stats.today().screenSeconds, 599);
}

TEST(BreakController, a_planned_break_waits_for_a_meeting) {
    Scenario s;
    s.plan(9, 10);
    s.platform.audio.input = true;
    s.advance(900);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    s.platform.audio.input = false;
    s.advance(1);
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::planned);
}

TEST(BreakController, observers_hear_of_a_change_before_it_is_made) {
    Scenario s;
    std::vector<Phase> seen;
    const auto observation = s.controller.observe([&] { seen.push_back(s.controller.phase); });
    s.controller.pause();
    ASSERT_FALSE(seen.empty());
    EXPECT_EQ(seen.back(), Phase::counting);
    EXPECT_EQ(s.controller.phase, Phase::paused);
}

namespace {

void letBeatsWait(FakePlatform &platform) {
    platform.loop.beatsWait = true;
}

/// Four hours with everything that time alone leads to.
void liveThrough(Scenario &s) {
    s.settings.postureEnabled = true;
    s.settings.blinkEnabled = true;
    s.settings.postureInterval = 1000;
    s.settings.blinkInterval = 330;
    s.settings.preNotifySeconds = 7;
    s.plan(10, 12, 90);
    s.advance(5000);
    for (Seconds idle = 0; idle < s.settings.idleResetSeconds + 400; ++idle) {
        s.platform.idle.seconds = idle;
        s.advance(1);
    }
    s.platform.idle.seconds = 0;
    s.controller.pause(600);
    s.advance(8400);
}

} // namespace

TEST(BreakController, ticks_that_wait_lead_to_the_same_at_the_same_time) {
    Scenario prompt;
    Scenario waiting(letBeatsWait);
    liveThrough(prompt);
    liveThrough(waiting);
    EXPECT_EQ(waiting.events, prompt.events);
    EXPECT_FALSE(prompt.eventsWith(QStringLiteral("wellness")).isEmpty());
    EXPECT_FALSE(prompt.eventsWith(QStringLiteral("Lunch")).isEmpty());
    waiting.controller.startBreak(BreakKind::micro, BreakController::Initiator::user);
    prompt.controller.startBreak(BreakKind::micro, BreakController::Initiator::user);
    waiting.advance(1);
    prompt.advance(1);
    EXPECT_EQ(waiting.stats.today(), prompt.stats.today());
    EXPECT_LT(waiting.platform.audio.queries, prompt.platform.audio.queries / 3);
}

TEST(BreakController, a_day_ends_on_time_though_ticks_wait) {
    Scenario prompt;
    Scenario waiting(letBeatsWait);
    for (Scenario *s : {&prompt, &waiting}) {
        s->platform.loop.setClock(QStringLiteral("2026-03-02T23:55:00"));
        s->plan(0, 0);
        s->advance(900);
    }
    EXPECT_EQ(prompt.eventsWith(QStringLiteral("start")), QStringList{QStringLiteral("300 start Lunch")});
    EXPECT_EQ(waiting.events, prompt.events);
    const auto lastNight = [](const Scenario &s) {
        return s.stats.on(s.platform.loop.at(QStringLiteral("2026-03-02T12:00")));
    };
    EXPECT_EQ(lastNight(waiting), lastNight(prompt));
}

TEST(BreakController, a_program_that_nobody_tells_of_is_seen_at_the_next_tick_though_ticks_wait) {
    Scenario s(letBeatsWait);
    s.advance(100);
    s.platform.apps.applications.push_back({7, QStringLiteral("com.obsproject.obs-studio")});
    s.platform.apps.mayHaveBegun = true;
    s.advance(1);
    EXPECT_EQ(s.controller.pauseReason.get(), PauseReason::screenSharing);
    EXPECT_EQ(s.stats.today().screenSeconds, 100);
}

} // namespace pavonel::test
