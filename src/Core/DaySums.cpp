#include "Core/DaySums.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace pavonel {

namespace {

Seconds plausible(Seconds timeOfDay) {
    constexpr Seconds longest = 25 * 3600; // a day on which the clock is set back
    return std::isnan(timeOfDay) ? 0 : std::clamp(timeOfDay, 0.0, longest);
}

int sum(int one, int other) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<qint64>(qint64{one} + other, Limits::min(), Limits::max()));
}

} // namespace

Day plausible(Day day) {
    for (int *count : {&day.micro, &day.long_, &day.planned, &day.skipped})
        *count = std::max(0, *count);
    for (Seconds *time : {&day.screenSeconds, &day.breakSeconds})
        *time = plausible(*time);
    return day;
}

Day sum(Day day, const Day &other) {
    for (const auto count : {&Day::micro, &Day::long_, &Day::planned, &Day::skipped})
        day.*count = sum(day.*count, other.*count);
    day.screenSeconds += other.screenSeconds;
    day.breakSeconds += other.breakSeconds;
    return day;
}

Days sum(Days days, const Days &others) {
    for (const auto &[key, other] : others)
        days[key] = sum(days[key], other);
    return days;
}

} // namespace pavonel
