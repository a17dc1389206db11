#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace relay {

struct Break {
    std::string kind;
    std::string title;
    std::int64_t seconds = 0;
    std::int64_t endsAt = 0; ///< In milliseconds of the server's clock.
};

/// What a phone is to show. Each change of a pairing has a higher version than the one before, so that news
/// may come twice or in the wrong order.
struct PhoneState {
    static constexpr std::int64_t unpaired = std::numeric_limits<std::int64_t>::max();

    std::int64_t version = 0;
    std::optional<Break> current;
};

/// As it stands in the database and travels between instances; empty without a break.
std::string toText(const std::optional<Break> &current);
std::optional<Break> breakFrom(const std::string &text);

/// News of a phone, which is named by its token's hash.
struct Change {
    std::string phone;
    PhoneState state;
};

std::string toText(const Change &change);
std::optional<Change> changeFrom(const std::string &text);

} // namespace relay
