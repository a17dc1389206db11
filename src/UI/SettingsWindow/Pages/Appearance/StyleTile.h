#pragma once

#include "UI/Controls/Visuals.h"

#include <QImage>
#include <QRadioButton>

namespace pavonel {

struct Background;

/// A theme of the break screen to choose, one of a group: its gradient in small, above its name.
class StyleTile : public QRadioButton {
public:
    StyleTile(Visuals &visuals, const Background &theme);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QSize swatchSize() const;
    QRectF swatch() const;
    void paintName(QPainter &painter, const QRectF &line) const;

    Visuals &visuals_;
    const Background &theme_;
    QImage gradient_;
};

} // namespace pavonel
