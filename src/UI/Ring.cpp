#include "UI/Ring.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <numbers>

namespace pavonel::ring {

namespace {

constexpr double trackOpacity = 0.12;
constexpr double arcOpacity = 0.85;
constexpr double radius = (side - lineWidth) / 2;
constexpr double fullTurn = 360;
constexpr double twelve = 90; // o'clock, in degrees that grow anticlockwise from three o'clock

/// The circle in the middle of the line.
QRectF circle(const QRectF &square) {
    constexpr double inset = lineWidth / 2;
    return square.adjusted(inset, inset, -inset, -inset);
}

QPointF endOfArc(const QRectF &square, double progress) {
    const double angle = progress * 2 * std::numbers::pi;
    return square.center() + QPointF(std::sin(angle), -std::cos(angle)) * radius;
}

QPen pen(double opacity, Qt::PenCapStyle cap) {
    return {QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity)), lineWidth, Qt::SolidLine, cap};
}

} // namespace

double circumference() {
    return 2 * std::numbers::pi * radius;
}

void paint(QPainter &painter, const QRectF &square, double progress) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(pen(trackOpacity, Qt::FlatCap));
    painter.drawEllipse(circle(square));
    if (progress > 0) {
        QPainterPath arc;
        arc.arcMoveTo(circle(square), twelve);
        arc.arcTo(circle(square), twelve, -fullTurn * progress);
        painter.strokePath(arc, pen(arcOpacity, Qt::RoundCap));
    }
    painter.restore();
}

QRectF changed(const QRectF &square, double from, double to) {
    constexpr double antialiasing = 1;
    constexpr double shortMove = 1.0 / 16; // its bulge stays within the line's own width
    if (std::abs(to - from) > shortMove)
        return square.adjusted(-antialiasing, -antialiasing, antialiasing, antialiasing);
    constexpr double margin = lineWidth / 2 + antialiasing;
    const QPointF a = endOfArc(square, from);
    const QPointF b = endOfArc(square, to);
    const double bulge = radius * (1 - std::cos(std::abs(to - from) * std::numbers::pi));
    return QRectF(a, b).normalized().adjusted(-margin - bulge, -margin - bulge, margin + bulge,
                                              margin + bulge);
}

} // namespace pavonel::ring
