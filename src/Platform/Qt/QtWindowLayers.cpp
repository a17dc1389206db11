#include "Platform/Qt/QtWindowLayers.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTransform>
#include <QWindow>

#include <algorithm>

namespace pavonel {

QString QtWindowLayers::limitation() const {
    return QStringLiteral("This desktop does not let a break lie above fullscreen windows.");
}

Qt::WindowFlags QtWindowLayers::windowFlags(WindowLayer layer) const {
    const Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    return layer == WindowLayer::panel ? flags | Qt::WindowDoesNotAcceptFocus : flags;
}

/// Fullscreen, a window is bound to its screen, and the desktop puts it above its bars.
void QtWindowLayers::show(QWindow &window, WindowLayer layer, const Screen &screen) {
    if (layer == WindowLayer::panel) {
        window.show();
        return;
    }
    const auto attached = QGuiApplication::screens();
    const auto wanted = std::ranges::find(attached, screen.name, &QScreen::name);
    if (wanted != attached.end())
        window.setScreen(*wanted);
    window.showFullScreen();
}

bool QtWindowLayers::canBlend() const {
    return QGuiApplication::platformName().startsWith(u"wayland"); // every compositor there does
}

/// Qt takes whole points only.
void QtWindowLayers::cutTo(QWindow &window, const QRegion &pixels) {
    const qreal points = 1 / window.devicePixelRatio();
    window.setMask(QTransform::fromScale(points, points).map(pixels));
}

void QtWindowLayers::takeKeyboard(QWindow &window) {
    window.requestActivate();
}

} // namespace pavonel
