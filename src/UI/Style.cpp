#include "UI/Style.h"

#include <QMenu>
#include <QPainter>
#include <QStyleOptionMenuItem>

#include <cmath>

namespace pavonel {

namespace {

constexpr int padding = 5; // between the menu's edge and its lines
constexpr int lineHeight = 26;
constexpr int separatorHeight = 9;
constexpr int inset = 11; // of the text, from either end of a line
constexpr int beforeShortcut = 28;

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

void drawLine(QPainter &painter, const QStyleOptionMenuItem &item, const Palette &colours) {
    const bool enabled = item.state.testFlag(QStyle::State_Enabled);
    const bool chosen = enabled && item.state.testFlag(QStyle::State_Selected);
    painter.setRenderHint(QPainter::Antialiasing);
    if (chosen) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(colours.accent);
        painter.drawRoundedRect(item.rect, 6, 6);
    }
    const QColor quiet = chosen ? colours.onAccent : colours.secondaryText;
    const QStringList texts = parts(item);
    const QRect room = item.rect.adjusted(inset, 0, -inset, 0);
    painter.setFont(item.font);
    painter.setPen(enabled && !chosen ? colours.text : quiet);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextHideMnemonic, texts[0]);
    painter.setPen(quiet);
    if (texts.size() > 1)
        painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter, texts[1]);
    if (item.menuItemType == QStyleOptionMenuItem::SubMenu)
        drawChevron(painter, item.rect, quiet);
}

} // namespace

Style::Style(Platform &platform) : QProxyStyle(QStringLiteral("Fusion")), look_(platform) {}

void Style::polish(QWidget *widget) {
    QProxyStyle::polish(widget);
    if (!qobject_cast<QMenu *>(widget))
        return;
    look_.refresh();
    look_.refreshTextSize();
    widget->setFont(look_.font(13));
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const {
    if (metric == PM_MenuHMargin || metric == PM_MenuVMargin)
        return padding;
    if (metric == PM_MenuPanelWidth)
        return 0;
    return QProxyStyle::pixelMetric(metric, option, widget);
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                              const QWidget *widget) const {
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (type != CT_MenuItem || !item)
        return QProxyStyle::sizeFromContents(type, option, contents, widget);
    if (item->menuItemType == QStyleOptionMenuItem::Separator)
        return {contents.width(), separatorHeight};
    const bool extra = item->menuItemType == QStyleOptionMenuItem::SubMenu || parts(*item).size() > 1;
    return {contents.width() + 2 * inset + (extra ? beforeShortcut : 0), look_.lineHeight(lineHeight)};
}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                          const QWidget *widget) const {
    if (element == PE_FrameMenu)
        return;
    if (element != PE_PanelMenu)
        return QProxyStyle::drawPrimitive(element, option, painter, widget);
    const Palette &colours = look_.palette();
    painter->fillRect(option->rect, colours.card);
    painter->setPen(colours.cardOutline);
    painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
}

void Style::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                        const QWidget *widget) const {
    if (element == CE_MenuEmptyArea)
        return;
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (element != CE_MenuItem || !item)
        return QProxyStyle::drawControl(element, option, painter, widget);
    if (item->menuItemType == QStyleOptionMenuItem::Separator)
        drawSeparator(*painter, item->rect, look_.palette());
    else
        drawLine(*painter, *item, look_.palette());
}

} // namespace pavonel
