#pragma once

#include <QJsonValue>

#include <cmath>
#include <limits>
#include <optional>

/// Strict reading of JSON members: a value of another type is no value.
namespace pavonel::strictJson {

inline std::optional<bool> boolean(const QJsonValue &value) {
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

inline std::optional<QString> string(const QJsonValue &value) {
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

inline std::optional<double> number(const QJsonValue &value) {
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

/// A number without a fraction that fits an `int`.
inline std::optional<int> integer(const QJsonValue &value) {
    const auto stored = number(value);
    using Limits = std::numeric_limits<int>;
    if (!stored || std::trunc(*stored) != *stored || *stored < Limits::min() || *stored > Limits::max())
        return {};
    return static_cast<int>(*stored);
}

} // namespace pavonel::strictJson
