#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace relay {

/// What the service counts, for Prometheus.
struct Metrics {
    std::int64_t phones = 0;      ///< Waiting now.
    std::int64_t connections = 0; ///< Standing now.
    std::uint64_t breaks = 0;
    std::uint64_t pairings = 0;
    std::uint64_t codes = 0;
    std::uint64_t wrongCodes = 0;
    std::uint64_t events = 0; ///< Told to phones.
    std::uint64_t refusedConnections = 0;
    std::array<std::uint64_t, 6> responses{}; ///< By the first digit of their status.

    std::string text() const;
};

} // namespace relay
