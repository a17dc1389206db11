#include "UI/Style/Drawing.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QIcon>
#include <QPainter>
#include <QStyleOptionComboBox>

#include <algorithm>

namespace pavonel::drawing {

namespace {

constexpr int bodyHeight = 28;
constexpr int padding = 12;
constexpr int chevronInset = 10; // however large they are
constexpr int narrowest = 72;
constexpr int widest = 260;
constexpr double radius = 8;
constexpr int room = FocusRing::room;

/// From the left edge of the chevrons' place to the padding.
int chevronRoom(const Visuals &visuals) {
    return visuals.length(18);
}

/// Two small ones, one up and one down, that end at this point's left.
void drawChevrons(QPainter &painter, const QPointF &end, const Visuals &visuals) {
    const double unit = visuals.length(30) / 30.0;
    const double half = 3 * unit;
    const double rise = 3 * unit;
    const double apart = 2.2 * unit;
    const QPointF centre = end - QPointF(half, 0);
    painter.setPen(QPen(visuals.palette().secondaryText, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const double way : {-1.0, 1.0}) {
        const QPointF base = centre + QPointF(0, way * apart);
        const QPointF points[] = {base + QPointF(-half, 0), base + QPointF(0, way * rise),
                                  base + QPointF(half, 0)};
        painter.drawPolyline(points, 3);
    }
}

} // namespace

QSize comboBoxSize(const QSize &contents, const Visuals &visuals) {
    const int width = contents.width() + 2 * padding + chevronRoom(visuals);
    return QSize(std::clamp(width, narrowest, visuals.length(widest)), visuals.lineHeight(bodyHeight)) +
           QSize(2, 2) * room;
}

/// So that the text of the choice that holds lies on the button's.
QRect comboBoxList(const QRect &box, const Visuals &visuals) {
    const int aside = menuPadding + menuTextInset - padding;
    const int above = (box.height() - visuals.lineHeight(choiceHeight)) / 2 - menuPadding;
    return box.adjusted(room - aside, above, -room, 0);
}

QRect comboBoxText(const QRect &box, const Visuals &visuals) {
    return box.adjusted(room + padding, room, 6 - padding - chevronRoom(visuals) - room, -room);
}

void drawComboBox(const Context &context, const QStyleOptionComboBox &box) {
    QPainter &painter = context.painter;
    const ControlPainting painting(painter, box);
    const ButtonColours &colours = context.visuals.palette().plainButton;
    const QRectF body = QRectF(box.rect).adjusted(room, room, -room, -room);
    drawBody(painter, body, radius, colours, box.state);
    drawChevrons(painter, {body.right() - chevronInset, body.center().y()}, context.visuals);
    if (context.widget)
        FocusRing::draw(painter, *context.widget, body, radius, context.visuals.palette().accentText);
}

void drawComboBoxText(const Context &context, const QStyleOptionComboBox &box) {
    QPainter &painter = context.painter;
    const ControlPainting painting(painter, box);
    QRect place = comboBoxText(box.rect, context.visuals);
    if (!box.currentIcon.isNull()) {
        box.currentIcon.paint(&painter, place, Qt::AlignLeft | Qt::AlignVCenter);
        place.setLeft(place.left() + box.iconSize.width() + 4);
    }
    painter.setPen(context.visuals.palette().text);
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft,
                     box.fontMetrics.elidedText(box.currentText.simplified(), Qt::ElideRight, place.width()));
}

} // namespace pavonel::drawing
