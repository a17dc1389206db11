#include "support/NightShifts.h"

#include "Core/BreakController.h"
#include "support/Scenario.h"

#include <algorithm>
#include <ostream>

namespace pavonel::test {

namespace {

const QTime startOfShift(21, 0);

PlannedBreak planned(int number, int hour, int minute, Seconds duration, std::set<int> weekdays) {
    PlannedBreak record;
    record.label = QStringLiteral("Planned %1").arg(number, 2, 10, QLatin1Char('0'));
    record.hour = hour;
    record.minute = minute;
    record.duration = duration;
    record.weekdays = std::move(weekdays);
    return record;
}

/// Around midnight, in the hours that are left out or come twice, at the same minute as another, too long for
/// the one after it, outside of the shift, and switched off.
PlannedBreaks twentyRecords() {
    const std::set<int> daily{1, 2, 3, 4, 5, 6, 7};
    const std::set<int> workdays{2, 3, 4, 5, 6};
    const std::set<int> weekend{1, 7};
    PlannedBreaks records{
        planned(1, 21, 0, 60, daily),    planned(2, 21, 30, 120, workdays), planned(3, 22, 15, 300, weekend),
        planned(4, 22, 15, 60, daily),   planned(5, 23, 30, 1199, {2, 4}),  planned(6, 23, 45, 90, daily),
        planned(7, 23, 50, 900, {6}),    planned(8, 23, 59, 45, daily),     planned(9, 0, 0, 60, {1, 3, 5}),
        planned(10, 0, 15, 1500, {7}),   planned(11, 0, 16, 60, daily),     planned(12, 1, 30, 600, workdays),
        planned(13, 2, 0, 60, daily),    planned(14, 2, 30, 75, daily),     planned(15, 2, 45, 30, weekend),
        planned(16, 3, 30, 60, {1}),     planned(17, 5, 0, 1800, daily),    planned(18, 6, 59, 10, workdays),
        planned(19, 12, 0, 1800, daily), planned(20, 4, 0, 60, daily),
    };
    records.back().enabled = false;
    return records;
}

Instant startOf(const NightShifts &shifts, int night, const QTimeZone &zone) {
    return ZonedDate(shifts.first.addDays(night), zone).at(startOfShift).value();
}

void add(Day &sum, const Day &day) {
    sum.micro += day.micro;
    sum.long_ += day.long_;
    sum.planned += day.planned;
    sum.skipped += day.skipped;
    sum.screenSeconds += day.screenSeconds;
    sum.breakSeconds += day.breakSeconds;
}

/// The same nights in whole numbers: every occurrence in the order of its time, and a second at a time.
class Model {
public:
    explicit Model(const NightShifts &shifts)
        : shifts_(shifts), zone_(shifts.zoneId), records_(twentyRecords()) {
        for (int night = -1; night <= shifts.nights + 1; ++night) {
            for (std::size_t i = 0; i < records_.size(); ++i)
                addOccurrence(shifts.first.addDays(night), i);
        }
        std::stable_sort(occurrences_.begin(), occurrences_.end(),
                         [](const auto &a, const auto &b) { return a.fires < b.fires; });
    }

    ShiftTotals run() {
        for (int night = 0; night < shifts_.nights; ++night) {
            micro_ = long_ = 0;
            const Instant start = startOf(shifts_, night, zone_);
            const QDate evening = shifts_.first.addDays(night);
            const QDate morning = evening.addDays(1);
            const Instant midnight = ZonedDate(morning, zone_).at(QTime(0, 0)).value();
            for (int second = 1; second <= NightShifts::secondsOfShift; ++second) {
                const Instant now = start + second;
                today_ = now < midnight ? evening : morning;
                tick(now, days_[today_]);
            }
        }
        return totals();
    }

private:
    struct Occurrence {
        Instant fires;
        QDate date;
        std::size_t record;
    };

    void addOccurrence(QDate date, std::size_t index) {
        const PlannedBreak &record = records_[index];
        if (!record.enabled || !record.weekdays.contains(date.dayOfWeek() % 7 + 1))
            return;
        const auto fires = ZonedDate(date, zone_).at(QTime(record.hour, record.minute));
        occurrences_.push_back({fires.value(), date, index});
    }

