#include "Core/LocalDay.h"

#include "support/VirtualMainLoop.h"

#include <QDateTime>
#include <QLocale>

#include <array>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

constexpr int minutesPerDay = 24 * 60;

/// The clocks of a zone, read minute by minute around one date: slow, and without any idea of how zones
/// change.
class ScannedDate {
public:
    ScannedDate(QDate date, const QTimeZone &zone) {
        const qint64 begin = QDateTime(date, QTime(0, 0), Qt::UTC).toSecsSinceEpoch() - 16 * 3600;
        for (qint64 instant = begin; instant < begin + 56 * 3600; instant += 60) {
            const auto utc = QDateTime::fromSecsSinceEpoch(instant, Qt::UTC);
            const auto wall = utc.addSecs(zone.offsetFromUtc(utc));
            if (wall.date() != date)
                continue;
            auto &first =
                firstShown_.at(static_cast<std::size_t>(wall.time().msecsSinceStartOfDay() / 60000));
            if (first == 0)
                first = instant;
        }
    }

    /// The instant of a minute of the day, or of the next one that is shown; 0 when none is.
    qint64 at(std::size_t minute) const {
        while (minute < minutesPerDay && firstShown_[minute] == 0)
            ++minute;
        return minute < minutesPerDay ? firstShown_[minute] : 0;
    }

private:
    std::array<qint64, minutesPerDay> firstShown_{};
};

qint64 seconds(const std::optional<Instant> &instant) {
    return instant ? static_cast<qint64>(std::llround(instant->time_since_epoch().count())) : 0;
}

QString text(QDate date, const QTimeZone &zone) {
    return date.toString(Qt::ISODate) + QLatin1Char(' ') + QString::fromLatin1(zone.id());
}

void expectLikeScan(QDate date, const QTimeZone &zone) {
    const ScannedDate scanned(date, zone);
    const ZonedDate zoned(date, zone);
    int differing = 0;
    for (int minute = 0; minute < minutesPerDay; ++minute) {
        const QTime time = QTime(0, 0).addSecs(minute * 60);
        if (seconds(zoned.at(time)) != scanned.at(static_cast<std::size_t>(minute)))
            ++differing;
    }
    EXPECT_EQ(differing, 0) << "minutes of " << text(date, zone).toStdString();
}

/// Every instant of some days, hour by hour and next to each change, lies in a span of its own date whose
/// neighbours have another one.
void expectSpansAreExact(QDate first, QDate last, const QTimeZone &zone) {
    constexpr Seconds moment = 0.001;
    const auto begin =
        Instant{std::chrono::seconds(QDateTime(first, QTime(0, 0), Qt::UTC).toSecsSinceEpoch())};
    const auto end = Instant{std::chrono::seconds(QDateTime(last, QTime(0, 0), Qt::UTC).toSecsSinceEpoch())};
    for (Instant instant = begin; instant < end; instant = instant + 1800) {
        const LocalDay day = LocalDay::containing(instant, zone);
        ASSERT_TRUE(day.contains(instant, zone)) << text(day.date, zone).toStdString();
        ASSERT_EQ(day.date, dateOf(instant, zone));
        ASSERT_EQ(dateOf(day.begin, zone), day.date);
        ASSERT_EQ(dateOf(day.end + -moment, zone), day.date);
        ASSERT_NE(dateOf(day.begin + -moment, zone), day.date) << text(day.date, zone).toStdString();
        ASSERT_NE(dateOf(day.end, zone), day.date) << text(day.date, zone).toStdString();
    }
}

const std::array oddZones{
    "UTC",
    "Europe/Berlin",
    "Europe/London",
    "Europe/Dublin",
    "America/New_York",
    "Asia/Kolkata",
    "Asia/Kathmandu",
    "Asia/Tehran",
    "Australia/Lord_Howe",
    "Australia/Adelaide",
    "America/Sao_Paulo",
    "America/Havana",
    "America/Santiago",
    "America/Asuncion",
    "Africa/Cairo",
    "Asia/Beirut",
    "Asia/Gaza",
    "Asia/Amman",
    "Atlantic/Azores",
    "America/Nuuk",
    "America/St_Johns",
    "America/Scoresbysund",
    "Africa/Casablanca",
    "Antarctica/Troll",
    "Pacific/Apia",
    "Pacific/Kiritimati",
    "Pacific/Chatham",
    "America/Caracas",
    "Asia/Pyongyang",
    "Pacific/Easter",
};

