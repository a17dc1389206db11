#include "support/Scenario.h"

#include <functional>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {
using Initiator = BreakController::Initiator;
using Ending = BreakController::Ending;
} // namespace

TEST(BreakLifecycle, starting_while_a_break_runs_changes_nothing) {
    Scenario s;
    s.controller.startBreak(BreakKind::long_, Initiator::user);
    s.advance(10);
    const QString message = s.controller.breakMessage;
    s.controller.startBreak(BreakKind::micro, Initiator::user, 5, QStringLiteral("Other"));
    EXPECT_EQ(s.controller.breakTitle, QStringLiteral("Long break"));
    EXPECT_EQ(s.controller.breakMessage, message);
    EXPECT_EQ(s.controller.breakRemaining, 290);
    EXPECT_EQ(s.controller.breakTotal, 300);
    EXPECT_EQ(s.eventsWith(QStringLiteral("start")).size(), 1);
    EXPECT_EQ(s.relay.told.size(), 1);
}

/// Hot keys and the bus do their work when the loop comes to it, in whichever phase that is.
TEST(BreakLifecycle, whatever_is_asked_for_late_leaves_every_phase_whole) {
    Scenario s;
    BreakController &c = s.controller;
    const std::vector<std::pair<const char *, std::function<void()>>> operations{
        {"micro break", [&c] { c.startBreak(BreakKind::micro, Initiator::user); }},
        {"long break", [&c] { c.startBreak(BreakKind::long_, Initiator::user); }},
        {"skip", [&c] { c.skip(); }},
        {"postpone", [&c] { c.postpone(60); }},
        {"pause", [&c] { c.pause(900); }},
        {"toggle pause", [&c] { c.togglePause(); }},
        {"resume", [&c] { c.resume(); }},
        {"cut short", [&c] { c.endBreak(Ending::cutShort); }},
        {"dismiss", [&c] { c.dismissHeadsUp(); }},
    };
    for (const auto &[name, operation] : operations) {
        for (const Phase phase : everyPhase) {
            s.enter(phase);
            operation();
            EXPECT_TRUE(s.isWhole()) << name << " in phase " << static_cast<int>(phase);
        }
    }
}

TEST(BreakLifecycle, resuming_without_a_pause_changes_nothing) {
    Scenario s;
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.controller.resume();
    EXPECT_EQ(s.controller.phase, Phase::breaking);
    s.advance(20);
    EXPECT_EQ(s.stats.today().micro, 1);
    s.advance(1175);
    ASSERT_EQ(s.controller.phase, Phase::headsUp);
    s.controller.resume();
    EXPECT_EQ(s.controller.phase, Phase::headsUp);
}

TEST(BreakLifecycle, a_break_of_no_length_ends_completed_on_the_next_tick) {
    Scenario s;
    s.controller.startBreak(BreakKind::micro, Initiator::user, 0);
    EXPECT_EQ(s.controller.phase, Phase::breaking);
    EXPECT_EQ(s.controller.breakTotal, 0);
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.stats.today(), (Day{.micro = 1, .breakSeconds = 1}));
}

TEST(BreakLifecycle, a_length_with_a_fraction_ends_on_the_tick_that_reaches_it) {
    Scenario s;
    s.controller.startBreak(BreakKind::micro, Initiator::user, 2.5);
    s.advance(2);
    EXPECT_EQ(s.controller.breakRemaining, 0.5);
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.stats.today().breakSeconds, 3);
}

TEST(BreakLifecycle, ending_without_a_break_changes_and_records_nothing) {
    Scenario s;
    s.settings.onBreakEndScript = QStringLiteral("beep");
    s.advance(100);
    s.controller.endBreak(Ending::completed);
    s.controller.endBreak(Ending::cutShort);
    EXPECT_EQ(s.controller.microElapsed, 100);
    EXPECT_EQ(s.stats.today(), Day{.screenSeconds = 100});
    EXPECT_EQ(s.events, QStringList());
    EXPECT_TRUE(s.platform.launcher.launches.empty());
    EXPECT_EQ(s.relay.told, QStringList());
}

