#pragma once

#include "UI/Controls/Visuals.h"

#include <QWidget>

#include <functional>

namespace pavonel {

/// The number beside a stepper, as people read it, with digits that keep their places: in a `QLabel` they
/// move as the number changes.
class StepValue : public QWidget {
public:
    StepValue(Visuals &visuals, std::function<QString(double)> wording);

    void setValue(double value);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Visuals &visuals_;
    std::function<QString(double)> wording_;
    QString text_;
};

} // namespace pavonel
