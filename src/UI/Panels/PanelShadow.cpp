#include "UI/Panels/PanelShadow.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace pavonel {

namespace {

/// How far outside of the rounded rectangle a point lies; negative inside.
double distance(const QRectF &body, double radius, QPointF point) {
    const double x = std::abs(point.x() - body.center().x()) - (body.width() / 2 - radius);
    const double y = std::abs(point.y() - body.center().y()) - (body.height() / 2 - radius);
    return std::hypot(std::max(x, 0.0), std::max(y, 0.0)) + std::min(std::max(x, y), 0.0) - radius;
}

/// One pixel a point suffices at any ratio: there is nothing sharp in it.
QImage blurred(const PanelShadow::Geometry &geometry, QSize window, const QRectF &body, double radius) {
    const double softness = geometry.blur / 2.0 * std::numbers::sqrt2;
    QImage image(window, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < window.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < window.width(); ++x) {
            const double outside = distance(body, radius, QPointF(x + 0.5, y + 0.5));
            const double shade = geometry.opacity * std::erfc(outside / softness) / 2;
            row[x] = qRgba(0, 0, 0, static_cast<int>(std::lround(255 * shade)));
        }
    }
    return image;
}

/// The panel is translucent: a shadow below it would make it dirty.
void cutOut(QImage &image, const QRectF &panel, double radius) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(panel, radius, radius);
}

} // namespace

PanelShadow::PanelShadow(const Geometry &geometry, QSize panel, double radius) {
    const QMargins around = room(geometry);
    const QRectF body(QPointF(around.left(), around.top()), QSizeF(panel));
    image_ = blurred(geometry, panel.grownBy(around), body.translated(0, geometry.drop), radius);
    cutOut(image_, body, radius);
}

QMargins PanelShadow::room(const Geometry &geometry) {
    return {geometry.blur, std::max(0, geometry.blur - geometry.drop), geometry.blur,
            geometry.drop + geometry.blur};
}

void PanelShadow::paint(QPainter &painter) const {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRect(QPoint(), image_.size()), image_);
}

} // namespace pavonel
