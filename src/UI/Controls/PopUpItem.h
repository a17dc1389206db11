#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Look.h"

#include <QAbstractButton>

namespace pavonel {

/// One choice of a pop-up list. The one that has the keyboard is lit, and a pointer that moves gives it the
/// keyboard.
class PopUpItem : public QAbstractButton, public AccessibleControl {
public:
    enum class Mark { none, current };

    static constexpr int textInset = 28; ///< With the tick's room.

    PopUpItem(Look &look, const QString &text, Mark mark);

    bool isCurrent() const { return mark_ == Mark::current; }

    QSize sizeHint() const override;
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    Look &look_;
    Mark mark_;
};

} // namespace pavonel
