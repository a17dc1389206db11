#pragma once

#include "Core/BreakVocabulary.h"

#include <algorithm>
#include <cmath>

namespace pavonel {

/// What comes from the user's settings may be a length that no clock can show.
inline Seconds showable(Seconds duration) {
    constexpr Seconds longest = 1e12;
    return std::isnan(duration) ? 0 : std::clamp(duration, -longest, longest);
}

/// `clockString` for a length from the settings.
inline QString clockText(Seconds duration) {
    return clockString(showable(duration));
}

/// `humanString` for a length from the settings.
inline QString humanText(Seconds duration) {
    return humanString(showable(duration));
}

} // namespace pavonel
