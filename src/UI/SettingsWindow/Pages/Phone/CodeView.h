#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Visuals.h"

#include <QWidget>

namespace pavonel {

/// A code to be typed elsewhere, large and evenly spaced. One that is too long for the width gets smaller.
class CodeView : public QWidget, public AccessibleControl {
public:
    CodeView(Visuals &visuals, const QString &code);

    QSize sizeHint() const override;
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Visuals &visuals_;
    QStringList code_; ///< Its characters.
};

} // namespace pavonel
