#pragma once

#include "Core/Stats.h"

namespace pavonel {

/// The day with each figure that a damaged store may hold taken as the nearest that a day could have.
Day plausible(Day day);

/// The figures of both added; a count ends where its type does.
Day sum(Day day, const Day &other);

/// The days of both, their figures added.
Days sum(Days days, const Days &others);

} // namespace pavonel
