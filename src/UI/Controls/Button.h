#pragma once

#include "UI/Style/Traits.h"

#include <QPushButton>

namespace pavonel {

/// A push button of a certain role, with a symbol where it has one. `clicked` tells.
class Button : public QPushButton {
public:
    /// `symbol` is drawn before the text.
    explicit Button(const QString &text, ButtonRole role = ButtonRole::plain, const QString &symbol = {});

    /// A small round one without a text; `name` is what a screen reader says.
    static Button *ofSymbol(const QString &symbol, const QString &name, ButtonRole role = ButtonRole::bare);

    QSize minimumSizeHint() const override { return sizeHint(); }
};

} // namespace pavonel
