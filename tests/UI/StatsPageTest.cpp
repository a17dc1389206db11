#include "UI/Controls/Button.h"
#include "UI/SettingsWindow/Pages/Stats/WeekChart.h"
#include "support/OpenSettings.h"
#include "support/windows.h"

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

using namespace Qt::StringLiterals;

namespace {

Day day(int micro, int long_, int planned, int skipped, Seconds screen, Seconds breaks) {
    Day record;
    record.micro = micro;
    record.long_ = long_;
    record.planned = planned;
    record.skipped = skipped;
    record.screenSeconds = screen;
    record.breakSeconds = breaks;
    return record;
}

class StatsPage : public ::testing::Test {
protected:
    OpenSettings open;
    Stats &stats = open.scenario.stats;

    void show(const Days &days) {
        open.settings.pauseOnFullscreen = false;
        open.scenario.controller.pause({}); // so that nothing is counted meanwhile
        stats.setDays(days);
        open.show(Page::stats);
    }

    Button *button(const QString &name) { return open.widget<Button>(QAccessible::Button, name); }
    bool shows(const QString &text) { return open.texts().contains(text); }
};

/// The clock of the tests stands on 2 March 2026, a Monday.
const Days twoDays{{u"2026-03-01"_s, day(4, 1, 0, 2, 5400, 380)},
                   {u"2026-03-02"_s, day(3, 1, 1, 0, 3600, 360)}};

} // namespace

TEST_F(StatsPage, shows_the_sums_of_the_last_seven_days) {
    Days days = twoDays;
    days[u"2026-02-23"_s] = day(100, 100, 100, 100, 1e5, 1e5); // a week ago
    days[u"2026-02-24"_s] = day(10, 0, 0, 0, 60, 0);
    show(days);
    for (const QString &text : {u"Micro breaks: 17"_s, u"Long breaks: 2"_s, u"Planned: 1"_s, u"Skipped: 2"_s,
                                u"Screen time: 2h 31m"_s, u"On breaks: 12m"_s})
        EXPECT_TRUE(shows(text)) << qPrintable(text) << " in " << qPrintable(open.texts().join(u" | "_s));
}

TEST_F(StatsPage, follows_the_statistics) {
    show(twoDays);
    stats.setToday(day(9, 1, 1, 0, 7200, 360));
    open.settle();
    EXPECT_TRUE(shows(u"Micro breaks: 13"_s));
    EXPECT_TRUE(shows(u"Screen time: 3h 30m"_s));
}

TEST_F(StatsPage, draws_the_days_in_a_chart) {
    show(twoDays);
    auto *chart = open.widget<WeekChart>(QAccessible::Chart, u"Screen time and breaks of the last 7 days"_s);
    ASSERT_NE(chart, nullptr);
    EXPECT_TRUE(chart->accessibleDescription().endsWith(
        u"Sunday: 1h 30m at the screen, 6m on breaks. Monday: 1h at the screen, 6m on breaks."_s));
}

TEST_F(StatsPage, resets_everything_at_once_and_on_disk) {
    show(twoDays);
    const int saves = open.platform.fakeDefaults.saves;
    click(*button(u"Reset stats"_s));
    EXPECT_TRUE(stats.days().empty());
    EXPECT_EQ(open.platform.fakeDefaults.value(Stats::key), StoredValue(QByteArray("{}")));
    EXPECT_GT(open.platform.fakeDefaults.saves, saves);
    open.settle();
    EXPECT_TRUE(shows(u"Micro breaks: 0"_s));
}

TEST_F(StatsPage, brings_back_what_a_reset_forgot_and_keeps_what_came_since) {
    show(twoDays);
    EXPECT_EQ(button(u"Undo the reset"_s), nullptr) << "before there is anything to undo";
    click(*button(u"Reset stats"_s));
    stats.setToday(day(1, 0, 0, 0, 60, 20));
    click(*button(u"Reset stats"_s));
    stats.setToday(day(1, 0, 0, 0, 60, 20));
    click(*button(u"Undo the reset"_s));
    EXPECT_EQ(stats.days().at(u"2026-03-01"_s), twoDays.at(u"2026-03-01"_s));
    EXPECT_EQ(stats.today(), day(5, 1, 1, 0, 3720, 400));
    EXPECT_EQ(button(u"Undo the reset"_s), nullptr);
}

TEST_F(StatsPage, has_nothing_to_undo_where_there_was_nothing) {
    show({});
    click(*button(u"Reset stats"_s));
    EXPECT_EQ(button(u"Undo the reset"_s), nullptr);
}

TEST_F(StatsPage, shows_what_makes_no_sense_without_harm) {
    constexpr Seconds notANumber = std::numeric_limits<Seconds>::quiet_NaN();
    show({{u"2026-03-01"_s, day(-5, std::numeric_limits<int>::max(), 0, 0, 1e300, notANumber)},
          {u"2026-03-02"_s, day(2, std::numeric_limits<int>::max(), 0, 0, -1e300, -1)},
          {u"nonsense"_s, day(9, 9, 9, 9, 9, 9)}});
    EXPECT_TRUE(shows(u"Micro breaks: 2"_s));
    EXPECT_TRUE(shows(u"Long breaks: 2147483647"_s));
    EXPECT_TRUE(shows(u"On breaks: 0s"_s));
    EXPECT_FALSE(open.window()->grab().isNull());
}

} // namespace pavonel::test
