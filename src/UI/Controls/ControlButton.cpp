#include "UI/Controls/ControlButton.h"

#include "UI/Controls/Keys.h"

namespace pavonel {

ControlButton::ControlButton(Look &look) : look_(look) {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ControlButton::focusInEvent(QFocusEvent *event) {
    ring_.focusIn(*event);
    QAbstractButton::focusInEvent(event);
}

void ControlButton::focusOutEvent(QFocusEvent *event) {
    ring_.focusOut(*event);
    QAbstractButton::focusOutEvent(event);
}

void ControlButton::keyPressEvent(QKeyEvent *event) {
    if (isReturn(*event))
        click();
    else if (isArrow(*event) && !group())
        event->ignore();
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace pavonel
