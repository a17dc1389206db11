#pragma once

#include <chrono>
#include <cstdint>

namespace relay {

/// Milliseconds since 1970, by this machine's clock.
inline std::int64_t nowMilliseconds() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

} // namespace relay
