#include "UI/Style/Drawing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QPainter>
#include <QStyleOptionMenuItem>
#include <QWidget>

#include <cmath>

namespace pavonel::drawing {

namespace {

constexpr int lineHeight = 26;
constexpr int separatorHeight = 9;
constexpr int inset = 11; // of the text, from either end of a line
constexpr int beforeShortcut = 28;

bool canBeTicked(const QStyleOptionMenuItem &item) {
    return item.checkType != QStyleOptionMenuItem::NotCheckable;
}

int textInset(const QStyleOptionMenuItem &item) {
    return canBeTicked(item) ? menuTextInset : inset;
}

/// The text and, behind a tab, its key.
QStringList parts(const QStyleOptionMenuItem &item) {
    return item.text.split(u'\t');
}

void drawSeparator(QPainter &painter, const QRectF &line, const Palette &colours) {
    const double middle = std::floor(line.center().y());
    painter.fillRect(QRectF(line.left() + inset, middle, line.width() - 2 * inset, 1), colours.cardOutline);
}

/// Says that a line opens a menu of its own.
void drawChevron(QPainter &painter, const QRectF &line, const QColor &ink) {
    painter.setPen(QPen(ink, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF tip(line.right() - inset, line.center().y());
    const QPointF points[] = {tip + QPointF(-4, -4), tip, tip + QPointF(-4, 4)};
    painter.drawPolyline(points, 3);
}

void drawTick(QPainter &painter, const QPointF &centre, const QColor &ink) {
    painter.setPen(QPen(ink, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF points[] = {centre + QPointF(-3.8, 0.4), centre + QPointF(-1.2, 3),
                              centre + QPointF(3.8, -3.2)};
    painter.drawPolyline(points, 3);
}

void drawLine(QPainter &painter, const QStyleOptionMenuItem &item, const Palette &colours) {
    const bool enabled = item.state.testFlag(QStyle::State_Enabled);
    const bool chosen = enabled && item.state.testFlag(QStyle::State_Selected);
    painter.setRenderHint(QPainter::Antialiasing);
    if (chosen)
        drawBody(painter, item.rect, 6, colours.accent, Qt::transparent);
    const QColor quiet = chosen ? colours.onAccent : colours.secondaryText;
    const QColor ink = enabled && !chosen ? colours.text : quiet;
    if (item.checked)
        drawTick(painter, QPointF(item.rect.left() + menuTextInset / 2.0, QRectF(item.rect).center().y()),
                 ink);
    const QStringList texts = parts(item);
    const QRect room = item.rect.adjusted(textInset(item), 0, -inset, 0);
    painter.setFont(item.font);
    painter.setPen(ink);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextHideMnemonic, texts[0]);
    painter.setPen(quiet);
    if (texts.size() > 1)
        painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter, texts[1]);
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu)
        drawChevron(painter, item.rect, quiet);
}

} // namespace

QSize menuLineSize(const QStyleOptionMenuItem &item, const QSize &contents, const Visuals &visuals) {
    if (item.menuItemType == QStyleOptionMenuItem::Separator)
        return {contents.width(), separatorHeight};
    const bool extra = item.menuItemType == QStyleOptionMenuItem::SubMenu || parts(item).size() > 1;
    const int text = canBeTicked(item) ? item.fontMetrics.horizontalAdvance(item.text) : contents.width();
    return {text + textInset(item) + inset + (extra ? beforeShortcut : 0),
            visuals.lineHeight(canBeTicked(item) ? choiceHeight : lineHeight)};
}

void drawMenu(const Context &context, const QRect &rect) {
    const Palette &colours = context.visuals.palette();
    const bool blends = context.widget && context.widget->testAttribute(Qt::WA_TranslucentBackground);
    if (!blends)
        context.painter.fillRect(rect, colours.card);
    drawBody(context.painter, rect, blends ? 10 : 0, colours.card, colours.cardOutline);
}

void drawMenuLine(const Context &context, const QStyleOptionMenuItem &item) {
    context.painter.save();
    if (item.menuItemType == QStyleOptionMenuItem::Separator)
        drawSeparator(context.painter, item.rect, context.visuals.palette());
    else
        drawLine(context.painter, item, context.visuals.palette());
    context.painter.restore();
}

} // namespace pavonel::drawing
