#pragma once

#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Look.h"

#include <QAbstractButton>

namespace pavonel {

/// What all buttons of a window with a look have in common: the ring while keys lead to them, and the keys.
/// They act on Space and Return. The arrow keys lead from one of a group to the next; without a group they
/// are left to whatever the button lies in.
class ControlButton : public QAbstractButton {
protected:
    explicit ControlButton(Look &look);

    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

    Look &look_;
    FocusRing ring_;
};

} // namespace pavonel
