#include "Core/Stats.h"

#include "support/FakePlatform.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// At noon of Monday, 9 March 2026.
struct StatsFixture {
    StatsFixture() { platform.loop.setClock(QStringLiteral("2026-03-09T12:00")); }

    FakePlatform platform;

    Stats loaded() { return Stats(platform.fakeDefaults, platform.loop); }
    void store(const QByteArray &json) { platform.fakeDefaults.values[Stats::key] = json; }
    QJsonObject stored() {
        const auto value = platform.fakeDefaults.value(Stats::key);
        return QJsonDocument::fromJson(std::get<QByteArray>(value.value())).object();
    }

    /// As many days as asked for, the last of them today.
    Days daysUpToToday(int count) {
        Days days;
        for (int offset = 0; offset < count; ++offset)
            days.emplace(dayKey(QDate(2026, 3, 9).addDays(-offset)), Day{.micro = offset});
        return days;
    }
};

const Day someDay{1, 2, 3, 4, 5.5, 6.25};

} // namespace

TEST(Stats, a_fresh_store_has_a_zero_today_and_a_week_of_zero_days) {
    StatsFixture fixture;
    const Stats stats = fixture.loaded();
    EXPECT_EQ(stats.today(), Day{});
    const auto week = stats.lastWeek();
    QStringList labels;
    for (const LabelledDay &day : week) {
        labels.append(day.label);
        EXPECT_EQ(day.day, Day{});
    }
    EXPECT_EQ(labels.join(u' '), QStringLiteral("Tue Wed Thu Fri Sat Sun Mon"));
}

TEST(Stats, how_they_are_stored_is_said_once_and_that_they_changed_each_time) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    EXPECT_EQ(fixture.platform.fakeDefaults.registrations, 0);
    for (int second = 1; second <= 3; ++second)
        stats.setToday(Day{.screenSeconds = double(second)});
    EXPECT_EQ(fixture.platform.fakeDefaults.registrations, 1);
    EXPECT_EQ(fixture.platform.fakeDefaults.changes, QStringList(2, Stats::key));
    EXPECT_EQ(fixture.stored().value(dayKey(QDate(2026, 3, 9)))[u"screenSeconds"], 3);
}

TEST(Stats, the_last_week_runs_from_six_days_ago_to_today) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    stats.setDays(fixture.daysUpToToday(8));
    const auto week = stats.lastWeek();
    ASSERT_EQ(week.size(), 7U);
    for (std::size_t i = 0; i < 7; ++i)
        EXPECT_EQ(week[i].day.micro, 6 - static_cast<int>(i));
}

TEST(Stats, weekday_labels_are_english_whatever_the_users_language) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    StatsFixture fixture;
    const QString label = fixture.loaded().lastWeek().front().label;
    QLocale::setDefault(before);
    EXPECT_EQ(label, QStringLiteral("Tue"));
}

TEST(Stats, a_day_is_kept_under_its_local_date) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    stats.setToday(someDay);
    EXPECT_EQ(fixture.stored(), (QJsonObject{{QStringLiteral("2026-03-09"),
                                              QJsonObject{{QStringLiteral("micro"), 1},
                                                          {QStringLiteral("long"), 2},
                                                          {QStringLiteral("planned"), 3},
                                                          {QStringLiteral("skipped"), 4},
                                                          {QStringLiteral("screenSeconds"), 5.5},
                                                          {QStringLiteral("breakSeconds"), 6.25}}}}));
}

TEST(Stats, what_was_stored_is_loaded_again) {
    StatsFixture fixture;
    {
        Stats stats = fixture.loaded();
        stats.setToday(someDay);
        fixture.stored(); // encoded while its owner is there
        fixture.platform.fakeDefaults.encoders.clear();
    }
    const Stats stats = fixture.loaded();
    EXPECT_EQ(stats.today(), someDay);
}

TEST(Stats, every_day_needs_all_six_members_of_the_right_type) {
    const QByteArray whole =
        R"({"2026-03-09": {"micro": 1, "long": 2, "planned": 3, "skipped": 4, "screenSeconds": 5, "breakSeconds": 6}})";
    StatsFixture fixture;
    fixture.store(whole);
    EXPECT_EQ(fixture.loaded().today().planned, 3);
    for (const char *member : {"micro", "long", "planned", "skipped", "screenSeconds", "breakSeconds"}) {
        fixture.store(QByteArray(whole).replace(member, "other"));
        EXPECT_TRUE(fixture.loaded().days().empty()) << member;
    }
    for (const char *value : {"\"1\"", "null", "true", "1.5", "[]"}) {
        fixture.store(QByteArray(whole).replace("\"micro\": 1", QByteArray("\"micro\": ") + value));
        EXPECT_TRUE(fixture.loaded().days().empty()) << value;
    }
    fixture.store(QByteArray(whole).replace("\"micro\"", "\"extra\": 9, \"micro\""));
    EXPECT_EQ(fixture.loaded().today().micro, 1);
}

