#include "Core/PlannedSchedule.h"

#include "support/Scenario.h"

#include <QDateTime>

#include <ctime>
#include <map>
#include <random>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// The next occurrence worked out from nothing each time, and nothing remembered but what was done or put
/// off.
class PlainSchedule {
public:
    explicit PlainSchedule(const Scenario &scenario) : s_(scenario) {}

    std::optional<PlannedOccurrence> upcoming() const {
        std::optional<PlannedOccurrence> best;
        for (const PlannedBreak &record : s_.settings.plannedBreaks.get()) {
            const auto fires = occurrenceOf(record);
            if (fires && (!best || *fires < best->fires))
                best = PlannedOccurrence{record, *fires};
        }
        return best;
    }

    void handle() {
        if (const auto coming = upcoming())
            handled_[coming->record.id] = coming->fires;
    }
    void postpone(Seconds by) {
        if (const auto coming = upcoming())
            deferred_[coming->record.id] = s_.platform.loop.now() + by;
    }

private:
    std::optional<Instant> occurrenceOf(const PlannedBreak &record) const {
        const Instant now = s_.platform.loop.now();
        const QTimeZone zone = s_.platform.loop.zone();
        for (int offset = 0; record.enabled && offset <= 7; ++offset) {
            const QDate date = dateOf(now, zone).addDays(offset);
            if (!record.weekdays.contains(date.dayOfWeek() % 7 + 1))
                continue;
            auto fires = ZonedDate(date, zone).at(QTime(record.hour, record.minute));
            if (!fires)
                continue;
            const auto handled = handled_.find(record.id);
            if (handled != handled_.end() && dateOf(handled->second, zone) == dateOf(*fires, zone))
                continue;
            const auto deferred = deferred_.find(record.id);
            if (deferred != deferred_.end() && deferred->second > *fires)
                fires = deferred->second;
            if (secondsBetween(*fires, now) <= 1200)
                return fires;
        }
        return {};
    }

    const Scenario &s_;
    std::map<QUuid, Instant> handled_;
    std::map<QUuid, Instant> deferred_;
};

/// A user, a clock and a zone that do anything at any time.
class RandomWalk {
public:
    explicit RandomWalk(unsigned seed) : random_(seed), plain_(s_) {
        s_.onlyPlannedBreaks();
        s_.controller.onBreakStart = [this](BreakKind) { expectFiresAsPlain(); };
        for (int i = 0; i < 4; ++i)
            addRecord();
    }

    void step() {
        switch (roll(12)) {
        case 0:
            jumpClock();
            break;
        case 1:
            s_.platform.loop.setZone(zones_[static_cast<std::size_t>(roll(zones_.size()))]);
            break;
        case 2:
            editRecords();
            break;
        case 3:
            skip();
            break;
        case 4:
            postpone();
            break;
        case 5:
            s_.controller.togglePause();
            break;
        case 6:
            s_.advance(roll(1500));
            break;
        case 7:
            approachNext();
            break;
        default:
            if (s_.controller.phase == Phase::paused && roll(2) == 0)
                s_.controller.togglePause();
            s_.advance(roll(90));
        }
    }

    void expectSameAsPlain() const {
        const auto plain = plain_.upcoming();
        const auto next = s_.controller.next();
        ASSERT_EQ(next.has_value(), plain.has_value()) << where();
        if (!next)
            return;
        ASSERT_EQ(next->plannedID, plain->record.id) << where();
        ASSERT_EQ(next->remaining, std::max(0.0, secondsBetween(s_.platform.loop.now(), plain->fires)))
            << where();
    }

    int started() const { return started_; }

private:
    int roll(std::size_t sides) { return static_cast<int>(random_() % sides); }

    std::string where() const {
        return (s_.localTime() + u' ' + QString::fromLatin1(s_.platform.loop.zone().id())).toStdString();
    }

    void expectFiresAsPlain() {
        const auto plain = plain_.upcoming();
        ASSERT_TRUE(plain) << where();
        EXPECT_EQ(s_.controller.breakTitle, plain->record.label) << where();
        EXPECT_LE(plain->fires, s_.platform.loop.now()) << where();
        plain_.handle();
        ++started_;
    }

    /// Close to now, so that something happens.
    PlannedBreak anyRecord() {
        const QDateTime soon = QDateTime::fromString(s_.localTime(), QStringLiteral("yyyy-MM-dd HH:mm:ss"))
                                   .addSecs(roll(7200) - 1800);
        PlannedBreak record;
        record.label = QString::number(++lastLabel_);
        record.hour = soon.time().hour();
        record.minute = soon.time().minute();
        record.duration = roll(120);
        record.enabled = roll(8) > 0;
        for (int weekday = 1; weekday <= 7; ++weekday) {
            if (roll(3) == 0)
                record.weekdays.erase(weekday);
            else
                record.weekdays.insert(weekday);
        }
        return record;
    }

    void addRecord() {
        PlannedBreaks records = s_.settings.plannedBreaks;
        records.push_back(anyRecord());
        s_.settings.plannedBreaks = records;
    }