TEST(BreakLifecycle, a_completed_micro_break_keeps_the_long_counter) {
    Scenario s;
    s.advance(700);
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.advance(20);
    EXPECT_EQ(s.controller.microElapsed, 0);
    EXPECT_EQ(s.controller.longElapsed, 700);
    EXPECT_EQ(s.stats.today().micro, 1);
}

TEST(BreakLifecycle, a_completed_long_or_planned_break_resets_both_counters) {
    Scenario s;
    s.advance(700);
    s.controller.startBreak(BreakKind::long_, Initiator::user);
    s.advance(300);
    EXPECT_EQ(s.controller.microElapsed, 0);
    EXPECT_EQ(s.controller.longElapsed, 0);
    EXPECT_EQ(s.stats.today().long_, 1);
    s.advance(700);
    s.controller.startBreak(BreakKind::planned, Initiator::user, 60);
    s.advance(60);
    EXPECT_EQ(s.controller.microElapsed, 0);
    EXPECT_EQ(s.controller.longElapsed, 0);
    EXPECT_EQ(s.stats.today().planned, 1);
}

TEST(BreakLifecycle, the_length_defaults_by_kind_and_a_planned_break_to_that_of_a_long_one) {
    Scenario s;
    s.settings.microDuration = 7;
    s.settings.longDuration = 77;
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    EXPECT_EQ(s.controller.breakTotal, 7);
    s.controller.skip();
    s.controller.startBreak(BreakKind::long_, Initiator::user);
    EXPECT_EQ(s.controller.breakTotal, 77);
    s.controller.skip();
    s.controller.startBreak(BreakKind::planned, Initiator::user);
    EXPECT_EQ(s.controller.breakTotal, 77);
    EXPECT_EQ(s.controller.breakTitle, QStringLiteral("Planned break"));
}

TEST(BreakLifecycle, a_break_by_the_user_runs_like_one_by_the_schedule) {
    Scenario byUser;
    byUser.controller.startBreak(BreakKind::micro, Initiator::user);
    byUser.advance(20);
    Scenario bySchedule;
    bySchedule.controller.startBreak(BreakKind::micro, Initiator::schedule);
    bySchedule.advance(20);
    EXPECT_EQ(byUser.events, bySchedule.events);
    EXPECT_EQ(byUser.stats.today(), bySchedule.stats.today());
    EXPECT_EQ(byUser.relay.told, bySchedule.relay.told);
}

TEST(BreakLifecycle, starting_a_break_withdraws_the_heads_up_first) {
    Scenario s;
    s.advance(1180);
    s.controller.startBreak(BreakKind::long_, Initiator::user);
    EXPECT_EQ(s.events.mid(1), (QStringList{QStringLiteral("1180 heads-up withdrawn"),
                                            QStringLiteral("1180 start Long break")}));
}

TEST(BreakLifecycle, everything_stands_when_the_start_is_announced) {
    Scenario s;
    s.settings.onBreakStartScript = QStringLiteral("say hello");
    bool heard = false;
    s.controller.onBreakStart = [&](BreakKind kind) {
        heard = true;
        EXPECT_EQ(kind, BreakKind::planned);
        EXPECT_EQ(s.controller.phase, Phase::breaking);
        EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::planned);
        EXPECT_EQ(s.controller.breakTitle, QStringLiteral("Walk"));
        EXPECT_EQ(s.controller.breakTotal, 90);
        EXPECT_EQ(s.controller.breakRemaining, 90);
        EXPECT_FALSE(s.controller.breakMessage.get().isEmpty());
        EXPECT_EQ(s.platform.fakeSounds.played.size(), 1);
        EXPECT_EQ(s.platform.launcher.launches.size(), 1U);
        EXPECT_EQ(s.relay.told.size(), 1);
    };
    s.controller.startBreak(BreakKind::planned, Initiator::user, 90, QStringLiteral("Walk"));
    EXPECT_TRUE(heard);
}

