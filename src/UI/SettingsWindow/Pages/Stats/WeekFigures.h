#pragma once

#include "Core/Stats.h"

namespace pavonel {

/// The sums of some days.
struct WeekFigures {
    qint64 micro = 0;
    qint64 long_ = 0;
    qint64 planned = 0;
    qint64 skipped = 0;
    Seconds screenSeconds = 0;
    Seconds breakSeconds = 0;

    static WeekFigures of(const std::vector<LabelledDay> &days);
};

/// What a damaged store may hold, taken as the nearest time that a day could have.
Seconds plausible(Seconds timeOfDay);

/// The days of both, their figures added.
Days sum(Days days, const Days &others);

} // namespace pavonel
