#pragma once

#include <Qt>

class QColor;
class QPainter;
class QRectF;
class QWidget;

namespace pavonel {

/// The ring around the control that has the keyboard. It is shown to those who go from control to control by
/// keys, not to those who click; Qt's own is shown to both. There is one keyboard, and thus one ring.
class FocusRing {
public:
    /// What a control leaves free around its body for the ring, in points.
    static constexpr int room = 4;

    static void focusIn(const QWidget &widget, Qt::FocusReason reason);
    static void focusOut(const QWidget &widget, Qt::FocusReason reason);
    static bool isOn(const QWidget &widget);

    /// Around a body with corners of this radius; nothing while it is not on the widget.
    static void draw(QPainter &painter, const QWidget &widget, const QRectF &body, double radius,
                     const QColor &colour);
};

} // namespace pavonel
