#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Look.h"

#include <QAbstractButton>

namespace pavonel {

/// One choice of a pop-up list. The one that has the keyboard is lit, and the pointer gives it the keyboard.
class PopUpItem : public QAbstractButton, public AccessibleControl {
public:
    enum class Mark { none, current };

    PopUpItem(Look &look, const QString &text, Mark mark);

    bool isCurrent() const { return mark_ == Mark::current; }

    QSize sizeHint() const override;
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;

private:
    Look &look_;
    Mark mark_;
};

} // namespace pavonel
