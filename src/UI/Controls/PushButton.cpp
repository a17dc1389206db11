#include "UI/Controls/PushButton.h"

#include "UI/Controls/Pixels.h"
#include "UI/Fonts.h"
#include "UI/Symbol.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace pavonel {

PushButton::PushButton(const QString &text, const ButtonColours &colours, const Shape &shape, QWidget *parent)
    : QAbstractButton(parent), colours_(colours), shape_(shape) {
    setText(text);
    setFont(fonts::ui(shape.fontSize, QFont::Medium));
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    resize(PushButton::sizeHint());
}

PushButton *PushButton::round(const QString &symbol, int diameter, const QString &name,
                              const ButtonColours &colours, QWidget *parent) {
    auto *button = new PushButton({}, colours, {diameter, diameter / 2, 0, diameter}, parent);
    button->symbol_ = symbol;
    button->setAccessibleName(name);
    button->resize(diameter, diameter);
    return button;
}

QSize PushButton::sizeHint() const {
    if (!symbol_.isEmpty())
        return {shape_.height, shape_.height};
    const double textWidth = QFontMetricsF(font()).horizontalAdvance(text());
    return {static_cast<int>(std::ceil(textWidth)) + 2 * shape_.padding, shape_.height};
}

void PushButton::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(0.45);
    drawBody(painter, rect(), shape_.radius, colours_, *this);
    if (hasFocus())
        drawFocusRing(painter);
    if (symbol_.isEmpty()) {
        painter.setPen(colours_.ink);
        painter.drawText(rect(), Qt::AlignCenter, text());
        return;
    }
    constexpr double air = 0.14; // around the drawing, of the disc
    const double ratio = devicePixelRatioF();
    const double margin = std::round(shape_.height * air * ratio) / ratio; // between two pixels it would blur
    painter.drawImage(QPointF(margin, margin),
                      Symbol::image(symbol_, shape_.height - 2 * margin, colours_.ink, ratio));
}

void PushButton::drawFocusRing(QPainter &painter) const {
    QColor ring = colours_.ink;
    ring.setAlphaF(0.6F);
    painter.setPen(QPen(ring, 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), shape_.radius - 1.5,
                            shape_.radius - 1.5);
}

} // namespace pavonel