TEST(Stats, what_cannot_be_decoded_starts_empty_and_is_overwritten_by_the_next_change) {
    StatsFixture fixture;
    for (const char *json : {"", "[]", "null", "{", "{\"2026-03-09\": 3}", "\xff"}) {
        fixture.store(json);
        EXPECT_TRUE(fixture.loaded().days().empty()) << json;
    }
    fixture.platform.fakeDefaults.values[Stats::key] = QStringLiteral("a text");
    Stats stats = fixture.loaded();
    EXPECT_TRUE(stats.days().empty());
    stats.setToday(someDay);
    EXPECT_EQ(fixture.stored().size(), 1);
}

TEST(Stats, sixty_days_are_kept_even_when_some_are_older) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    Days days = fixture.daysUpToToday(59);
    days.emplace(QStringLiteral("2001-01-01"), Day{});
    stats.setDays(days);
    EXPECT_EQ(stats.days().size(), 60U);
}

TEST(Stats, from_61_days_on_those_before_the_date_60_days_ago_are_dropped) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    stats.setDays(fixture.daysUpToToday(61)); // the oldest is exactly 60 days old
    EXPECT_EQ(stats.days().size(), 61U);
    stats.setDays(fixture.daysUpToToday(62));
    EXPECT_EQ(stats.days().size(), 61U);
    EXPECT_EQ(stats.days().begin()->first, QStringLiteral("2026-01-08"));
    Days sparse = fixture.daysUpToToday(58);
    for (const char *old : {"2001-01-01", "2001-01-02", "2001-01-03"})
        sparse.emplace(QString::fromLatin1(old), Day{});
    stats.setDays(sparse);
    EXPECT_EQ(stats.days().size(), 58U);
}

TEST(Stats, a_day_that_comes_as_the_61st_drops_the_old_ones_at_once) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    Days days;
    for (int offset = 1; offset <= 60; ++offset)
        days.emplace(dayKey(QDate(2026, 3, 9).addDays(-2 * offset)), Day{.micro = offset});
    stats.setDays(days);
    EXPECT_EQ(stats.days().size(), 60U);
    stats.setToday(someDay);
    EXPECT_EQ(stats.days().size(), 31U); // today and the 30 of the last 60 days
}

TEST(Stats, keys_of_the_future_are_kept) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    Days days = fixture.daysUpToToday(61);
    days.emplace(QStringLiteral("2099-01-01"), someDay);
    stats.setDays(days);
    EXPECT_TRUE(stats.days().contains(QStringLiteral("2099-01-01")));
}

TEST(Stats, a_year_of_days_keeps_the_last_61) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    for (QDate date(2028, 1, 1); date.year() == 2028; date = date.addDays(1)) {
        fixture.platform.loop.setClock(date.toString(Qt::ISODate) + QStringLiteral("T12:00"));
        stats.setToday(someDay);
        ASSERT_LE(stats.days().size(), 61U);
    }
    EXPECT_EQ(stats.days().begin()->first, QStringLiteral("2028-11-01"));
    EXPECT_EQ(fixture.stored().size(), 61);
}

TEST(Stats, a_key_written_before_a_change_of_the_zone_stays_and_the_new_day_follows_the_new_zone) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    fixture.platform.loop.setClock(QStringLiteral("2026-03-09T20:00"));
    stats.setToday(Day{.micro = 1});
    fixture.platform.loop.setZone("Asia/Tokyo");
    EXPECT_EQ(stats.today(), Day{});
    stats.setToday(Day{.micro = 2});
    EXPECT_EQ(stats.days(), (Days{{QStringLiteral("2026-03-09"), Day{.micro = 1}},
                                  {QStringLiteral("2026-03-10"), Day{.micro = 2}}}));
}

TEST(Stats, after_a_reset_the_stored_value_is_an_empty_object) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    stats.setToday(someDay);
    stats.setDays({});
    EXPECT_EQ(stats.today(), Day{});
    EXPECT_EQ(fixture.platform.fakeDefaults.value(Stats::key), StoredValue(QByteArray("{}")));
}

TEST(Stats, figures_that_are_no_numbers_are_not_written) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    stats.setToday(someDay);
    const auto before = fixture.stored();
    stats.setToday(Day{.screenSeconds = std::numeric_limits<double>::quiet_NaN()});
    EXPECT_EQ(fixture.stored(), before);
}

TEST(Stats, observers_hear_of_every_change) {
    StatsFixture fixture;
    Stats stats = fixture.loaded();
    int heard = 0;
    const auto observation = stats.observe([&] { ++heard; });
    stats.setToday(someDay);
    stats.setDays({});
    EXPECT_EQ(heard, 2);
}

} // namespace pavonel::test
