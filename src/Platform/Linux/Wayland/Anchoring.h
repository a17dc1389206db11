#pragma once

#include <QMargins>
#include <QRect>

#include <cstdint>

namespace pavonel {

/// Where a layer surface is to stand: held to edges of its output (the protocol's bits), at distances from
/// them.
struct Anchoring {
    std::uint32_t edges;
    QMargins margins;

    /// That of a rectangle on an output: held to the nearer edges, in the middle between left and right to
    /// none of these two. So bars that the compositor knows of push it aside, and it stands alike on any
    /// output.
    static Anchoring of(const QRect &rect, const QRect &output);

    /// Over all of the output, bars too.
    static Anchoring everywhere();

    bool operator==(const Anchoring &) const = default;
};

} // namespace pavonel
