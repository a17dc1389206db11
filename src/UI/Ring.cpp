#include "UI/Ring.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace pavonel::ring {

namespace {

constexpr double trackOpacity = 0.12;
constexpr double arcOpacity = 0.85;
constexpr double antialiasing = 1; // how far beyond its edge a line is seen
/// A smaller ring has a finer line.
double lineWidth(const QRectF &square) {
    constexpr double ofWholeSide = 6;
    return ofWholeSide * square.width() / side;
}

/// Of the circle in the middle of the line.
double radius(const QRectF &square) {
    return (square.width() - lineWidth(square)) / 2;
}

QPointF endOfArc(const QRectF &square, double progress) {
    const double angle = progress * 2 * std::numbers::pi;
    return square.center() + QPointF(std::sin(angle), -std::cos(angle)) * radius(square);
}

/// Whether nothing of the line can be seen in the rectangle.
bool liesWithinTheHole(const QRectF &rect, const QRectF &square) {
    const QPointF middle = square.center();
    const double farthest = std::hypot(std::max(middle.x() - rect.left(), rect.right() - middle.x()),
                                       std::max(middle.y() - rect.top(), rect.bottom() - middle.y()));
    return farthest < radius(square) - lineWidth(square) / 2 - antialiasing;
}

double length(QPointF way) {
    return std::sqrt(QPointF::dotProduct(way, way));
}

/// Positive where one gets from the first direction to the second by turning clockwise for less than half a
/// turn.
double turn(QPointF from, QPointF to) {
    return from.x() * to.y() - from.y() * to.x();
}

/// The track with the arc on it, by how far a place lies from the middle of their line.
class Line {
public:
    Line(const QRectF &square, double progress)
        : middle_(square.center()), radius_(radius(square)), half_(lineWidth(square) / 2), arc_(progress),
          start_(endOfArc(square, 0) - middle_), end_(endOfArc(square, progress) - middle_) {}

    double opacityAt(QPointF place) const {
        const QPointF to = place - middle_;
        const double aside = std::abs(length(to) - radius_);
        const double track = covered(aside);
        if (track <= 0 || arc_ <= 0)
            return trackOpacity * track;
        const double arc =
            covered(isBesideArc(to) ? aside : std::min(length(to - start_), length(to - end_)));
        return 1 - (1 - trackOpacity * track) * (1 - arcOpacity * arc);
    }

private:
    /// The share of a pixel that the line covers.
    double covered(double distance) const { return std::clamp(half_ + 0.5 - distance, 0.0, 1.0); }

    bool isBesideArc(QPointF to) const {
        constexpr double half = 0.5;
        const bool behindStart = turn(start_, to) >= 0;
        const bool beforeEnd = turn(to, end_) >= 0;
        return arc_ <= half ? behindStart && beforeEnd : behindStart || beforeEnd;
    }

    QPointF middle_;
    double radius_;
    double half_;
    double arc_;
    QPointF start_; ///< From the middle, as the end.
    QPointF end_;
};

/// How opaque the line is in the middle of a pixel, in 255 levels.
std::uint32_t level(const Line &line, int x, int y) {
    constexpr double full = 255;
    constexpr double half = 0.5; // of a pixel to its middle, and of a level for rounding
    return static_cast<std::uint32_t>(full * line.opacityAt({x + half, y + half}) + half);
}

/// In white, whose lanes are all as large as its opacity.
constexpr std::uint32_t inEachLane = 0x01010101;

QImage drawn(const Line &line, const QRect &pixels) {
    QImage image(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        auto *pixel = reinterpret_cast<std::uint32_t *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            pixel[x] = level(line, pixels.left() + x, pixels.top() + y) * inEachLane;
    }
    return image;
}

/// The share of a colour in 255 levels; two lanes at a time, rounded as Qt's raster engine does.
std::uint32_t share(std::uint32_t colour, std::uint32_t levels) {
    constexpr std::uint32_t everyOther = 0x00ff00ff;
    constexpr std::uint32_t rounding = 0x00800080;
    const auto ofTwo = [levels](std::uint32_t lanes) {
        const std::uint32_t product = lanes * levels;
        return ((product + ((product >> 8) & everyOther) + rounding) >> 8) & everyOther;
    };
    return ofTwo(colour & everyOther) | ofTwo((colour >> 8) & everyOther) << 8;
}

QRectF scaled(const QRectF &rect, double ratio) {
    return {rect.topLeft() * ratio, rect.size() * ratio};
}

} // namespace

double circumference(const QRectF &square) {
    return 2 * std::numbers::pi * radius(square);
}

/// For the few pixels of a frame that is less work by far than to stroke a path.
void paint(QPainter &painter, const QRectF &square, double progress, const QRectF &due) {
    if (liesWithinTheHole(due, square))
        return;
    const double ratio = painter.deviceTransform().m11();
    const QRectF seen = due & square.adjusted(-antialiasing, -antialiasing, antialiasing, antialiasing);
    const QRect pixels = scaled(seen, ratio).toAlignedRect();
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    painter.drawImage(pixels.topLeft(), drawn({scaled(square, ratio), progress}, pixels));
    painter.restore();
}

void paintFrame(QImage &picture, const QImage &window, QPoint place, const QRectF &square, double progress,
                const QRect &pixels) {
    constexpr std::uint32_t full = 255;
    const Line line(square, progress);
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        const auto *behind = reinterpret_cast<const std::uint32_t *>(window.constScanLine(y));
        auto *pixel = reinterpret_cast<std::uint32_t *>(picture.scanLine(y - place.y())) - place.x();
        for (int x = pixels.left(); x <= pixels.right(); ++x) {
            const std::uint32_t opacity = level(line, x, y);
            pixel[x] = opacity * inEachLane + share(behind[x], full - opacity);
        }
    }
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
