#pragma once

#include <QColor>

class QFocusEvent;
class QPainter;
class QRectF;

namespace pavonel {

/// The ring around the control that has the keyboard. It is shown to those who go from control to control by
/// keys, not to those who click.
class FocusRing {
public:
    /// What a control leaves free around its body for the ring, in points.
    static constexpr int room = 4;

    void focusIn(const QFocusEvent &event);
    void focusOut(const QFocusEvent &event);
    bool isShown() const { return shown_; }

    /// Around a body with corners of this radius; nothing while it is not shown.
    void draw(QPainter &painter, const QRectF &body, double radius, const QColor &colour) const;

private:
    bool shown_ = false;
    bool returns_ = false; ///< With the window's activation.
};

} // namespace pavonel
