#include "support/Scenario.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// When planned breaks start, on the local clock.
struct LocalStarts : Scenario {
    explicit LocalStarts(const QByteArray &zoneId, const QString &localTime = {}) : Scenario(zoneId) {
        onlyPlannedBreaks();
        if (!localTime.isEmpty())
            platform.loop.setClock(localTime);
        controller.onBreakStart = [this](BreakKind) { starts.append(this->localTime()); };
    }

    QStringList starts;
};

class EveryZone : public testing::TestWithParam<const char *> {};

} // namespace

TEST_P(EveryZone, two_days_with_a_planned_break_go_the_same_way) {
    LocalStarts s(GetParam());
    s.plan(12, 30, 1800);
    for (const auto &evening : {QStringLiteral("2026-03-02T17:00"), QStringLiteral("2026-03-03T17:00")}) {
        s.advanceTo(evening);
        s.platform.loop.setClock(QStringLiteral("2026-03-03T09:00"));
    }
    EXPECT_EQ(s.starts,
              (QStringList{QStringLiteral("2026-03-02 12:30:00"), QStringLiteral("2026-03-03 12:30:00")}));
    const Day workingDay{.planned = 1, .screenSeconds = 8 * 3600 - 1801, .breakSeconds = 1800};
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2026-03-02")), workingDay);
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2026-03-03")), workingDay);
}

TEST_P(EveryZone, a_year_of_noons_falls_on_every_day_of_the_local_calendar) {
    LocalStarts s(GetParam(), QStringLiteral("2028-01-01T11:59:58")); // a leap year
    s.plan(12, 0, 1);
    QStringList expected;
    for (QDate date(2028, 1, 1); date.year() == 2028; date = date.addDays(1)) {
        s.platform.loop.setClock(date.toString(Qt::ISODate) + QStringLiteral("T11:59:58"));
        s.advance(4);
        expected.append(date.toString(Qt::ISODate) + QStringLiteral(" 12:00:00"));
    }
    EXPECT_EQ(expected.size(), 366);
    EXPECT_EQ(s.starts, expected);
}

INSTANTIATE_TEST_SUITE_P(TimeZones, EveryZone,
                         testing::Values("UTC", "Europe/Berlin", "America/New_York", "Asia/Kolkata",
                                         "Australia/Lord_Howe", "America/Sao_Paulo", "Africa/Cairo",
                                         "Asia/Beirut", "Pacific/Apia"),
                         [](const auto &zone) {
                             std::string name = zone.param;
                             std::replace(name.begin(), name.end(), '/', '_');
                             return name;
                         });

TEST(TimeZones, a_time_in_the_daylight_saving_gap_fires_at_the_next_that_exists) {
    LocalStarts s("Europe/Berlin", QStringLiteral("2026-03-29T01:50"));
    s.plan(2, 30);
    EXPECT_EQ(s.controller.next()->remaining, 600);
    s.advance(600);
    EXPECT_EQ(s.starts, QStringList{QStringLiteral("2026-03-29 03:00:00")});
    EXPECT_EQ(s.controller.next()->remaining, 23.5 * 3600);
}

TEST(TimeZones, a_repeated_time_fires_at_the_first_of_two_and_once) {
    LocalStarts s("America/New_York", QStringLiteral("2026-11-01T00:30"));
    s.plan(1, 30);
    s.advance(4 * 3600);
    EXPECT_EQ(s.starts, QStringList{QStringLiteral("2026-11-01 01:30:00")});
    EXPECT_EQ(s.eventsWith(QStringLiteral("heads-up Lunch")).size(), 1);
    EXPECT_EQ(s.events.first(), QStringLiteral("3570 heads-up Lunch"));
}

TEST(TimeZones, a_gap_of_half_an_hour_moves_only_its_own_times) {
    LocalStarts s("Australia/Lord_Howe", QStringLiteral("2026-10-04T01:40"));
    s.plan(2, 15);
    EXPECT_EQ(s.controller.next()->remaining, 1200); // at 02:30, which follows 01:59:59
    s.advance(1200);
    EXPECT_EQ(s.starts, QStringList{QStringLiteral("2026-10-04 02:30:00")});
}

TEST(TimeZones, midnight_that_does_not_exist_fires_at_the_first_time_of_the_day) {
    for (const auto &[zone, evening, first] :
         {std::tuple{"America/Sao_Paulo", "2018-11-03T23:50", "2018-11-04 01:00:00"},
          std::tuple{"Africa/Cairo", "2024-04-25T23:50", "2024-04-26 01:00:00"},
          std::tuple{"Asia/Beirut", "2024-03-30T23:50", "2024-03-31 01:00:00"}}) {
        LocalStarts s(zone, QString::fromLatin1(evening));
        s.plan(0, 15, 60);
        EXPECT_EQ(s.controller.next()->remaining, 600) << zone;
        s.advance(3600);
        EXPECT_EQ(s.starts, QStringList{QString::fromLatin1(first)});
    }
}