/// The dates of a zone around each of its changes in these years.
std::vector<QDate> datesOfChanges(const QTimeZone &zone, int firstYear, int lastYear) {
    std::vector<QDate> dates;
    const QDateTime from(QDate(firstYear, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime to(QDate(lastYear, 12, 31), QTime(0, 0), Qt::UTC);
    for (const auto &change : zone.transitions(from, to)) {
        for (int days = -1; days <= 1; ++days)
            dates.push_back(change.atUtc.date().addDays(days));
    }
    return dates;
}

class LocalDayInOddZones : public testing::TestWithParam<const char *> {};

} // namespace

TEST_P(LocalDayInOddZones, clock_times_are_those_of_a_scan_minute_by_minute) {
    const QTimeZone zone(GetParam());
    ASSERT_TRUE(zone.isValid());
    expectLikeScan(QDate(2026, 7, 1), zone);
    expectLikeScan(QDate(2028, 2, 29), zone);
    for (const QDate date : datesOfChanges(zone, 2011, 2011))
        expectLikeScan(date, zone);
    for (const QDate date : datesOfChanges(zone, 2024, 2024))
        expectLikeScan(date, zone);
    for (const QDate date : datesOfChanges(zone, 2041, 2041)) // past the tables, by the rule alone
        expectLikeScan(date, zone);
}

TEST_P(LocalDayInOddZones, a_day_ends_exactly_where_the_date_changes) {
    const QTimeZone zone(GetParam());
    expectSpansAreExact(QDate(2026, 6, 1), QDate(2026, 6, 3), zone);
    for (const QDate date : datesOfChanges(zone, 2011, 2011))
        expectSpansAreExact(date, date.addDays(1), zone);
    for (const QDate date : datesOfChanges(zone, 2024, 2024))
        expectSpansAreExact(date, date.addDays(1), zone);
}

INSTANTIATE_TEST_SUITE_P(LocalDay, LocalDayInOddZones, testing::ValuesIn(oddZones), [](const auto &zone) {
    std::string name = zone.param;
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
});

TEST(LocalDay, a_time_in_the_gap_is_the_next_that_exists) {
    const QTimeZone berlin("Europe/Berlin");
    const auto three = ZonedDate(QDate(2026, 3, 29), berlin).at(QTime(3, 0));
    EXPECT_EQ(ZonedDate(QDate(2026, 3, 29), berlin).at(QTime(2, 0)), three);
    EXPECT_EQ(ZonedDate(QDate(2026, 3, 29), berlin).at(QTime(2, 30)), three);
}

TEST(LocalDay, a_repeated_time_is_the_first_of_two) {
    const QTimeZone berlin("Europe/Berlin");
    const auto first = ZonedDate(QDate(2026, 10, 25), berlin).at(QTime(2, 30));
    const auto later = ZonedDate(QDate(2026, 10, 25), berlin).at(QTime(3, 30));
    ASSERT_TRUE(first && later);
    EXPECT_EQ(secondsBetween(*first, *later), 7200);
}

TEST(LocalDay, a_day_without_midnight_begins_at_its_first_time) {
    const QTimeZone saoPaulo("America/Sao_Paulo");
    EXPECT_EQ(ZonedDate(QDate(2018, 11, 4), saoPaulo).at(QTime(0, 0)),
              ZonedDate(QDate(2018, 11, 4), saoPaulo).at(QTime(1, 0)));
    const QTimeZone cairo("Africa/Cairo");
    EXPECT_EQ(ZonedDate(QDate(2024, 4, 26), cairo).at(QTime(0, 0)),
              ZonedDate(QDate(2024, 4, 26), cairo).at(QTime(1, 0)));
}

TEST(LocalDay, a_date_that_a_zone_left_out_has_no_time_at_all) {
    const QTimeZone apia("Pacific/Apia");
    EXPECT_FALSE(ZonedDate(QDate(2011, 12, 30), apia).at(QTime(0, 0)));
    EXPECT_FALSE(ZonedDate(QDate(2011, 12, 30), apia).at(QTime(23, 59)));
    EXPECT_TRUE(ZonedDate(QDate(2011, 12, 31), apia).at(QTime(0, 0)));
}

TEST(LocalDay, a_gap_that_reaches_midnight_leaves_nothing_of_the_date) {
    const QTimeZone scoresbysund("America/Scoresbysund"); // 23:00 to midnight
    EXPECT_TRUE(ZonedDate(QDate(2025, 3, 29), scoresbysund).at(QTime(22, 59)));
    EXPECT_FALSE(ZonedDate(QDate(2025, 3, 29), scoresbysund).at(QTime(23, 30)));
}

TEST(LocalDay, a_day_can_last_23_25_and_24_and_a_half_hours) {
    const QTimeZone berlin("Europe/Berlin");
    const auto hours = [](QDate date, const QTimeZone &zone) {
        const auto noon = ZonedDate(date, zone).at(QTime(12, 0));
        const LocalDay day = LocalDay::containing(noon.value(), zone);
        return secondsBetween(day.begin, day.end) / 3600;
    };
    EXPECT_EQ(hours(QDate(2026, 3, 29), berlin), 23);
    EXPECT_EQ(hours(QDate(2026, 10, 25), berlin), 25);
    EXPECT_EQ(hours(QDate(2026, 4, 5), QTimeZone("Australia/Lord_Howe")), 24.5);
}

TEST(LocalDay, a_time_that_no_clock_shows_is_absent) {
    EXPECT_FALSE(ZonedDate(QDate(2026, 3, 2), QTimeZone::utc()).at(QTime(24, 0)));
    EXPECT_FALSE(ZonedDate(QDate(2026, 2, 29), QTimeZone::utc()).at(QTime(12, 0)));
}

TEST(LocalDay, a_zone_that_is_none_counts_as_universal_time) {
    const QTimeZone none;
    const auto noon = ZonedDate(QDate(2026, 3, 2), none).at(QTime(12, 0));
    EXPECT_EQ(noon, ZonedDate(QDate(2026, 3, 2), QTimeZone::utc()).at(QTime(12, 0)));
    EXPECT_EQ(LocalDay::containing(*noon, none).date, QDate(2026, 3, 2));
}

TEST(Today, the_key_follows_the_clock_over_midnight_and_back) {
    VirtualMainLoop loop("Europe/Berlin");
    const Today today(loop);
    loop.setClock(QStringLiteral("2028-02-28T23:59:59"));
    EXPECT_EQ(today.key(loop.now()), QStringLiteral("2028-02-28"));
    loop.advance(1);
    EXPECT_EQ(today.key(loop.now()), QStringLiteral("2028-02-29"));
    loop.setClock(QStringLiteral("2027-12-31T12:00"));
    EXPECT_EQ(today.key(loop.now()), QStringLiteral("2027-12-31"));
}

TEST(Today, the_key_follows_a_change_of_the_zone) {
    VirtualMainLoop loop("UTC");
    const Today today(loop);
    loop.setClock(QStringLiteral("2026-03-02T20:00"));
    EXPECT_EQ(today.key(loop.now()), QStringLiteral("2026-03-02"));
    loop.setZone("Asia/Tokyo");
    EXPECT_EQ(today.key(loop.now()), QStringLiteral("2026-03-03"));
}

TEST(Today, the_key_is_written_as_the_users_locale_writes_digits) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    const QString key = dayKey(QDate(2026, 3, 9));
    QLocale::setDefault(before);
    EXPECT_EQ(key, QStringLiteral("٢٠٢٦-٠٣-٠٩"));
}

} // namespace pavonel::test
