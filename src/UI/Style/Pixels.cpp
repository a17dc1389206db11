#include "UI/Style/Pixels.h"

#include "UI/Palette.h"

#include <QBrush>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pavonel {

QRectF outlineOf(const QPainter &painter, const QRectF &body) {
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(body);
    const QRectF whole(QPointF(std::round(device.left()), std::round(device.top())),
                       QPointF(std::round(device.right()), std::round(device.bottom())));
    return toDevice.inverted().mapRect(whole.adjusted(0.5, 0.5, -0.5, -0.5));
}

void drawBody(QPainter &painter, const QRectF &body, double radius, const QColor &fill,
              const QColor &outline) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    if (outline.alpha() == 0) {
        painter.setPen(Qt::NoPen);
        painter.drawRoundedRect(body, radius, radius);
    } else {
        QPen pen(outline, 1);
        pen.setCosmetic(true);
        painter.setPen(pen);
        painter.drawRoundedRect(outlineOf(painter, body), radius, radius);
    }
    painter.restore();
}

void drawBody(QPainter &painter, const QRectF &body, double radius, const ButtonColours &colours,
              QStyle::State state) {
    QColor fill = colours.fill;
    if (state & (QStyle::State_Sunken | QStyle::State_On))
        fill = colours.pressed;
    else if (state & QStyle::State_MouseOver && state & QStyle::State_Enabled)
        fill = colours.hovered;
    drawBody(painter, body, radius, fill, colours.outline);
}

void drawHairline(QPainter &painter, const QPointF &from, const QPointF &to, const QColor &colour) {
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(QRectF(from, to).normalized());
    // Up to the next whole pixel: the one before can belong to the widget beside.
    constexpr double tolerance = 0.01;
    const auto whole = [](double place) { return std::ceil(place - tolerance); };
    const QPointF corner(whole(device.left()), whole(device.top()));
    const QSizeF size(std::max(1.0, whole(device.right()) - corner.x()),
                      std::max(1.0, whole(device.bottom()) - corner.y()));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(toDevice.inverted().mapRect(QRectF(corner, size)), colour);
    painter.restore();
}

void drawRounded(QPainter &painter, const QRectF &rect, double radius, const QImage &image) {
    if (image.isNull() || rect.isEmpty())
        return;
    QBrush brush(image);
    brush.setTransform(QTransform::fromTranslate(rect.left(), rect.top())
                           .scale(rect.width() / image.width(), rect.height() / image.height()));
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawRoundedRect(rect, radius, radius);
    painter.restore();
}

} // namespace pavonel
