#include "UI/Controls/ScrollThumb.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace pavonel {

namespace {

constexpr double margin = 3;
constexpr double shortest = 36;

} // namespace

ScrollThumb::ScrollThumb(Look &look, QScrollBar &bar, QWidget *parent)
    : QWidget(parent), look_(look), bar_(bar) {
    setAttribute(Qt::WA_Hover);
    connect(&bar, &QScrollBar::rangeChanged, this, [this] { follow(); });
    connect(&bar, &QScrollBar::valueChanged, this, [this] { follow(); });
    follow();
}

void ScrollThumb::follow() {
    setVisible(bar_.maximum() > bar_.minimum());
    update();
}

QRectF ScrollThumb::thumb() const {
    const double range = bar_.maximum() - bar_.minimum();
    const double track = height() - 2 * margin;
    const double length =
        std::clamp(track * bar_.pageStep() / (range + bar_.pageStep()), std::min(shortest, track), track);
    const double share = range > 0 ? (bar_.value() - bar_.minimum()) / range : 0;
    const double thickness = underMouse() || grip_ ? 7 : 5;
    return {QWidget::width() - margin - thickness, margin + (track - length) * share, thickness, length};
}

void ScrollThumb::paintEvent(QPaintEvent *) {
    QColor ink = look_.palette().text;
    ink.setAlphaF(grip_ ? 0.45F : underMouse() ? 0.35F : 0.20F);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    const QRectF shape = thumb();
    painter.drawRoundedRect(shape, shape.width() / 2, shape.width() / 2);
}

void ScrollThumb::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    const QRectF shape = thumb();
    const double y = event->position().y();
    if (y >= shape.top() && y <= shape.bottom())
        grip_ = y - shape.top();
    else
        bar_.triggerAction(y < shape.top() ? QScrollBar::SliderPageStepSub : QScrollBar::SliderPageStepAdd);
    update();
}

void ScrollThumb::mouseMoveEvent(QMouseEvent *event) {
    const double way = height() - 2 * margin - thumb().height();
    if (!grip_ || way <= 0)
        return;
    const double share = (event->position().y() - *grip_ - margin) / way;
    bar_.setValue(bar_.minimum() + qRound(share * (bar_.maximum() - bar_.minimum())));
}

void ScrollThumb::mouseReleaseEvent(QMouseEvent *) {
    grip_.reset();
    update();
}

} // namespace pavonel