TEST(BreakLifecycle, everything_stands_when_the_end_is_announced) {
    Scenario s;
    s.settings.onBreakEndScript = QStringLiteral("say bye");
    bool heard = false;
    s.controller.onBreakEnd = [&] {
        heard = true;
        EXPECT_EQ(s.controller.phase, Phase::counting);
        EXPECT_EQ(s.controller.currentBreak.get(), std::nullopt);
        EXPECT_EQ(s.controller.microElapsed, 0);
        EXPECT_EQ(s.stats.today().micro, 1);
        EXPECT_EQ(s.platform.fakeSounds.played.last(), QStringLiteral("Glass"));
        EXPECT_EQ(s.platform.launcher.launches.size(), 1U);
        EXPECT_EQ(s.relay.told.last(), QStringLiteral("end"));
    };
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.advance(20);
    EXPECT_TRUE(heard);
}

TEST(BreakLifecycle, an_empty_message_list_yields_the_fallback) {
    Scenario s;
    s.settings.messages = QStringList();
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    EXPECT_EQ(s.controller.breakMessage, QStringLiteral("Look away from the screen."));
}

TEST(BreakLifecycle, every_message_is_picked_about_as_often) {
    Scenario s;
    const QStringList messages{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")};
    s.settings.messages = messages;
    std::map<QString, int> picked;
    for (int i = 0; i < 3000; ++i) {
        s.controller.startBreak(BreakKind::micro, Initiator::user);
        ++picked[s.controller.breakMessage];
        s.controller.skip();
    }
    ASSERT_EQ(picked.size(), 3U);
    for (const auto &[message, times] : picked)
        EXPECT_NEAR(times, 1000, 200) << message.toStdString(); // over seven standard deviations
}

TEST(BreakLifecycle, a_break_cut_short_has_no_end_sound) {
    Scenario s;
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.controller.endBreak(Ending::cutShort);
    EXPECT_EQ(s.platform.fakeSounds.played, QStringList{QStringLiteral("Submarine")});
    EXPECT_EQ(s.stats.today(), Day{.skipped = 1});
}

TEST(BreakLifecycle, with_sounds_off_none_is_played) {
    Scenario s;
    s.settings.soundEnabled = false;
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.advance(20);
    EXPECT_EQ(s.platform.fakeSounds.played, QStringList());
}

TEST(BreakLifecycle, the_sounds_are_those_of_the_settings) {
    Scenario s;
    s.settings.startSound = QStringLiteral("None");
    s.settings.endSound = QStringLiteral("Ping");
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.advance(20);
    EXPECT_EQ(s.platform.fakeSounds.played, QStringList{QStringLiteral("Ping")});
}

TEST(BreakLifecycle, scripts_run_at_start_and_at_both_kinds_of_end) {
    Scenario s;
    s.settings.onBreakStartScript = QStringLiteral("start it");
    s.settings.onBreakEndScript = QStringLiteral("end it");
    const auto inlineScript = [](const char *text) {
        return FakeProcessLauncher::Launch{QStringLiteral("/usr/bin/osascript"),
                                           {QStringLiteral("-e"), QString::fromLatin1(text)}};
    };
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.controller.skip();
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.advance(20);
    EXPECT_EQ(s.platform.launcher.launches, (std::vector{inlineScript("start it"), inlineScript("end it"),
                                                         inlineScript("start it"), inlineScript("end it")}));
}

TEST(BreakLifecycle, a_script_that_cannot_be_started_touches_nothing) {
    Scenario s;
    s.settings.onBreakStartScript = QStringLiteral("beep");
    s.platform.launcher.succeeds = false;
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.advance(20);
    EXPECT_EQ(s.stats.today().micro, 1);
}

TEST(BreakLifecycle, a_phone_hears_of_every_start_and_end) {
    Scenario s;
    s.controller.startBreak(BreakKind::planned, Initiator::schedule, 90, QStringLiteral("Lunch"));
    s.controller.skip();
    s.controller.startBreak(BreakKind::long_, Initiator::user);
    s.advance(300);
    EXPECT_EQ(s.relay.told,
              (QStringList{QStringLiteral("start Planned break \"Lunch\" 90"), QStringLiteral("end"),
                           QStringLiteral("start Long break \"Long break\" 300"), QStringLiteral("end")}));
}

// Skip

TEST(BreakLifecycle, a_running_break_is_cut_short_whatever_the_skip_setting) {
    Scenario s;
    s.settings.allowSkip = false;
    s.advance(1205);
    s.controller.skip();
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.stats.today().skipped, 1);
    EXPECT_EQ(s.stats.today().micro, 0);
    EXPECT_EQ(s.controller.microElapsed, 0);
}

