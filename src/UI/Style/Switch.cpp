#include "UI/Style/Drawing.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Traits.h"
#include "UI/Style/Visuals.h"

#include <QPainter>
#include <QStyleOption>
#include <QVariant>
#include <QWidget>

namespace pavonel::drawing {

namespace {

constexpr double knobInset = 2; // in the track

QColor between(const QColor &one, const QColor &other, double share) {
    QColor veil = other;
    veil.setAlphaF(static_cast<float>(share));
    return blended(veil, one);
}

void drawKnob(QPainter &painter, const QRectF &knob, const QColor &fill) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 18));
    painter.drawEllipse(knob.adjusted(-0.5, 0, 0.5, 1));
    painter.setBrush(QColor(0, 0, 0, 32));
    painter.drawEllipse(knob.translated(0, 0.5));
    painter.setBrush(fill);
    painter.drawEllipse(knob);
}

} // namespace

QSize switchSize(const Visuals &visuals) {
    return {visuals.length(38), visuals.length(22)};
}

/// Its knob may be on the way from one end to the other.
void drawSwitch(const Context &context, const QStyleOption &option) {
    QPainter &painter = context.painter;
    const ControlPainting painting(painter, option);
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const QVariant knob = context.widget ? context.widget->property(knobProperty) : QVariant();
    const double share = knob.isValid() ? knob.toDouble() : option.state.testFlag(QStyle::State_On) ? 1 : 0;
    const Palette &palette = context.visuals.palette();
    QColor track = between(palette.track, palette.accent, share);
    if (enabled && option.state & (QStyle::State_MouseOver | QStyle::State_Sunken))
        track = between(track, palette.text, option.state.testFlag(QStyle::State_Sunken) ? 0.12 : 0.06);
    const QRectF body(option.rect);
    drawBody(painter, body, body.height() / 2, track, Qt::transparent);
    const double side = body.height() - 2 * knobInset;
    const double way = body.width() - side - 2 * knobInset;
    drawKnob(painter, {body.left() + knobInset + way * share, body.top() + knobInset, side, side},
             between(Qt::white, palette.onAccent, share)); // on a light accent white would not be seen
    if (context.widget)
        FocusRing::draw(painter, *context.widget, body, body.height() / 2, palette.accentText);
}

} // namespace pavonel::drawing
