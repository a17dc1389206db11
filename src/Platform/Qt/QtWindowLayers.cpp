#include "Platform/Qt/QtWindowLayers.h"

#include <QGuiApplication>
#include <QWindow>

namespace pavonel {

QString QtWindowLayers::limitation() const {
    return QStringLiteral("This desktop does not let a break lie above fullscreen windows.");
}

Qt::WindowFlags QtWindowLayers::windowFlags(WindowLayer layer) const {
    const Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    return layer == WindowLayer::panel ? flags | Qt::WindowDoesNotAcceptFocus : flags;
}

void QtWindowLayers::assign(QWindow &, WindowLayer, const Screen &) {}

bool QtWindowLayers::canBlend() const {
    return QGuiApplication::platformName().startsWith(u"wayland"); // every compositor there does
}

void QtWindowLayers::takeKeyboard(QWindow &window) {
    window.requestActivate();
}

} // namespace pavonel
