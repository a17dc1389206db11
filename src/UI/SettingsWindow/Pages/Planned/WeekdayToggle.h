#pragma once

#include "UI/Controls/Visuals.h"

#include <QCheckBox>

#include <vector>

namespace pavonel {

/// A weekday that is chosen or not: its letter in a disc.
class WeekdayToggle : public QCheckBox {
public:
    /// 1 is Sunday, 7 is Saturday.
    WeekdayToggle(Visuals &visuals, int weekday);

    int weekday() const { return weekday_; }

    /// Without a report; for what did not come from the user.
    void setOn(bool on);

    /// All seven, from the first day of the user's week on.
    static std::vector<int> inOrder();
    /// In English, as all texts are.
    static QString nameOf(int weekday);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Visuals &visuals_;
    int weekday_;
};

} // namespace pavonel
