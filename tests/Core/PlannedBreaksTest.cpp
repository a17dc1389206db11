#include "support/Scenario.h"

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// Only planned breaks, at 08:00 of a Monday.
struct PlannedBreaksOnly : Scenario {
    explicit PlannedBreaksOnly(const QByteArray &zoneId = "UTC") : Scenario(zoneId) {
        onlyPlannedBreaks();
        platform.loop.setClock(QStringLiteral("2026-03-02T08:00"));
    }

    Seconds remaining() const { return controller.next().value().remaining; }
};

constexpr Seconds day = 86400;

} // namespace

TEST(PlannedBreaks, a_record_without_weekdays_never_fires_and_is_never_offered) {
    PlannedBreaksOnly s;
    s.plan(8, 1);
    PlannedBreaks records = s.settings.plannedBreaks;
    records[0].weekdays.clear();
    s.settings.plannedBreaks = records;
    EXPECT_EQ(s.controller.next(), std::nullopt);
    s.advance(300);
    EXPECT_EQ(s.events, QStringList());
}

TEST(PlannedBreaks, a_record_that_is_switched_off_is_passed_over) {
    PlannedBreaksOnly s;
    s.plan(8, 1);
    PlannedBreaks records = s.settings.plannedBreaks;
    records[0].enabled = false;
    s.settings.plannedBreaks = records;
    EXPECT_EQ(s.controller.next(), std::nullopt);
}

TEST(PlannedBreaks, a_planned_break_is_announced_and_starts_with_its_own_title_and_length) {
    PlannedBreaksOnly s;
    s.plan(9, 0, 600, QStringLiteral("Walk"));
    s.advance(3600);
    EXPECT_EQ(s.events,
              (QStringList{QStringLiteral("3570 heads-up Walk"), QStringLiteral("3600 heads-up withdrawn"),
                           QStringLiteral("3600 start Walk")}));
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::planned);
    EXPECT_EQ(s.controller.breakTotal, 600);
    s.advance(600);
    EXPECT_EQ(s.stats.today().planned, 1);
}

TEST(PlannedBreaks, taken_today_at_noon_tomorrows_noon_is_offered) {
    PlannedBreaksOnly s;
    s.plan(12, 0);
    s.advance(4 * 3600);
    EXPECT_EQ(s.controller.phase, Phase::breaking);
    EXPECT_EQ(s.remaining(), day);
}

TEST(PlannedBreaks, paused_through_noon_and_resumed_at_a_quarter_past_it_fires_at_once) {
    PlannedBreaksOnly s;
    s.plan(12, 0);
    s.controller.pause();
    s.advanceTo(QStringLiteral("2026-03-02T12:15"));
    s.controller.togglePause();
    EXPECT_EQ(s.remaining(), 0);
    s.advance(1);
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::planned);
}

TEST(PlannedBreaks, resumed_at_25_past_todays_occurrence_is_dropped) {
    PlannedBreaksOnly s;
    s.plan(12, 0);
    s.controller.pause();
    s.advanceTo(QStringLiteral("2026-03-02T12:25"));
    s.controller.togglePause();
    EXPECT_EQ(s.remaining(), day - 1500);
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::counting);
}

TEST(PlannedBreaks, twenty_minutes_late_is_the_last_second_at_which_it_fires) {
    for (const Seconds late : {1200, 1201}) {
        PlannedBreaksOnly s;
        s.plan(12, 0);
        s.controller.pause();
        s.advance(4 * 3600 + late - 1);
        s.controller.togglePause();
        s.advance(1);
        EXPECT_EQ(s.controller.phase, late == 1200 ? Phase::breaking : Phase::counting);
    }
}

TEST(PlannedBreaks, postponed_by_five_minutes_two_minutes_before_it_fires_three_minutes_past) {
    PlannedBreaksOnly s;
    s.plan(12, 0);
    s.advanceTo(QStringLiteral("2026-03-02T11:58"));
    s.controller.postpone(300);
    EXPECT_EQ(s.remaining(), 300);
    s.advanceTo(QStringLiteral("2026-03-02T12:02:59"));
    EXPECT_NE(s.controller.phase, Phase::breaking);
    s.advance(1);
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::planned);
    EXPECT_EQ(s.remaining(), day - 180); // the postponement was today's alone
}

TEST(PlannedBreaks, a_postponement_that_ends_before_the_time_changes_nothing) {
    PlannedBreaksOnly s;
    s.plan(12, 0);
    s.advanceTo(QStringLiteral("2026-03-02T11:50"));
    s.controller.postpone(60);
    EXPECT_EQ(s.remaining(), 600);
}

