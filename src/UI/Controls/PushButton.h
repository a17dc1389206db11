#pragma once

#include "UI/Palette.h"

#include <QAbstractButton>

namespace pavonel {

/// A button that we draw ourselves: a filled shape that answers to the pointer, with a text or a symbol.
class PushButton : public QAbstractButton {
public:
    struct Shape {
        int height;
        int radius;
        int padding; ///< Left and right of the text.
        int fontSize;
    };
    static constexpr Shape regular{28, 8, 14, 13};
    static constexpr Shape small{24, 7, 11, 12};

    PushButton(const QString &text, const ButtonColours &colours, const Shape &shape, QWidget *parent);

    /// A round one with a symbol instead of a text; `name` is what a screen reader says.
    static PushButton *round(const QString &symbol, int diameter, const QString &name,
                             const ButtonColours &colours, QWidget *parent);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void drawFocusRing(QPainter &painter) const;

    ButtonColours colours_;
    Shape shape_;
    QString symbol_;
};

} // namespace pavonel
