#pragma once

#include <QStyle>

class QColor;
class QImage;
class QPainter;
class QRectF;
class QPointF;

namespace pavonel {

struct ButtonColours;

constexpr double disabledOpacity = 0.45;

/// `body`, moved to whole device pixels and then in by half a one, so that an outline of one device pixel
/// comes out sharp at any ratio.
QRectF outlineOf(const QPainter &painter, const QRectF &body);

/// A filled shape with round corners and an outline of one device pixel; a transparent `outline` for none.
void drawBody(QPainter &painter, const QRectF &body, double radius, const QColor &fill,
              const QColor &outline);

/// Such a shape of a button, with the fill for the pointer above it or holding it down.
void drawBody(QPainter &painter, const QRectF &body, double radius, const ButtonColours &colours,
              QStyle::State state);

/// A level or upright line, one device pixel thick.
void drawHairline(QPainter &painter, const QPointF &from, const QPointF &to, const QColor &colour);

/// Fills the rectangle with the image, stretched where their sizes differ, and rounds its corners smoothly.
void drawRounded(QPainter &painter, const QRectF &rect, double radius, const QImage &image);

} // namespace pavonel