TEST(PlannedBreaks, a_postponed_break_has_its_twenty_minutes_from_the_later_time) {
    PlannedBreaksOnly s;
    s.plan(12, 0);
    s.advanceTo(QStringLiteral("2026-03-02T11:59:50"));
    s.controller.postpone(300); // to 12:04:50
    s.controller.pause();
    s.advanceTo(QStringLiteral("2026-03-02T12:24:00"));
    s.controller.togglePause();
    s.advance(1);
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::planned);
}

TEST(PlannedBreaks, skipped_it_is_done_for_its_day) {
    PlannedBreaksOnly s;
    s.plan(12, 0);
    s.advanceTo(QStringLiteral("2026-03-02T11:59:50"));
    s.controller.skip();
    s.advance(60);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.remaining(), day - 50);
    EXPECT_EQ(s.stats.today().skipped, 1);
}

TEST(PlannedBreaks, of_two_at_the_same_minute_the_earlier_in_the_list_fires_and_the_other_follows) {
    PlannedBreaksOnly s;
    s.plan(12, 0, 600, QStringLiteral("First"));
    s.plan(12, 0, 600, QStringLiteral("Second"));
    s.advanceTo(QStringLiteral("2026-03-02T12:00"));
    EXPECT_EQ(s.controller.breakTitle, QStringLiteral("First"));
    s.advance(600);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    s.advance(1);
    EXPECT_EQ(s.controller.breakTitle, QStringLiteral("Second"));
    s.advance(600);
    EXPECT_EQ(s.stats.today().planned, 2);
}

TEST(PlannedBreaks, after_a_first_break_of_over_twenty_minutes_the_second_is_dropped_for_the_day) {
    PlannedBreaksOnly s;
    s.plan(12, 0, 1200, QStringLiteral("First"));
    s.plan(12, 0, 600, QStringLiteral("Second"));
    s.advanceTo(QStringLiteral("2026-03-02T12:20"));
    EXPECT_EQ(s.controller.phase, Phase::counting);
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    EXPECT_EQ(s.remaining(), day - 1201);
    EXPECT_EQ(s.stats.today().planned, 1);
}

TEST(PlannedBreaks, a_record_fires_on_its_weekdays_alone) {
    PlannedBreaksOnly s; // a Monday
    s.plan(12, 0);
    PlannedBreaks records = s.settings.plannedBreaks;
    for (const auto &[weekday, daysAway] :
         {std::pair{2, 0}, {3, 1}, {4, 2}, {5, 3}, {6, 4}, {7, 5}, {1, 6}}) {
        records[0].weekdays = {weekday};
        s.settings.plannedBreaks = records;
        EXPECT_EQ(s.remaining(), 4 * 3600 + daysAway * day) << "weekday " << weekday;
    }
}

TEST(PlannedBreaks, the_only_weekday_is_today_and_its_time_has_passed_so_next_week_is_offered) {
    PlannedBreaksOnly s;
    s.plan(7, 0);
    PlannedBreaks records = s.settings.plannedBreaks;
    records[0].weekdays = {2};
    s.settings.plannedBreaks = records;
    EXPECT_EQ(s.remaining(), 7 * day - 3600);
}

TEST(PlannedBreaks, a_time_that_no_clock_shows_never_fires) {
    PlannedBreaksOnly s;
    s.plan(24, 0);
    s.plan(12, 60);
    s.plan(-1, 0);
    EXPECT_EQ(s.controller.next(), std::nullopt);
}

TEST(PlannedBreaks, a_record_edited_to_a_later_time_after_its_break_waits_for_tomorrow) {
    PlannedBreaksOnly s;
    s.plan(9, 0);
    s.advance(3600 + 60);
    PlannedBreaks records = s.settings.plannedBreaks;
    records[0].hour = 15;
    s.settings.plannedBreaks = records;
    EXPECT_EQ(s.remaining(), day + 6 * 3600 - 60); // the record is done for its day
}

