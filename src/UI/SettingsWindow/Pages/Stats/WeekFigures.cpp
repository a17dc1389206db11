#include "UI/SettingsWindow/Pages/Stats/WeekFigures.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace pavonel {

namespace {

qint64 plausibleCount(int count) {
    return std::max(0, count);
}

int added(int one, int other) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<qint64>(qint64{one} + other, Limits::min(), Limits::max()));
}

} // namespace

Seconds plausible(Seconds timeOfDay) {
    constexpr Seconds longest = 25 * 3600; // a day on which the clock is set back
    return std::isnan(timeOfDay) ? 0 : std::clamp(timeOfDay, 0.0, longest);
}

WeekFigures WeekFigures::of(const std::vector<LabelledDay> &days) {
    WeekFigures sums;
    for (const auto &[label, day] : days) {
        sums.micro += plausibleCount(day.micro);
        sums.long_ += plausibleCount(day.long_);
        sums.planned += plausibleCount(day.planned);
        sums.skipped += plausibleCount(day.skipped);
        sums.screenSeconds += plausible(day.screenSeconds);
        sums.breakSeconds += plausible(day.breakSeconds);
    }
    return sums;
}

Days sum(Days days, const Days &others) {
    for (const auto &[key, other] : others) {
        Day &day = days[key];
        day.micro = added(day.micro, other.micro);
        day.long_ = added(day.long_, other.long_);
        day.planned = added(day.planned, other.planned);
        day.skipped = added(day.skipped, other.skipped);
        day.screenSeconds += other.screenSeconds;
        day.breakSeconds += other.breakSeconds;
    }
    return days;
}

} // namespace pavonel
