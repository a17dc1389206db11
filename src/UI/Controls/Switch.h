#pragma once

#include "UI/Fade.h"

#include <QCheckBox>

namespace pavonel {

/// A check box whose knob glides when the user turns it, which takes a memory of its own beside the style.
/// `toggled` tells what the user does.
class Switch : public QCheckBox {
public:
    /// `name` is what a screen reader says.
    explicit Switch(const QString &name);

    /// Without motion and without a report; for what did not come from the user.
    void setOn(bool on);

private:
    Fade knob_;
};

} // namespace pavonel
