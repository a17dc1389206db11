#include "UI/Ring.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// A background of many colours.
QImage window() {
    QImage image(400, 300, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb(x % 256, y % 256, (x * y) % 256));
    }
    return image;
}

} // namespace

/// What moves is drawn by another way than the whole window; nobody may see a seam between them.
TEST(Ring, a_frame_has_the_pixels_of_a_painted_ring) {
    constexpr double points = 120;
    const QPoint place(61, 37);
    const QImage background = window();
    for (const double ratio : {1.0, 1.5, 2.0}) {
        const QRectF square(QPointF(71, 43) * ratio / 2, QSizeF(points, points) * ratio);
        for (const double progress : {0.0, 0.01, 0.3, 0.5, 0.77, 1.0}) {
            QImage painted = background;
            painted.setDevicePixelRatio(ratio);
            QPainter painter(&painted);
            const QRectF inPoints(square.topLeft() / ratio, square.size() / ratio);
            ring::paint(painter, inPoints, progress, inPoints.adjusted(-1, -1, 1, 1));
            painter.end();

            const QRect part(place, QSize(200, 150));
            QImage frame = background.copy(part);
            ring::paintFrame(frame, background, place, square, progress, part);
            EXPECT_TRUE(frame == painted.copy(part)) << "at " << ratio << ", " << progress;
        }
    }
}

} // namespace pavonel::test
