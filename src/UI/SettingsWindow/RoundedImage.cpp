#include "UI/SettingsWindow/RoundedImage.h"

#include <QBrush>
#include <QImage>
#include <QPainter>

namespace pavonel {

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
