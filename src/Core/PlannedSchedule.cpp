#include "Core/PlannedSchedule.h"

#include <algorithm>
#include <limits>

namespace pavonel {

namespace {

constexpr int daysAhead = 7; // a record's weekday comes again at the latest today in a week
constexpr Instant distantPast{std::chrono::duration<Seconds>(std::numeric_limits<Seconds>::lowest())};

/// A date that is looked at, with the clock times that were asked for. A list of any length asks the calendar
/// once for each minute of the day at the most.
class CandidateDay {
public:
    CandidateDay(QDate date, const QTimeZone &zone) : date_(date, zone) {}

    QDate date() const { return date_.date(); }

    /// 1 is Sunday, 7 is Saturday.
    int weekday() const { return date().dayOfWeek() % 7 + 1; }

    std::optional<Instant> at(int hour, int minute) {
        const QTime time(hour, minute);
        if (!time.isValid())
            return {};
        const auto slot = static_cast<std::size_t>(hour) * 60 + static_cast<std::size_t>(minute);
        if (times_.empty())
            times_.resize(std::size_t{24} * 60);
        if (!times_[slot])
            times_[slot] = date_.at(time);
        return *times_[slot];
    }

private:
    ZonedDate date_;
    std::vector<std::optional<std::optional<Instant>>> times_;
};

} // namespace

std::optional<PlannedOccurrence> PlannedSchedule::upcoming(const PlannedBreaks &breaks, Instant now,
                                                           const LocalDay &today) const {
    std::vector<CandidateDay> days;
    for (int offset = 0; offset <= daysAhead; ++offset)
        days.emplace_back(today.date.addDays(offset), today.zone);

    const PlannedBreak *best = nullptr;
    Instant bestFires;
    for (const PlannedBreak &record : breaks) {
        if (!record.enabled || record.weekdays.empty())
            continue;
        const auto handled = plannedHandled_.constFind(record.id);
        const Instant deferred = plannedDeferred_.value(record.id, distantPast);
        for (CandidateDay &day : days) {
            if (!record.weekdays.contains(day.weekday()))
                continue;
            const auto fires = day.at(record.hour, record.minute);
            if (!fires)
                continue;
            if (handled != plannedHandled_.constEnd() && dateOf(*handled, today.zone) == day.date())
                continue;
            const Instant effective = std::max(*fires, deferred);
            if (secondsBetween(effective, now) > tooLate)
                continue;
            if (!best || effective < bestFires) {
                best = &record;
                bestFires = effective;
            }
            break;
        }
    }
    if (!best)
        return {};
    return PlannedOccurrence{*best, bestFires};
}

void PlannedSchedule::markHandled(const QUuid &record, Instant fires) {
    plannedHandled_.insert(record, fires);
}

void PlannedSchedule::defer(const QUuid &record, Instant until) {
    plannedDeferred_.insert(record, until);
}

} // namespace pavonel