TEST(PlannedBreaks, after_a_restart_no_occurrence_is_handled_or_put_off) {
    FakePlatform platform;
    Settings settings(platform.fakeDefaults, platform.loop);
    Stats stats(platform.fakeDefaults, platform.loop);
    PlannedBreak record;
    record.hour = 9;
    record.minute = 0;
    record.duration = 60;
    settings.plannedBreaks = PlannedBreaks{record};
    platform.loop.setClock(QStringLiteral("2026-03-02T08:59:50"));
    for (int start = 0; start < 2; ++start) {
        BreakController controller(servicesOf(platform), settings, stats);
        controller.start();
        platform.loop.advance(11);
        EXPECT_EQ(controller.currentBreak.get(), BreakKind::planned) << "start " << start;
        platform.loop.advance(120);
    }
    EXPECT_EQ(stats.today().planned, 2);
}

TEST(PlannedBreaks, it_waits_for_an_idle_user_and_is_dropped_after_twenty_minutes) {
    PlannedBreaksOnly s;
    s.plan(12, 0);
    s.advanceTo(QStringLiteral("2026-03-02T11:59"));
    s.platform.idle.seconds = 60;
    s.advance(60 + 600);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    s.platform.idle.seconds = 0;
    s.advance(1);
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::planned);
}

TEST(PlannedBreaks, a_running_break_is_not_replaced_and_the_planned_one_follows) {
    PlannedBreaksOnly s;
    s.plan(8, 1);
    s.controller.startBreak(BreakKind::long_, BreakController::Initiator::user);
    s.advance(300);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    s.advance(1);
    EXPECT_EQ(s.controller.currentBreak.get(), BreakKind::planned);
}

TEST(PlannedBreaks, a_change_of_the_list_is_live_at_once) {
    PlannedBreaksOnly s;
    s.plan(12, 0);
    EXPECT_EQ(s.remaining(), 4 * 3600);
    s.plan(10, 0);
    EXPECT_EQ(s.remaining(), 2 * 3600);
    s.settings.plannedBreaks = PlannedBreaks{};
    EXPECT_EQ(s.controller.next(), std::nullopt);
}

// Wellness reminders

TEST(Wellness, the_posture_reminder_comes_after_every_interval_of_counted_time) {
    Scenario s;
    s.settings.microEnabled = false;
    s.settings.longEnabled = false;
    s.advance(5400);
    const QString what =
        QStringLiteral(" wellness Check your posture — shoulders back, screen at eye level. [figure.stand]");
    EXPECT_EQ(s.events, (QStringList{QStringLiteral("1800") + what, QStringLiteral("3600") + what,
                                     QStringLiteral("5400") + what}));
}

TEST(Wellness, both_reminders_can_fall_on_one_tick_posture_first) {
    Scenario s;
    s.settings.blinkEnabled = true;
    s.settings.postureInterval = 600;
    s.advance(600);
    ASSERT_EQ(s.events.size(), 2);
    EXPECT_TRUE(s.events[0].contains(QStringLiteral("posture")));
    EXPECT_EQ(s.events[1], QStringLiteral("600 wellness Blink slowly a few times. [eye]"));
}

TEST(Wellness, a_reminder_that_is_switched_off_keeps_its_count) {
    Scenario s;
    s.settings.postureInterval = 100;
    s.advance(60);
    s.settings.postureEnabled = false;
    s.advance(500);
    s.settings.postureEnabled = true;
    s.advance(39);
    EXPECT_EQ(s.events, QStringList());
    s.advance(1);
    EXPECT_EQ(s.events.size(), 1);
}

TEST(Wellness, only_counted_seconds_count) {
    Scenario s;
    s.onlyPlannedBreaks();
    s.settings.postureEnabled = true;
    s.settings.postureInterval = 100;
    s.advance(50);
    s.controller.pause();
    s.advance(50);
    s.controller.togglePause();
    s.platform.audio.input = true;
    s.advance(50);
    s.platform.audio.input = false;
    s.platform.idle.seconds = 60;
    s.advance(50);
    s.platform.idle.seconds = 0;
    s.controller.startBreak(BreakKind::micro, BreakController::Initiator::user);
    s.advance(20);
    s.advance(49);
    EXPECT_EQ(s.eventsWith(QStringLiteral("wellness")), QStringList());
    s.advance(1);
    EXPECT_EQ(s.eventsWith(QStringLiteral("wellness")).size(), 1);
}

TEST(Wellness, without_a_listener_the_count_starts_over_all_the_same) {
    Scenario s;
    s.settings.postureInterval = 100;
    const auto listener = std::exchange(s.controller.onWellness, nullptr);
    s.advance(100);
    s.controller.onWellness = listener;
    s.advance(99);
    EXPECT_EQ(s.events, QStringList());
    s.advance(1);
    EXPECT_EQ(s.events.size(), 1);
}

} // namespace pavonel::test
