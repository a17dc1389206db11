#include "UI/Style/Drawing.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionSpinBox>

#include <cmath>

namespace pavonel::drawing {

namespace {

constexpr double radius = 7;
constexpr int beforeHalves = 8;
constexpr int room = FocusRing::room;

QSize halvesSize(const Visuals &visuals) {
    return {visuals.length(57), visuals.length(26)};
}

/// Of both halves, at the right.
QRect halvesPlace(const QRect &box, const Visuals &visuals) {
    const QSize size = halvesSize(visuals);
    const QPoint corner(box.right() + 1 - room - size.width(),
                        box.top() + (box.height() - size.height()) / 2);
    return {corner, size};
}

void drawSign(QPainter &painter, const QPointF &centre, double arm, bool plus) {
    painter.drawLine(centre - QPointF(arm, 0), centre + QPointF(arm, 0));
    if (plus)
        painter.drawLine(centre - QPointF(0, arm), centre + QPointF(0, arm));
}

void drawHalf(const Context &context, const QStyleOptionSpinBox &box, const QRectF &body, bool plus) {
    QPainter &painter = context.painter;
    const ButtonColours &colours = context.visuals.palette().plainButton;
    const bool able =
        box.stepEnabled.testFlag(plus ? QAbstractSpinBox::StepUpEnabled : QAbstractSpinBox::StepDownEnabled);
    const bool active = box.activeSubControls == (plus ? QStyle::SC_SpinBoxUp : QStyle::SC_SpinBoxDown);
    QRectF half = body;
    if (plus)
        half.setLeft(body.center().x());
    else
        half.setRight(body.center().x());
    painter.save();
    if (able && active) {
        QPainterPath outline;
        outline.addRoundedRect(body, radius, radius);
        painter.setClipRect(half);
        painter.fillPath(outline,
                         box.state.testFlag(QStyle::State_Sunken) ? colours.pressed : colours.hovered);
    }
    if (!able)
        painter.setOpacity(painter.opacity() * 0.35);
    painter.setPen(QPen(colours.ink, 1.3, Qt::SolidLine, Qt::RoundCap));
    drawSign(painter, half.center() + QPointF(plus ? 0.25 : -0.25, 0), context.visuals.length(17) / 4.0,
             plus);
    painter.restore();
}

} // namespace

QSize spinBoxSize(const QSize &contents, const Visuals &visuals) {
    return halvesSize(visuals) + QSize(contents.width() + beforeHalves + 2 * room, 2 * room);
}

QRect spinBoxPart(const QRect &box, QStyle::SubControl part, const Visuals &visuals) {
    const QRect halves = halvesPlace(box, visuals);
    switch (part) {
    case QStyle::SC_SpinBoxUp:
        return halves.adjusted(halves.width() / 2, 0, 0, 0);
    case QStyle::SC_SpinBoxDown:
        return halves.adjusted(0, 0, halves.width() / 2 - halves.width(), 0);
    case QStyle::SC_SpinBoxEditField:
        return {box.topLeft(), QSize(halves.left() - room - beforeHalves - box.left(), box.height())};
    default:
        return box;
    }
}

void drawSpinBox(const Context &context, const QStyleOptionSpinBox &box) {
    QPainter &painter = context.painter;
    const ControlPainting painting(painter, box);
    const Palette &palette = context.visuals.palette();
    const ButtonColours &colours = palette.plainButton;
    const QRectF body = halvesPlace(box.rect, context.visuals);
    drawBody(painter, body, radius, colours.fill, Qt::transparent);
    for (const bool plus : {false, true})
        drawHalf(context, box, body, plus);
    drawBody(painter, body, radius, Qt::transparent, colours.outline);
    const double middle = std::floor(body.center().x());
    drawHairline(painter, {middle, body.top() + 1}, {middle, body.bottom() - 1.5}, colours.outline);
    if (context.widget)
        FocusRing::draw(painter, *context.widget, body, radius, palette.accentText);
}

} // namespace pavonel::drawing
