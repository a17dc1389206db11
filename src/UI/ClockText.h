#pragma once

#include "Core/BreakVocabulary.h"

#include <algorithm>
#include <cmath>

namespace pavonel {

/// `clockString` for what comes from the user's settings, which may hold a length that no clock can show.
inline QString clockText(Seconds duration) {
    constexpr Seconds longest = 1e12;
    return clockString(std::isnan(duration) ? 0 : std::clamp(duration, -longest, longest));
}

} // namespace pavonel