TEST(TimeZones, the_day_of_the_statistics_changes_with_the_first_time_of_a_day_without_midnight) {
    Scenario s("America/Sao_Paulo");
    s.platform.loop.setClock(QStringLiteral("2018-11-03T23:59:55"));
    s.advance(10);
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2018-11-03")).screenSeconds, 4);
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2018-11-04")).screenSeconds, 6);
}

TEST(TimeZones, an_evening_that_comes_twice_belongs_to_its_date_both_times) {
    LocalStarts s("America/Sao_Paulo", QStringLiteral("2018-02-17T22:50"));
    s.plan(23, 30, 60);
    s.advance(3 * 3600); // midnight falls back to 23:00
    EXPECT_EQ(s.starts, QStringList{QStringLiteral("2018-02-17 23:30:00")});
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2018-02-17")).screenSeconds, 7800 - 1 - 61);
}

TEST(TimeZones, a_date_that_a_zone_left_out_has_no_planned_break) {
    LocalStarts s("Pacific/Apia", QStringLiteral("2011-12-29T11:00"));
    s.plan(12, 0);
    s.advance(3700);
    EXPECT_EQ(s.controller.next()->remaining, 24 * 3600 - 100);
    s.platform.loop.setClock(QStringLiteral("2011-12-31T11:59:50"));
    s.advance(100);
    s.platform.loop.setClock(QStringLiteral("2012-01-01T11:59:50"));
    s.advance(100);
    EXPECT_EQ(s.starts,
              (QStringList{QStringLiteral("2011-12-29 12:00:00"), QStringLiteral("2011-12-31 12:00:00"),
                           QStringLiteral("2012-01-01 12:00:00")}));
    EXPECT_FALSE(s.stats.days().contains(QStringLiteral("2011-12-30")));
}

TEST(TimeZones, the_leap_day_is_a_day) {
    LocalStarts s("Europe/Berlin", QStringLiteral("2028-02-28T11:00"));
    s.plan(12, 0);
    s.advance(3700);
    EXPECT_EQ(s.controller.next()->remaining, 24 * 3600 - 100);
    s.platform.loop.setClock(QStringLiteral("2028-02-29T11:59:50"));
    s.advance(100);
    s.platform.loop.setClock(QStringLiteral("2028-03-01T11:59:50"));
    s.advance(100);
    EXPECT_EQ(s.starts,
              (QStringList{QStringLiteral("2028-02-28 12:00:00"), QStringLiteral("2028-02-29 12:00:00"),
                           QStringLiteral("2028-03-01 12:00:00")}));
    EXPECT_TRUE(s.stats.days().contains(QStringLiteral("2028-02-29")));
}

TEST(TimeZones, a_change_of_the_zone_moves_planned_breaks_to_the_new_clock) {
    LocalStarts s("Europe/Berlin", QStringLiteral("2026-03-02T11:00"));
    s.plan(12, 0);
    EXPECT_EQ(s.controller.next()->remaining, 3600);
    s.platform.loop.setZone("America/New_York"); // 05:00 there
    EXPECT_EQ(s.controller.next()->remaining, 7 * 3600);
    s.platform.loop.setZone("Asia/Kolkata"); // 15:30 there
    EXPECT_EQ(s.controller.next()->remaining, 20.5 * 3600);
    s.platform.loop.setZone("Asia/Tokyo"); // 19:00 there
    s.advance(60);
    EXPECT_EQ(s.starts, QStringList());
}

TEST(TimeZones, a_change_of_the_zone_starts_no_handled_break_again_on_the_same_date) {
    LocalStarts s("Europe/Berlin", QStringLiteral("2026-03-02T11:59:58"));
    s.plan(12, 0);
    s.advance(120);
    s.platform.loop.setZone("Europe/London"); // 11:01 there, on the same date
    s.advance(2 * 3600);
    EXPECT_EQ(s.starts, QStringList{QStringLiteral("2026-03-02 12:00:00")});
}

TEST(TimeZones, the_day_of_the_statistics_follows_the_zone) {
    Scenario s("UTC");
    s.platform.loop.setClock(QStringLiteral("2026-03-02T22:00"));
    s.advance(10);
    s.platform.loop.setZone("Asia/Tokyo");
    s.advance(10);
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2026-03-02")).screenSeconds, 10);
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2026-03-03")).screenSeconds, 10);
}

// The clock is set

