#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Visuals.h"

#include <QWidget>

#include <functional>

namespace pavonel {

/// The number beside a stepper, as people read it, with digits that keep their places.
class StepValue : public QWidget, public AccessibleControl {
public:
    StepValue(Visuals &visuals, std::function<QString(double)> wording);

    void setValue(double value);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Visuals &visuals_;
    std::function<QString(double)> wording_;
    QString text_;
};

} // namespace pavonel
