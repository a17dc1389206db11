#include "UI/Controls/Button.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Pixels.h"
#include "UI/Controls/Switch.h"
#include "UI/Controls/Visuals.h"
#include "UI/Style/Drawing.h"
#include "UI/Symbol.h"

#include <QPainter>
#include <QStyleOptionButton>

#include <cmath>

namespace pavonel::drawing {

namespace {

constexpr int bodyHeight = 28;
constexpr int discDiameter = 26;
constexpr int entryHeight = 34;
constexpr int entryPadding = 10;
constexpr int padding = 14;
constexpr double radius = 8;
constexpr double noticeRadius = 7;
constexpr int symbolGap = 6;
constexpr double knobInset = 2; // in the track

/// What Qt's dialogs make is plain.
const Button *ours(const QWidget *widget) {
    return dynamic_cast<const Button *>(widget);
}

Button::Role roleOf(const QWidget *widget) {
    const Button *button = ours(widget);
    return button ? button->role() : Button::Role::plain;
}

ButtonColours coloursOf(const QWidget *widget, const QStyleOptionButton &option, const Palette &palette) {
    switch (roleOf(widget)) {
    case Button::Role::plain:
    case Button::Role::entry:
        break;
    case Button::Role::prominent:
    case Button::Role::noticeProminent:
        return palette.prominentButton;
    case Button::Role::notice:
        return palette.panelButton;
    case Button::Role::noticeClose:
        return palette.closeButton;
    case Button::Role::bare: {
        ButtonColours bare = palette.panelButton;
        bare.fill = Qt::transparent;
        if (!(option.state & (QStyle::State_MouseOver | QStyle::State_Sunken)))
            bare.ink = palette.secondaryText;
        return bare;
    }
    case Button::Role::disc: {
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
    const Button *button = ours(context.widget);
    const QString symbol = button ? button->symbol() : QString();
    const double side = button ? button->symbolSide(context.visuals) : 0;
    const double top = body.top() + (body.height() - side) / 2;
    if (option.text.isEmpty())
        return drawSymbol(context.painter, symbol, {body.left() + (body.width() - side) / 2, top}, side, ink);
    QRectF place = body;
    if (!symbol.isEmpty()) {
        // The air within the drawing counts as padding.
        drawSymbol(context.painter, symbol, {body.left() + padding - 2, top}, side, ink);
        place.setLeft(body.left() + side + symbolGap - 2);
    }
    context.painter.setPen(ink);
    context.painter.drawText(place, Qt::AlignCenter | Qt::TextShowMnemonic, option.text);
}

QFont entryFont(const Visuals &visuals, bool chosen) {
    return visuals.font(13, chosen ? QFont::DemiBold : QFont::Medium);
}

/// Its ring is within.
void drawEntry(const Context &context, const QStyleOptionButton &option, const Button &button) {
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
    const double side = button.symbolSide(context.visuals);
    const QRectF place = QRectF(option.rect).adjusted(entryPadding, 0, -entryPadding, 0);
    drawSymbol(painter, button.symbol(), {place.left(), place.center().y() - side / 2}, side,
               chosen ? palette.accentText : palette.secondaryText);
    painter.setFont(entryFont(context.visuals, chosen));
    painter.setPen(chosen ? palette.accentText : palette.text);
    painter.drawText(place.adjusted(side + entryPadding, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft,
                     option.text);
    if (FocusRing::isOn(button)) {
        painter.setPen(QPen(palette.accentText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(option.rect).adjusted(1, 1, -1, -1), radius - 1, radius - 1);
    }
}

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
    const Button *button = ours(widget);
    if (button && button->isNotice())
        return button->noticeSize();
    if (roleOf(widget) == Button::Role::entry) {
        const QFontMetrics metrics(entryFont(visuals, true));
        return {metrics.horizontalAdvance(option.text) + qRound(button->symbolSide(visuals)) +
                    3 * entryPadding,
                visuals.lineHeight(entryHeight)};
    }
    const QSize room = QSize(2, 2) * FocusRing::room;
    if (option.text.isEmpty() && button)
        return QSize(1, 1) * Button::roundDiameter(visuals) + room;
    if (roleOf(widget) == Button::Role::disc)
        return QSize(1, 1) * visuals.length(discDiameter) + room;
    const int text = option.fontMetrics.size(Qt::TextShowMnemonic, option.text).width();
    const int symbol =
        !button || button->symbol().isEmpty() ? 0 : qRound(button->symbolSide(visuals)) + symbolGap;
    return QSize(text + symbol + 2 * padding, visuals.lineHeight(bodyHeight)) + room;
}

void drawPushButton(const Context &context, const QStyleOptionButton &option) {
    QPainter &painter = context.painter;
    const ControlPainting painting(painter, option);
    const Button *button = ours(context.widget);
    if (roleOf(context.widget) == Button::Role::entry)
        return drawEntry(context, option, *button);
    const Palette &palette = context.visuals.palette();
    const ButtonColours colours = coloursOf(context.widget, option, palette);
    const double room = button && button->isNotice() ? 0 : FocusRing::room;
    const QRectF body = QRectF(option.rect).adjusted(room, room, -room, -room);
    const bool round = option.text.isEmpty() || roleOf(context.widget) == Button::Role::disc;
    const double corner = round ? body.height() / 2 : room > 0 ? radius : noticeRadius;
    drawBody(painter, body, corner, colours, option.state & ~QStyle::State_On); // said by the colours
    drawContent(context, option, body, colours.ink);
    if (context.widget)
        FocusRing::draw(painter, *context.widget, body, corner, palette.accentText);
}

QSize switchSize(const Visuals &visuals) {
    return {visuals.length(38), visuals.length(22)};
}

/// Its knob may be on the way from one end to the other.
void drawSwitch(const Context &context, const QStyleOption &option) {
    QPainter &painter = context.painter;
    const ControlPainting painting(painter, option);
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const auto *moving = dynamic_cast<const Switch *>(context.widget);
    const double share = moving ? moving->knob() : option.state.testFlag(QStyle::State_On) ? 1 : 0;
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
