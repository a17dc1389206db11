#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/ControlButton.h"

namespace pavonel {

/// A weekday that is chosen or not: its letter in a disc.
class WeekdayToggle : public ControlButton, public AccessibleControl {
public:
    /// 1 is Sunday, 7 is Saturday.
    WeekdayToggle(Look &look, int weekday);

    int weekday() const { return weekday_; }

    /// All seven, from the first day of the user's week on.
    static std::vector<int> inOrder();
    /// In English, as all texts are.
    static QString nameOf(int weekday);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int weekday_;
};

} // namespace pavonel
