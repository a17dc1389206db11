#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Look.h"
#include "UI/Controls/Pixels.h"
#include "UI/Style/Drawing.h"

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
int chevronRoom(const Look &look) {
    return look.length(18);
}

/// Two small ones, one up and one down, that end at this point's left.
void drawChevrons(QPainter &painter, const QPointF &end, const Look &look) {
    const double unit = look.length(30) / 30.0;
    const double half = 3 * unit;
    const double rise = 3 * unit;
    const double apart = 2.2 * unit;
    const QPointF centre = end - QPointF(half, 0);
    painter.setPen(QPen(look.palette().secondaryText, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const double way : {-1.0, 1.0}) {
        const QPointF base = centre + QPointF(0, way * apart);
        const QPointF points[] = {base + QPointF(-half, 0), base + QPointF(0, way * rise),
                                  base + QPointF(half, 0)};
        painter.drawPolyline(points, 3);
    }
}

} // namespace

QSize comboBoxSize(const QSize &contents, const Look &look) {
    const int width = contents.width() + 2 * padding + chevronRoom(look);
    return QSize(std::clamp(width, narrowest, look.length(widest)), look.lineHeight(bodyHeight)) +
           QSize(2, 2) * room;
}

/// So that the text of the choice that holds lies on the button's.
QRect comboBoxList(const QRect &box, const Look &look) {
    const int aside = menuPadding + menuTextInset - padding;
    const int above = (box.height() - look.lineHeight(choiceHeight)) / 2 - menuPadding;
    return box.adjusted(room - aside, above, -room, 0);
}

QRect comboBoxText(const QRect &box, const Look &look) {
    return box.adjusted(room + padding, room, 6 - padding - chevronRoom(look) - room, -room);
}

void drawComboBox(const Context &context, const QStyleOptionComboBox &box) {
    QPainter &painter = context.painter;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (!box.state.testFlag(QStyle::State_Enabled))
        painter.setOpacity(disabledOpacity);
    const ButtonColours &colours = context.look.palette().plainButton;
    const QRectF body = QRectF(box.rect).adjusted(room, room, -room, -room);
    drawBody(painter, body, radius, colours, box.state);
    drawChevrons(painter, {body.right() - chevronInset, body.center().y()}, context.look);
    if (context.widget)
        FocusRing::draw(painter, *context.widget, body, radius, context.look.palette().accentText);
    painter.restore();
}

void drawComboBoxText(const Context &context, const QStyleOptionComboBox &box) {
    QPainter &painter = context.painter;
    painter.save();
    if (!box.state.testFlag(QStyle::State_Enabled))
        painter.setOpacity(disabledOpacity);
    QRect place = comboBoxText(box.rect, context.look);
    if (!box.currentIcon.isNull()) {
        box.currentIcon.paint(&painter, place, Qt::AlignLeft | Qt::AlignVCenter);
        place.setLeft(place.left() + box.iconSize.width() + 4);
    }
    painter.setPen(context.look.palette().text);
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft,
                     box.fontMetrics.elidedText(box.currentText.simplified(), Qt::ElideRight, place.width()));
    painter.restore();
}

} // namespace pavonel::drawing