TEST(BreakLifecycle, without_skip_permission_the_coming_break_cannot_be_skipped) {
    Scenario s;
    s.settings.allowSkip = false;
    s.advance(1180);
    s.controller.skip();
    EXPECT_EQ(s.controller.phase, Phase::headsUp);
    EXPECT_EQ(s.stats.today().skipped, 0);
}

TEST(BreakLifecycle, in_strict_mode_neither_skip_nor_postpone_does_anything) {
    Scenario s;
    s.settings.strictMode = true;
    s.advance(1180);
    s.controller.skip();
    s.controller.postpone(60);
    EXPECT_EQ(s.controller.phase, Phase::headsUp);
    s.advance(25);
    s.controller.skip();
    EXPECT_EQ(s.controller.phase, Phase::breaking);
    s.advance(15);
    EXPECT_EQ(s.stats.today().micro, 1);
    EXPECT_EQ(s.stats.today().skipped, 0);
}

TEST(BreakLifecycle, in_strict_mode_a_pause_still_ends_a_break_which_counts_as_skipped) {
    Scenario s;
    s.settings.strictMode = true;
    s.advance(1205);
    s.controller.pause(900);
    EXPECT_EQ(s.controller.phase, Phase::paused);
    EXPECT_EQ(s.stats.today().skipped, 1);
    EXPECT_EQ(s.events.last(), QStringLiteral("1205 end"));
}

TEST(BreakLifecycle, skipping_a_coming_micro_break_resets_its_counter_alone) {
    Scenario s;
    s.advance(1180);
    s.controller.skip();
    EXPECT_EQ(s.controller.microElapsed, 0);
    EXPECT_EQ(s.controller.longElapsed, 1180);
    EXPECT_EQ(s.stats.today().skipped, 1);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.events.last(), QStringLiteral("1180 heads-up withdrawn"));
}

TEST(BreakLifecycle, skipping_a_coming_long_break_resets_both_counters) {
    Scenario s;
    s.settings.longInterval = 1000;
    s.advance(980);
    s.controller.skip();
    EXPECT_EQ(s.controller.microElapsed, 0);
    EXPECT_EQ(s.controller.longElapsed, 0);
    EXPECT_EQ(s.stats.today().skipped, 1);
}

TEST(BreakLifecycle, skipping_a_coming_planned_break_does_it_for_the_day_and_leaves_the_counters) {
    Scenario s;
    s.plan(9, 10);
    s.advance(580);
    s.controller.skip();
    EXPECT_EQ(s.controller.microElapsed, 580);
    EXPECT_EQ(s.stats.today().skipped, 1);
    s.onlyPlannedBreaks();
    EXPECT_EQ(s.controller.next()->remaining, 86400 + 20);
}

TEST(BreakLifecycle, with_nothing_coming_skip_and_postpone_do_nothing) {
    Scenario s;
    s.onlyPlannedBreaks();
    s.advance(100);
    s.controller.skip();
    s.controller.postpone(60);
    EXPECT_EQ(s.stats.today(), Day{.screenSeconds = 100});
    EXPECT_EQ(s.controller.microElapsed, 100);
}

// Postpone

TEST(BreakLifecycle, a_postponed_micro_break_comes_back_that_much_later) {
    Scenario s;
    s.advance(1190);
    s.controller.postpone(60);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    s.advance(69);
    EXPECT_EQ(s.controller.phase, Phase::headsUp);
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::breaking);
    EXPECT_EQ(
        s.events,
        (QStringList{QStringLiteral("1170 heads-up Micro break"), QStringLiteral("1190 heads-up withdrawn"),
                     QStringLiteral("1230 heads-up Micro break"), QStringLiteral("1260 heads-up withdrawn"),
                     QStringLiteral("1260 start Micro break")}));
}

TEST(BreakLifecycle, a_postponed_long_break_moves_the_long_counter_alone) {
    Scenario s;
    s.settings.longInterval = 1000;
    s.advance(980);
    s.controller.postpone(300);
    EXPECT_EQ(s.controller.longElapsed, 680);
    EXPECT_EQ(s.controller.microElapsed, 980);
}

