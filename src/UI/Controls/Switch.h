#pragma once

#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/ControlButton.h"
#include "UI/Fade.h"

namespace pavonel {

/// On or off. Reports what the user does through `clicked`.
class Switch : public ControlButton, public AccessibleControl {
public:
    /// `name` is what a screen reader says.
    Switch(Look &look, const QString &name);

    /// Without motion and without a report; for what did not come from the user.
    void setOn(bool on);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    QAccessibleInterface *makeAccessible() override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void nextCheckState() override;

private:
    QSize bodySize() const;
    QColor trackColour() const;

    Fade knob_; ///< 0 is off, 1 is on.
};

} // namespace pavonel
