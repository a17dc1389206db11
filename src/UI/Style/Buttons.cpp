#include "UI/Style/Drawing.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Traits.h"
#include "UI/Style/Visuals.h"
#include "UI/Symbol.h"

#include <QPainter>
#include <QStyleOptionButton>
#include <QVariant>
#include <QWidget>

#include <cmath>

namespace pavonel {

namespace {

constexpr char roleProperty[] = "role";
constexpr char symbolProperty[] = "symbol";
constexpr int symbolSide = 16;

int roundDiameter(const Visuals &visuals) {
    return visuals.length(24);
}

} // namespace

ButtonTraits ButtonTraits::of(const QWidget *widget) {
    if (!widget)
        return {};
    return {static_cast<ButtonRole>(widget->property(roleProperty).toInt()),
            widget->property(symbolProperty).toString()};
}

void ButtonTraits::giveTo(QWidget &widget) const {
    widget.setProperty(roleProperty, static_cast<int>(role));
    widget.setProperty(symbolProperty, symbol);
}

int besideSymbol() {
    return FocusRing::room + (roundDiameter(visuals()) - visuals().length(symbolSide)) / 2;
}

namespace drawing {

namespace {

constexpr int bodyHeight = 28;
constexpr int discDiameter = 26;
constexpr int entryHeight = 34;
constexpr int entryPadding = 10;
constexpr int padding = 14;
constexpr double radius = 8;
constexpr double noticeRadius = 7;
constexpr int symbolGap = 6;
constexpr int noticeHeight = 24;
constexpr int noticePadding = 11;
constexpr int closeDiameter = 18;
constexpr double closeAir = 0.14; // around the drawing, of the disc

double symbolSideOf(const ButtonTraits &button, const QWidget *widget, const Visuals &visuals) {
    if (!button.isNotice())
        return visuals.length(button.role == ButtonRole::entry ? 18 : symbolSide);
    const double ratio = widget->devicePixelRatioF(); // between two pixels it would blur
    return closeDiameter - 2 * std::round(closeDiameter * closeAir * ratio) / ratio;
}

QSize noticeSize(const QStyleOptionButton &option) {
    if (option.text.isEmpty())
        return {closeDiameter, closeDiameter};
    return {option.fontMetrics.horizontalAdvance(option.text) + 2 * noticePadding, noticeHeight};
}

ButtonColours coloursOf(ButtonRole role, const QStyleOptionButton &option, const Palette &palette) {
    switch (role) {
    case ButtonRole::plain:
    case ButtonRole::entry:
    case ButtonRole::tile:
        break;
    case ButtonRole::prominent:
    case ButtonRole::noticeProminent:
        return palette.prominentButton;
    case ButtonRole::notice:
        return palette.panelButton;
    case ButtonRole::noticeClose:
        return palette.closeButton;
    case ButtonRole::bare: {
        ButtonColours bare = palette.panelButton;
        bare.fill = Qt::transparent;
        if (!(option.state & (QStyle::State_MouseOver | QStyle::State_Sunken)))
            bare.ink = palette.secondaryText;
        return bare;
    }
    case ButtonRole::disc: {
        if (option.state.testFlag(QStyle::State_On))
            return palette.prominentButton;
        ButtonColours off = palette.plainButton;
        off.ink = palette.secondaryText;
        return off;
    }
    }
    return palette.plainButton;
}

void drawSymbol(QPainter &painter, const QString &symbol, const QPointF &corner, double side,
                const QColor &ink) {
    painter.drawImage(corner, Symbol::image(symbol, side, ink, painter.device()->devicePixelRatioF()));
}

/// In the middle; a symbol before the text.
void drawContent(const Context &context, const QStyleOptionButton &option, const QRectF &body,
                 const QColor &ink) {
    const ButtonTraits button = ButtonTraits::of(context.widget);
    const double side = symbolSideOf(button, context.widget, context.visuals);
    const double top = body.top() + (body.height() - side) / 2;
    if (option.text.isEmpty())
        return drawSymbol(context.painter, button.symbol, {body.left() + (body.width() - side) / 2, top},
                          side, ink);
    QRectF place = body;
    if (!button.symbol.isEmpty()) {
        // The air within the drawing counts as padding.
        drawSymbol(context.painter, button.symbol, {body.left() + padding - 2, top}, side, ink);
        place.setLeft(body.left() + side + symbolGap - 2);
    }
    context.painter.setPen(ink);
    context.painter.drawText(place, Qt::AlignCenter | Qt::TextShowMnemonic, option.text);
}

QFont entryFont(const Visuals &visuals, bool chosen) {
    return visuals.font(13, chosen ? QFont::DemiBold : QFont::Medium);
}

/// Its ring is within.
void drawEntry(const Context &context, const QStyleOptionButton &option, const ButtonTraits &button) {
    QPainter &painter = context.painter;
    const Palette &palette = context.visuals.palette();
    const bool chosen = option.state.testFlag(QStyle::State_On);
    QColor veil = palette.text;
    veil.setAlphaF(option.state.testFlag(QStyle::State_Sunken)      ? 0.09F
                   : option.state.testFlag(QStyle::State_MouseOver) ? 0.05F
                                                                    : 0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(chosen ? palette.selection : veil);
    painter.drawRoundedRect(option.rect, radius, radius);
    const double side = symbolSideOf(button, context.widget, context.visuals);
    const QRectF place = QRectF(option.rect).adjusted(entryPadding, 0, -entryPadding, 0);
    drawSymbol(painter, button.symbol, {place.left(), place.center().y() - side / 2}, side,
               chosen ? palette.accentText : palette.secondaryText);
    painter.setFont(entryFont(context.visuals, chosen));
    painter.setPen(chosen ? palette.accentText : palette.text);
    painter.drawText(place.adjusted(side + entryPadding, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft,
                     option.text);
    if (FocusRing::isOn(*context.widget)) {
        painter.setPen(QPen(palette.accentText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(option.rect).adjusted(1, 1, -1, -1), radius - 1, radius - 1);
    }
}

} // namespace

ControlPainting::ControlPainting(QPainter &painter, const QStyleOption &control) : painter_(painter) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (!control.state.testFlag(QStyle::State_Enabled))
        painter.setOpacity(disabledOpacity);
}

ControlPainting::~ControlPainting() {
    painter_.restore();
}

QSize pushButtonSize(const QStyleOptionButton &option, const Visuals &visuals, const QWidget *widget) {
    const ButtonTraits button = ButtonTraits::of(widget);
    if (button.isNotice())
        return noticeSize(option);
    if (button.role == ButtonRole::tile)
        return tileSize(option);
    const int symbol = button.symbol.isEmpty() ? 0 : qRound(symbolSideOf(button, widget, visuals));
    if (button.role == ButtonRole::entry) {
        const QFontMetrics metrics(entryFont(visuals, true));
        return {metrics.horizontalAdvance(option.text) + symbol + 3 * entryPadding,
                visuals.lineHeight(entryHeight)};
    }
    const QSize room = QSize(2, 2) * FocusRing::room;
    if (option.text.isEmpty() && symbol > 0)
        return QSize(1, 1) * roundDiameter(visuals) + room;
    if (button.role == ButtonRole::disc)
        return QSize(1, 1) * visuals.length(discDiameter) + room;
    const int text = option.fontMetrics.size(Qt::TextShowMnemonic, option.text).width();
    const int beforeText = symbol > 0 ? symbol + symbolGap : 0;
    return QSize(text + beforeText + 2 * padding, visuals.lineHeight(bodyHeight)) + room;
}

void drawPushButton(const Context &context, const QStyleOptionButton &option) {
    QPainter &painter = context.painter;
    const ControlPainting painting(painter, option);
    const ButtonTraits button = ButtonTraits::of(context.widget);
    if (button.role == ButtonRole::entry)
        return drawEntry(context, option, button);
    if (button.role == ButtonRole::tile)
        return drawTile(context, option);
    const Palette &palette = context.visuals.palette();
    const ButtonColours colours = coloursOf(button.role, option, palette);
    const double room = button.isNotice() ? 0 : FocusRing::room;
    const QRectF body = QRectF(option.rect).adjusted(room, room, -room, -room);
    const bool round = option.text.isEmpty() || button.role == ButtonRole::disc;
    const double corner = round ? body.height() / 2 : room > 0 ? radius : noticeRadius;
    drawBody(painter, body, corner, colours, option.state & ~QStyle::State_On); // said by the colours
    drawContent(context, option, body, colours.ink);
    if (context.widget)
        FocusRing::draw(painter, *context.widget, body, corner, palette.accentText);
}

} // namespace drawing

} // namespace pavonel
