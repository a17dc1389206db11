#include "UI/Controls/FocusRing.h"

#include <QFocusEvent>
#include <QPainter>

namespace pavonel {

void FocusRing::focusIn(const QFocusEvent &event) {
    switch (event.reason()) {
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        shown_ = true;
        break;
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
        shown_ = returns_;
        break;
    default:
        shown_ = false;
    }
}

void FocusRing::focusOut(const QFocusEvent &event) {
    const bool comesBack =
        event.reason() == Qt::ActiveWindowFocusReason || event.reason() == Qt::PopupFocusReason;
    returns_ = comesBack && shown_;
    shown_ = false;
}

void FocusRing::draw(QPainter &painter, const QRectF &body, double radius, const QColor &colour) const {
    if (!shown_)
        return;
    constexpr double gap = 1.5;
    constexpr double width = 2;
    constexpr double out = gap + width / 2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(body.adjusted(-out, -out, out, out), radius + out, radius + out);
    painter.restore();
}

} // namespace pavonel
