#pragma once

#include <QRectF>

class QPainter;

namespace pavonel::ring {

inline constexpr double side = 240;
inline constexpr double lineWidth = 6;

/// The track and, over it, the arc from twelve o'clock clockwise, within the square. `progress` is 0 to 1.
/// What lies outside the painter's clip costs little.
void paint(QPainter &painter, const QRectF &square, double progress);

/// All that looks different when the arc's end moves from one progress to another.
QRectF changed(const QRectF &square, double from, double to);

/// The length of the line all around.
double circumference();

} // namespace pavonel::ring
