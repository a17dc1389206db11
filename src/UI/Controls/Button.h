#pragma once

#include "UI/Controls/ControlButton.h"

namespace pavonel {

/// A push button. `clicked` tells.
class Button : public ControlButton {
public:
    enum class Role {
        plain,
        prominent, ///< What most people want to do here; at most one a page.
        bare,      ///< Only its symbol, until the pointer or the keyboard is there.
    };

    /// `symbol` is drawn before the text.
    Button(Look &look, const QString &text, Role role = Role::plain, const QString &symbol = {});

    /// A small round one without a text; `name` is what a screen reader says.
    static Button *ofSymbol(Look &look, const QString &symbol, const QString &name);

    /// From the right edge of a round one to that of its symbol.
    static int besideSymbol(const Look &look);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    ButtonColours colours() const;
    void drawContent(QPainter &painter, const QRectF &body, const QColor &ink) const;

    Role role_;
    QString symbol_;
};

} // namespace pavonel
