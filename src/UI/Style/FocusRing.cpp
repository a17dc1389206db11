#include "UI/Style/FocusRing.h"

#include <QPainter>
#include <QPointer>
#include <QWidget>

namespace pavonel {

namespace {

struct State {
    QPointer<const QWidget> ringed;
    QPointer<const QWidget> returning; ///< With the window's activation.
};

State &state() {
    static State one;
    return one;
}

} // namespace

void FocusRing::focusIn(const QWidget &widget, Qt::FocusReason reason) {
    switch (reason) {
    case Qt::TabFocusReason:
    case Qt::BacktabFocusReason:
    case Qt::ShortcutFocusReason:
        state().ringed = &widget;
        break;
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
        state().ringed = state().returning == &widget ? &widget : nullptr;
        break;
    default:
        state().ringed = nullptr;
    }
}

void FocusRing::focusOut(const QWidget &widget, Qt::FocusReason reason) {
    const bool comesBack = reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason;
    if (!comesBack)
        state().returning = nullptr;
    else if (isOn(widget))
        state().returning = &widget;
    state().ringed = nullptr;
}

bool FocusRing::isOn(const QWidget &widget) {
    return state().ringed == &widget;
}

void FocusRing::draw(QPainter &painter, const QWidget &widget, const QRectF &body, double radius,
                     const QColor &colour) {
    if (!isOn(widget))
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