TEST(BreakLifecycle, postponing_by_more_than_has_elapsed_stops_at_zero) {
    Scenario s;
    s.advance(120);
    s.controller.postpone(300);
    EXPECT_EQ(s.controller.microElapsed, 0);
}

TEST(BreakLifecycle, postponing_is_allowed_without_limit) {
    Scenario s;
    s.settings.longEnabled = false;
    for (int i = 0; i < 50; ++i) {
        s.advance(i == 0 ? 1199 : 60);
        s.controller.postpone(60);
    }
    EXPECT_EQ(s.eventsWith(QStringLiteral("start")), QStringList());
    EXPECT_EQ(s.stats.today().skipped, 0);
}

TEST(BreakLifecycle, without_postpone_permission_nothing_moves) {
    Scenario s;
    s.settings.allowPostpone = false;
    s.advance(1180);
    s.controller.postpone(60);
    EXPECT_EQ(s.controller.microElapsed, 1180);
    EXPECT_EQ(s.controller.phase, Phase::headsUp);
}

// Pause

TEST(BreakLifecycle, a_pause_withdraws_the_heads_up_and_keeps_the_counters) {
    Scenario s;
    s.advance(1180);
    s.controller.pause();
    EXPECT_EQ(s.controller.phase, Phase::paused);
    EXPECT_EQ(s.controller.microElapsed, 1180);
    EXPECT_EQ(s.events.last(), QStringLiteral("1180 heads-up withdrawn"));
}

TEST(BreakLifecycle, a_pause_during_a_break_counts_it_as_skipped) {
    Scenario s;
    s.advance(1205);
    s.controller.togglePause();
    EXPECT_EQ(s.controller.phase, Phase::paused);
    EXPECT_EQ(s.controller.currentBreak.get(), std::nullopt);
    EXPECT_EQ(s.stats.today().skipped, 1);
}

TEST(BreakLifecycle, toggling_pauses_indefinitely_and_resumes_where_it_was) {
    Scenario s;
    s.advance(300);
    s.controller.togglePause();
    EXPECT_EQ(s.controller.phase, Phase::paused);
    EXPECT_EQ(s.controller.pauseUntil.get(), std::nullopt);
    s.advance(5000);
    s.controller.togglePause();
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.controller.microElapsed, 300);
}

TEST(BreakLifecycle, resuming_a_timed_pause_forgets_its_end) {
    Scenario s;
    s.controller.pause(900);
    s.controller.togglePause();
    EXPECT_EQ(s.controller.pauseUntil.get(), std::nullopt);
    s.controller.pause();
    s.advance(2000);
    EXPECT_EQ(s.controller.phase, Phase::paused);
}

TEST(BreakLifecycle, a_second_pause_replaces_the_first) {
    Scenario s;
    s.controller.pause(900);
    s.controller.pause(3600);
    s.advance(900);
    EXPECT_EQ(s.controller.phase, Phase::paused);
    s.controller.pause(); // until resumed
    s.advance(4000);
    EXPECT_EQ(s.controller.phase, Phase::paused);
}

TEST(BreakLifecycle, a_break_can_be_taken_during_a_pause_and_leads_back_to_counting) {
    Scenario s;
    s.controller.pause();
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.advance(20);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.stats.today().micro, 1);
}

TEST(BreakLifecycle, two_breaks_back_to_back_both_count) {
    Scenario s;
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.advance(20);
    s.controller.startBreak(BreakKind::long_, Initiator::user);
    s.advance(300);
    EXPECT_EQ(s.stats.today(), (Day{.micro = 1, .long_ = 1, .breakSeconds = 320}));
}

TEST(BreakLifecycle, a_break_over_midnight_counts_its_seconds_on_both_days_and_itself_on_the_second) {
    Scenario s;
    s.platform.loop.setClock(QStringLiteral("2026-03-02T23:59:50"));
    s.controller.startBreak(BreakKind::micro, Initiator::user);
    s.advance(20);
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2026-03-02")), Day{.breakSeconds = 9});
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2026-03-03")), (Day{.micro = 1, .breakSeconds = 11}));
}

} // namespace pavonel::test
