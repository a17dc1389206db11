#pragma once

#include "Core/BreakVocabulary.h"

#include <algorithm>

namespace pavonel {

/// `clockString` for what comes from the user's settings, which may hold a length that no clock can show.
inline QString clockText(Seconds duration) {
    constexpr Seconds longest = 1e12;
    return clockString(std::clamp(duration, -longest, longest));
}

} // namespace pavonel
