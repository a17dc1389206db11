#include "UI/RingInset.h"

#include <QPaintEvent>
#include <QPainter>

#include <utility>

namespace pavonel {

RingInset::RingInset(QWindow &large, const QRect &place, Paint paint)
    : QRasterWindow(&large), paint_(std::move(paint)) {
    setFlag(Qt::WindowTransparentForInput);
    setGeometry(place);
    show();
}

void RingInset::updatePart(const QRect &due) {
    update(due.translated(-position()));
}

void RingInset::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.translate(-position());
    paint_(painter, event->region().boundingRect().translated(position()));
}

} // namespace pavonel
