#include "Platform/Linux/X11/X11Points.h"

#include <QGuiApplication>
#include <QScreen>
#include <qpa/qplatformscreen.h>

namespace pavonel {

namespace {

qint64 area(const QRect &rect) {
    return rect.isEmpty() ? 0 : qint64{rect.width()} * rect.height();
}

} // namespace

QRect pixelsOf(const QScreen *screen) {
    return screen->handle()->geometry();
}

const QScreen *screenShowing(const QRect &pixels) {
    const QScreen *best = nullptr;
    qint64 most = 0;
    const auto attached = QGuiApplication::screens();
    for (const QScreen *screen : attached) {
        const qint64 shown = area(pixelsOf(screen) & pixels);
        if (shown > most) {
            most = shown;
            best = screen;
        }
    }
    return best;
}

QRectF pointsOfPixels(const QRect &pixels, const QScreen *screen) {
    const double scale = screen->devicePixelRatio();
    const QPointF fromCorner = pixels.topLeft() - pixelsOf(screen).topLeft();
    return {screen->geometry().topLeft() + fromCorner / scale, QSizeF(pixels.size()) / scale};
}

QRectF pointsOfPixels(const QRect &pixels) {
    const QScreen *const screen = screenShowing(pixels);
    return screen ? pointsOfPixels(pixels, screen) : QRectF(pixels);
}

} // namespace pavonel
