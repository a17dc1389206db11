#include "Platform/Qt/QtWindowLayers.h"

#include <QWindow>

namespace pavonel {

QString QtWindowLayers::limitation() const {
    return QStringLiteral("This desktop does not let a break lie above fullscreen windows.");
}

void QtWindowLayers::assign(QWindow &window, WindowLayer layer, const Screen &screen) {
    Qt::WindowFlags flags = Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    if (layer == WindowLayer::panel)
        flags |= Qt::WindowDoesNotAcceptFocus;
    window.setFlags(flags);
    if (layer == WindowLayer::overlay)
        window.setGeometry(screen.frame.toRect());
}

void QtWindowLayers::takeKeyboard(QWindow &window) {
    window.requestActivate();
}

} // namespace pavonel
