#pragma once

class QImage;
class QPainter;
class QRectF;

namespace pavonel {

/// Fills the rectangle with the image, stretched where their sizes differ, and rounds its corners smoothly.
void drawRounded(QPainter &painter, const QRectF &rect, double radius, const QImage &image);

} // namespace pavonel
