#include "UI/Style/Drawing.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QPainter>
#include <QStyleOptionButton>

namespace pavonel::drawing {

namespace {

constexpr int room = FocusRing::room;
constexpr double radius = 7;
constexpr int aboveName = 4;

/// The chosen tile has a ring already: what tells that it has the keyboard is its name.
void drawName(const Context &context, const QStyleOptionButton &tile, const QRectF &line, bool hasKeyboard) {
    QPainter &painter = context.painter;
    const Palette &palette = context.visuals.palette();
    const bool strong = tile.state.testAnyFlags(QStyle::State_On | QStyle::State_MouseOver);
    painter.setPen(strong ? palette.text : palette.secondaryText);
    if (hasKeyboard) {
        constexpr double around = 6;
        const double half = QFontMetricsF(painter.font()).horizontalAdvance(tile.text) / 2 + around;
        drawBody(painter, {line.center().x() - half, line.top(), 2 * half, line.height()}, 4, palette.accent,
                 Qt::transparent);
        painter.setPen(palette.onAccent);
    }
    painter.drawText(line, Qt::AlignHCenter | Qt::AlignTop, tile.text);
}

} // namespace

QSize tileSize(const QStyleOptionButton &tile) {
    return tile.iconSize + QSize(2 * room, room + aboveName + tile.fontMetrics.height());
}

void drawTile(const Context &context, const QStyleOptionButton &tile) {
    QPainter &painter = context.painter;
    const Palette &palette = context.visuals.palette();
    const QRectF picture(QPointF(room, room), tile.iconSize);
    const bool chosen = tile.state.testFlag(QStyle::State_On);
    const bool hasKeyboard = context.widget && FocusRing::isOn(*context.widget);
    QImage image = tile.icon.pixmap(tile.iconSize, painter.device()->devicePixelRatioF()).toImage();
    image.setDevicePixelRatio(1); // it is stretched to its place
    drawRounded(painter, picture, radius, image);
    drawBody(painter, picture, radius, Qt::transparent, palette.cardOutline);
    if (chosen || hasKeyboard) {
        constexpr double width = 2;
        constexpr double out = 1 + width / 2;
        painter.setPen(QPen(chosen ? palette.accent : palette.accentText, width));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(picture.adjusted(-out, -out, out, out), radius + out, radius + out);
    }
    const double top = picture.bottom() + aboveName;
    drawName(context, tile, {0, top, double(tile.rect.width()), tile.rect.height() - top}, hasKeyboard);
}

} // namespace pavonel::drawing
