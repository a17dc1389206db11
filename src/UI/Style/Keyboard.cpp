#include "UI/Style/Keyboard.h"

#include "UI/Style/FocusRing.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QScrollArea>

namespace pavonel {

namespace {

bool isArrow(const QKeyEvent &event) {
    return event.key() >= Qt::Key_Left && event.key() <= Qt::Key_Down;
}

/// Whether Qt shall not see the key.
bool takeKey(QAbstractButton &button, QKeyEvent &event) {
    if (isReturn(event)) {
        if (event.type() == QEvent::KeyPress && !event.isAutoRepeat())
            button.click();
        return true;
    }
    if (!isArrow(event) || button.group())
        return false;
    event.ignore();
    return true;
}

/// Which Qt does only for the Tab key. What is under the pointer stays there.
void bringInSight(QWidget &control) {
    for (QWidget *parent = control.parentWidget(); parent && !control.underMouse();
         parent = parent->parentWidget()) {
        if (auto *area = qobject_cast<QScrollArea *>(parent))
            area->ensureWidgetVisible(&control);
    }
}

} // namespace

bool isReturn(const QKeyEvent &event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

bool Keyboard::eventFilter(QObject *watched, QEvent *event) {
    auto *widget = static_cast<QWidget *>(watched);
    switch (event->type()) {
    case QEvent::FocusIn:
        FocusRing::focusIn(*widget, static_cast<QFocusEvent *>(event)->reason());
        bringInSight(*widget);
        return false;
    case QEvent::FocusOut:
        FocusRing::focusOut(*widget, static_cast<QFocusEvent *>(event)->reason());
        return false;
    case QEvent::KeyPress:
    case QEvent::KeyRelease: {
        auto *button = qobject_cast<QAbstractButton *>(widget);
        return button && takeKey(*button, *static_cast<QKeyEvent *>(event));
    }
    default:
        return false;
    }
}

} // namespace pavonel