TEST(ClockChanges, counting_follows_ticks_and_not_the_clock) {
    Scenario s;
    s.advance(600);
    s.platform.loop.setClock(QStringLiteral("2026-03-02T20:00"));
    s.advance(300);
    s.platform.loop.setClock(QStringLiteral("2026-03-01T04:00"));
    s.advance(299);
    EXPECT_EQ(s.controller.microElapsed, 1199);
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::breaking);
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2026-03-01")).screenSeconds, 300);
    EXPECT_EQ(s.stats.days().at(QStringLiteral("2026-03-02")).screenSeconds, 900);
}

TEST(ClockChanges, a_break_lasts_its_ticks_whatever_the_clock_says) {
    Scenario s;
    s.controller.startBreak(BreakKind::micro, BreakController::Initiator::user);
    s.advance(10);
    s.platform.loop.setClock(QStringLiteral("2027-01-01T00:00"));
    EXPECT_EQ(s.controller.breakRemaining, 10);
    s.advance(10);
    EXPECT_EQ(s.controller.phase, Phase::counting);
}

TEST(ClockChanges, a_timed_pause_ends_by_the_clock) {
    Scenario s;
    s.controller.pause(900);
    s.platform.loop.setClock(QStringLiteral("2026-03-02T09:15"));
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::counting);
    s.controller.pause(900);
    s.platform.loop.setClock(QStringLiteral("2026-03-02T08:15:01")); // an hour back
    s.advance(4499);
    EXPECT_EQ(s.controller.phase, Phase::paused);
    s.advance(1);
    EXPECT_EQ(s.controller.phase, Phase::counting);
}

TEST(ClockChanges, set_forward_past_a_planned_break_by_less_than_twenty_minutes_it_fires) {
    LocalStarts s("UTC", QStringLiteral("2026-03-02T11:00"));
    s.plan(12, 0);
    s.advance(10);
    s.platform.loop.setClock(QStringLiteral("2026-03-02T12:19"));
    s.advance(1);
    EXPECT_EQ(s.starts, QStringList{QStringLiteral("2026-03-02 12:19:01")});
}

TEST(ClockChanges, set_forward_past_a_planned_break_by_more_it_is_dropped) {
    LocalStarts s("UTC", QStringLiteral("2026-03-02T11:00"));
    s.plan(12, 0);
    s.advance(10);
    s.platform.loop.setClock(QStringLiteral("2026-03-02T12:21"));
    s.advance(10);
    EXPECT_EQ(s.starts, QStringList());
    EXPECT_EQ(s.controller.next()->remaining, 86400 - 1260 - 10);
}

TEST(ClockChanges, set_back_before_a_dropped_occurrence_it_is_offered_again) {
    LocalStarts s("UTC", QStringLiteral("2026-03-02T13:00"));
    s.plan(12, 0);
    EXPECT_EQ(s.controller.next()->remaining, 23 * 3600);
    s.platform.loop.setClock(QStringLiteral("2026-03-02T11:30"));
    EXPECT_EQ(s.controller.next()->remaining, 1800);
}

TEST(ClockChanges, set_back_after_a_planned_break_it_does_not_fire_twice) {
    LocalStarts s("UTC", QStringLiteral("2026-03-02T11:59:50"));
    s.plan(12, 0);
    s.advance(120);
    s.platform.loop.setClock(QStringLiteral("2026-03-02T11:59:50"));
    s.advance(120);
    EXPECT_EQ(s.starts.size(), 1);
}

TEST(ClockChanges, set_to_another_year_planned_breaks_go_on) {
    LocalStarts s("Europe/Berlin", QStringLiteral("2026-03-02T11:59:50"));
    s.plan(12, 0);
    s.advance(120);
    s.platform.loop.setClock(QStringLiteral("1999-12-31T11:59:59"));
    s.advance(120);
    s.platform.loop.setClock(QStringLiteral("2099-12-31T11:59:59"));
    s.advance(120);
    EXPECT_EQ(s.starts,
              (QStringList{QStringLiteral("2026-03-02 12:00:00"), QStringLiteral("1999-12-31 12:00:00"),
                           QStringLiteral("2099-12-31 12:00:00")}));
}

TEST(ClockChanges, a_machine_that_slept_through_the_days_goes_on_today) {
    LocalStarts s("Europe/Berlin", QStringLiteral("2026-03-02T18:00"));
    s.plan(12, 0);
    s.advance(10);
    s.platform.loop.setClock(QStringLiteral("2026-03-05T11:59:59")); // timers stood still
    s.advance(1);
    EXPECT_EQ(s.starts, QStringList{QStringLiteral("2026-03-05 12:00:00")});
}

} // namespace pavonel::test
