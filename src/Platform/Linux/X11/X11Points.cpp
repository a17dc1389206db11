#include "Platform/Linux/X11/X11Points.h"

#include <QGuiApplication>
#include <QScreen>

namespace pavonel {

QRectF pointsOfPixels(const QRect &pixels) {
    const auto screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        const double scale = screen->devicePixelRatio();
        const QPointF origin = screen->geometry().topLeft();
        const QRectF inPixels(origin, QSizeF(screen->geometry().size()) * scale);
        if (inPixels.contains(QRectF(pixels).center()))
            return {origin + (QPointF(pixels.topLeft()) - origin) / scale, QSizeF(pixels.size()) / scale};
    }
    return pixels;
}

} // namespace pavonel