    void tick(Instant now, Day &today) {
        if (remaining_ > 0) {
            today.breakSeconds += 1;
            if (--remaining_ == 0)
                end(today);
            return;
        }
        if (const auto *due = takeDue(now)) {
            begin(BreakKind::planned, due->label, static_cast<int>(due->duration));
            return;
        }
        today.screenSeconds += 1;
        ++micro_;
        ++long_;
        if (micro_ >= 1200)
            begin(BreakKind::micro, defaultTitle(BreakKind::micro), 20);
        else if (long_ >= 3600)
            begin(BreakKind::long_, defaultTitle(BreakKind::long_), 300);
    }

    /// Takes what is too late or of yesterday off the list, and what is due.
    const PlannedBreak *takeDue(Instant now) {
        while (next_ < occurrences_.size() && occurrences_[next_].fires <= now) {
            const Occurrence &occurrence = occurrences_[next_++];
            if (occurrence.date == today_ && secondsBetween(occurrence.fires, now) <= 1200)
                return &records_[occurrence.record];
        }
        return nullptr;
    }

    void begin(BreakKind kind, const QString &title, int duration) {
        kind_ = kind;
        remaining_ = duration;
        ++started_[title];
    }

    void end(Day &today) {
        micro_ = 0;
        switch (kind_) {
        case BreakKind::micro:
            ++today.micro;
            return;
        case BreakKind::long_:
            ++today.long_;
            break;
        case BreakKind::planned:
            ++today.planned;
            break;
        }
        long_ = 0;
    }

    ShiftTotals totals() const {
        ShiftTotals totals;
        totals.startedByTitle = started_;
        const QDate oldestKept = days_.rbegin()->first.addDays(-60);
        for (const auto &[date, day] : days_) {
            add(totals.sum, day);
            if (days_.size() <= 60 || date >= oldestKept)
                totals.kept.emplace(date.toString(Qt::ISODate), day);
        }
        return totals;
    }

    NightShifts shifts_;
    QTimeZone zone_;
    PlannedBreaks records_;
    std::vector<Occurrence> occurrences_;
    std::size_t next_ = 0;
    QDate today_;
    std::map<QDate, Day> days_;
    std::map<QString, int> started_;
    BreakKind kind_ = BreakKind::micro;
    int micro_ = 0;
    int long_ = 0;
    int remaining_ = 0;
};

} // namespace

void PrintTo(const ShiftTotals &totals, std::ostream *out) {
    const Day &sum = totals.sum;
    *out << sum.micro << " micro, " << sum.long_ << " long, " << sum.planned << " planned, " << sum.skipped
         << " skipped, " << static_cast<qint64>(sum.screenSeconds) << " s at the screen, "
         << static_cast<qint64>(sum.breakSeconds) << " s on breaks;";
    for (const auto &[title, count] : totals.startedByTitle)
        *out << ' ' << title.toStdString() << ": " << count << ',';
}

ShiftTotals work(const NightShifts &shifts, const StoreMaker &makeStore) {
    FakePlatform platform(shifts.zoneId);
    platform.loop.setClock(startOf(shifts, 0, platform.loop.zone()));
    const auto store = makeStore(platform.loop);
    Settings settings(*store, platform.loop);
    Stats stats(*store, platform.loop);
    BreakController controller(servicesOf(platform), settings, stats);
    ShiftTotals totals;
    controller.onBreakStart = [&](BreakKind) { ++totals.startedByTitle[controller.breakTitle]; };
    settings.plannedBreaks = twentyRecords();
    controller.start();
    for (int night = 0; night < shifts.nights; ++night) {
        platform.loop.setClock(startOf(shifts, night, platform.loop.zone()));
        controller.microElapsed = 0; // whoever wakes the machine has rested
        controller.longElapsed = 0;
        controller.dismissHeadsUp();
        platform.loop.advance(NightShifts::secondsOfShift);
        add(totals.sum, stats.days().at(dayKey(shifts.first.addDays(night))));
        store->flush(); // before the machine sleeps
    }
    add(totals.sum, stats.days().at(dayKey(shifts.first.addDays(shifts.nights))));
    totals.kept = stats.days();
    store->flush();
    return totals;
}

ShiftTotals expected(const NightShifts &shifts) {
    return Model(shifts).run();
}

} // namespace pavonel::test
