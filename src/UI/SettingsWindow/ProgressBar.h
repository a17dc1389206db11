#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Look.h"

#include <QWidget>

namespace pavonel {

/// How far something has come, from 0 to 1; what is no such number is shown as the nearer end. It takes the
/// place of a small line of text, so that nothing moves when it comes.
class ProgressBar : public QWidget, public AccessibleControl {
public:
    ProgressBar(Look &look, const QString &name, double progress);

    double progress() const { return progress_; }

    QSize sizeHint() const override;
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Look &look_;
    double progress_;
};

} // namespace pavonel
