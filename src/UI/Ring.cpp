#include "UI/Ring.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace pavonel::ring {

namespace {

constexpr double trackOpacity = 0.12;
constexpr double arcOpacity = 0.85;
constexpr double antialiasing = 1; // how far beyond its edge a line is seen
constexpr double fullTurn = 360;
constexpr double twelve = 90; // o'clock, in degrees that grow anticlockwise from three o'clock

/// A smaller ring has a finer line.
double lineWidth(const QRectF &square) {
    constexpr double ofWholeSide = 6;
    return ofWholeSide * square.width() / side;
}

/// Of the circle in the middle of the line.
double radius(const QRectF &square) {
    return (square.width() - lineWidth(square)) / 2;
}

QRectF circle(const QRectF &square) {
    const double inset = lineWidth(square) / 2;
    return square.adjusted(inset, inset, -inset, -inset);
}

QPointF endOfArc(const QRectF &square, double progress) {
    const double angle = progress * 2 * std::numbers::pi;
    return square.center() + QPointF(std::sin(angle), -std::cos(angle)) * radius(square);
}

QPen pen(const QRectF &square, double opacity, Qt::PenCapStyle cap) {
    return {QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity)), lineWidth(square), Qt::SolidLine, cap};
}

/// Whether nothing of the line can be seen in the rectangle.
bool liesWithinTheHole(const QRectF &rect, const QRectF &square) {
    const QPointF middle = square.center();
    const double farthest = std::hypot(std::max(middle.x() - rect.left(), rect.right() - middle.x()),
                                       std::max(middle.y() - rect.top(), rect.bottom() - middle.y()));
    return farthest < radius(square) - lineWidth(square) / 2 - antialiasing;
}

/// A part of the circle, as shares of the way around.
struct Span {
    double from;
    double to;
};
constexpr Span wholeCircle{0, 1};

/// The part of the circle that can be seen in the rectangle, and a little more.
Span touched(const QRectF &square, const QRectF &rect) {
    const QPointF middle = rect.center() - square.center();
    const double reach = std::hypot(rect.width(), rect.height()) / 2 + lineWidth(square);
    if (reach > radius(square) / 2)
        return wholeCircle;
    const double turn = std::atan2(middle.x(), -middle.y()) / (2 * std::numbers::pi);
    const double share = turn < 0 ? turn + 1 : turn;
    const double half = std::asin(reach / (radius(square) - lineWidth(square))) / (2 * std::numbers::pi);
    const bool atTwelve = share < half || share > 1 - half;
    return atTwelve ? wholeCircle : Span{share - half, share + half};
}

void strokeArc(QPainter &painter, const QRectF &square, Span span, const QPen &pen) {
    QPainterPath arc;
    arc.arcMoveTo(circle(square), twelve - fullTurn * span.from);
    arc.arcTo(circle(square), twelve - fullTurn * span.from, -fullTurn * (span.to - span.from));
    painter.strokePath(arc, pen);
}

} // namespace

double circumference(const QRectF &square) {
    return 2 * std::numbers::pi * radius(square);
}

void paint(QPainter &painter, const QRectF &square, double progress, const QRectF &due) {
    if (liesWithinTheHole(due, square))
        return;
    const Span seen = touched(square, due);
    painter.setRenderHint(QPainter::Antialiasing);
    strokeArc(painter, square, seen, pen(square, trackOpacity, Qt::FlatCap));
    if (progress > seen.from)
        strokeArc(painter, square, {seen.from, std::min(progress, seen.to)},
                  pen(square, arcOpacity, Qt::RoundCap));
    painter.setRenderHint(QPainter::Antialiasing, false);
}

QRectF changed(const QRectF &square, double from, double to) {
    constexpr double shortMove = 1.0 / 16; // its bulge stays within the line's own width
    if (std::abs(to - from) > shortMove)
        return square.adjusted(-antialiasing, -antialiasing, antialiasing, antialiasing);
    const double margin = lineWidth(square) / 2 + antialiasing;
    const QPointF a = endOfArc(square, from);
    const QPointF b = endOfArc(square, to);
    const double bulge = radius(square) * (1 - std::cos(std::abs(to - from) * std::numbers::pi));
    return QRectF(a, b).normalized().adjusted(-margin - bulge, -margin - bulge, margin + bulge,
                                              margin + bulge);
}

} // namespace pavonel::ring
