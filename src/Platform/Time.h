#pragma once

#include <chrono>

namespace pavonel {

/// Durations, intervals and counters, in seconds.
using Seconds = double;

/// Of all days but those on which the clocks change.
constexpr Seconds dayLength = 86'400;

/// A moment on the wall clock, in seconds since 1970-01-01 00:00 UTC.
using Instant = std::chrono::sys_time<std::chrono::duration<Seconds>>;

constexpr Instant operator+(Instant instant, Seconds seconds) {
    return instant + std::chrono::duration<Seconds>(seconds);
}

constexpr Seconds secondsBetween(Instant from, Instant to) {
    return (to - from).count();
}

} // namespace pavonel