    void editRecords() {
        PlannedBreaks records = s_.settings.plannedBreaks;
        if (records.size() < 3 || roll(3) == 0) {
            addRecord();
            return;
        }
        PlannedBreak &record = records[static_cast<std::size_t>(roll(records.size()))];
        if (roll(2) == 0) {
            const QUuid id = record.id; // an edited record keeps its identity
            record = anyRecord();
            record.id = id;
        } else {
            std::swap(record, records.back());
            records.pop_back();
        }
        s_.settings.plannedBreaks = records;
    }

    void jumpClock() {
        const std::array<Seconds, 8> jumps{-86400, -3600, -600, 600, 1201, 3600, 86400, 7 * 86400};
        VirtualMainLoop &loop = s_.platform.loop;
        if (roll(4) == 0)
            loop.setClock(changes_[static_cast<std::size_t>(roll(changes_.size()))]);
        else
            loop.setClock(loop.now() + jumps[static_cast<std::size_t>(roll(jumps.size()))]);
    }

    void approachNext() {
        if (const auto plain = plain_.upcoming())
            s_.platform.loop.setClock(plain->fires + (roll(1400) - 100));
    }

    void skip() {
        if (s_.controller.phase != Phase::breaking)
            plain_.handle();
        s_.controller.skip();
    }

    void postpone() {
        const Seconds by = roll(2) == 0 ? 60 : 300;
        plain_.postpone(by);
        s_.controller.postpone(by);
    }

    const std::vector<QByteArray> zones_{"UTC",          "Europe/Berlin",       "America/New_York",
                                         "Asia/Kolkata", "Australia/Lord_Howe", "America/Sao_Paulo"};
    /// Evenings and nights before a change in one of the zones.
    const std::vector<QString> changes_{
        QStringLiteral("2026-03-29T01:30"), QStringLiteral("2026-10-25T01:30"),
        QStringLiteral("2026-11-01T00:30"), QStringLiteral("2026-04-05T01:00"),
        QStringLiteral("2018-11-03T23:30"), QStringLiteral("2018-02-17T22:30")};

    std::mt19937 random_;
    Scenario s_;
    PlainSchedule plain_;
    int lastLabel_ = 0;
    int started_ = 0;
};

class RandomEvents : public testing::TestWithParam<unsigned> {};

PlannedBreaks manyRecords(std::size_t count) {
    PlannedBreaks records(count);
    for (std::size_t i = 0; i < count; ++i) {
        records[i].hour = static_cast<int>(10 + i / 60 % 14);
        records[i].minute = static_cast<int>(i % 60);
        records[i].weekdays = {static_cast<int>(i % 7 + 1)};
    }
    return records;
}

} // namespace

TEST_P(RandomEvents, what_is_remembered_is_what_would_be_worked_out_afresh) {
    RandomWalk walk(GetParam());
    for (int step = 0; step < 400; ++step) {
        walk.step();
        ASSERT_NO_FATAL_FAILURE(walk.expectSameAsPlain());
    }
    EXPECT_GT(walk.started(), 3);
}

INSTANTIATE_TEST_SUITE_P(PlannedSchedule, RandomEvents, testing::Range(1U, 9U));

TEST(PlannedSchedule, the_earlier_of_two_at_once_comes_first_whatever_became_of_others) {
    PlannedBreaks records(2);
    for (PlannedBreak &record : records)
        record.weekdays = {1, 2, 3, 4, 5, 6, 7};
    PlannedSchedule schedule;
    const QTimeZone utc = QTimeZone::utc();
    const Instant morning = ZonedDate(QDate(2026, 3, 2), utc).at(QTime(0, 0)).value();
    const LocalDay today = LocalDay::containing(morning, utc);
    EXPECT_EQ(schedule.upcoming(records, morning, today)->record.id, records[0].id);
    schedule.markHandled(records[0].id, schedule.upcoming(records, morning, today)->fires);
    EXPECT_EQ(schedule.upcoming(records, morning, today)->record.id, records[1].id);
}

/// Working a long list out takes longer than a tick may; so it is done when something changed and not every
/// second.
TEST(PlannedSchedule, thousands_of_records_do_not_slow_down_the_tick) {
    Scenario s;
    s.onlyPlannedBreaks();
    s.settings.plannedBreaks = manyRecords(20000);
    const std::clock_t before = std::clock();
    const PlannedSchedule fresh;
    const Instant now = s.platform.loop.now();
    EXPECT_TRUE(
        fresh.upcoming(s.settings.plannedBreaks, now, LocalDay::containing(now, s.platform.loop.zone())));
    const std::clock_t once = std::clock() - before;
    s.advance(600);
    const std::clock_t ticks = std::clock() - before - once;
    EXPECT_LT(ticks, 60 * once) << "as if the list were worked out in every tenth tick or oftener";
    EXPECT_EQ(s.controller.microElapsed, 600);
}

} // namespace pavonel::test
