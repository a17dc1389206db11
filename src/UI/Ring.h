#pragma once

#include <QRectF>

class QImage;
class QPainter;

namespace pavonel::ring {

inline constexpr double side = 240;

/// The track and, over it, the arc from twelve o'clock clockwise, within the square. `progress` is 0 to 1.
/// Only what can be seen in `due` is sure to be drawn.
void paint(QPainter &painter, const QRectF &square, double progress, const QRectF &due);

/// The same for a frame of its motion, many times a second and so without a painter's overhead. All in device
/// pixels of a window and in RGB32: `window` is what is behind the line, `picture` a part of the window that
/// begins at `place`, `pixels` those to draw, which must lie in both.
void paintFrame(QImage &picture, const QImage &window, QPoint place, const QRectF &square, double progress,
                const QRect &pixels);

/// All that looks different when the arc's end moves from one progress to another.
QRectF changed(const QRectF &square, double from, double to);

/// The length of the line all around.
double circumference(const QRectF &square);

} // namespace pavonel::ring
