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
QImage blurred(const PanelShadow::Look &look, QSize window, const QRectF &body, double radius) {
    const double softness = look.blur / 2.0 * std::numbers::sqrt2;
    QImage image(window, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < window.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < window.width(); ++x) {
            const double outside = distance(body, radius, QPointF(x + 0.5, y + 0.5));
            const double shade = look.opacity * std::erfc(outside / softness) / 2;
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

PanelShadow::PanelShadow(Platform &platform, const Look &look, QSize panel, double radius)
    : platform_(platform), toPanel_(look.blur, std::max(0, look.blur - look.drop)) {
    setWindowFlags(platform.windowLayers->windowFlags(WindowLayer::panel) | Qt::WindowTransparentForInput);
    setWindowTitle(QStringLiteral("Pavonel Shadow"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setFixedSize(panel.width() + 2 * look.blur, toPanel_.y() + panel.height() + look.drop + look.blur);
    const QRectF body(toPanel_, QSizeF(panel));
    image_ = blurred(look, size(), body.translated(0, look.drop), radius);
    cutOut(image_, body, radius);
}

void PanelShadow::present(QPoint corner, const Screen &screen) {
    follow(corner);
    winId();
    platform_.windowLayers->assign(*windowHandle(), WindowLayer::panel, screen);
    show();
}

void PanelShadow::follow(QPoint corner) {
    move(corner - toPanel_);
}

void PanelShadow::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(rect(), image_);
}

} // namespace pavonel
