#include "UI/Controls/Button.h"

#include "UI/Controls/Pixels.h"
#include "UI/Symbol.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace pavonel {

namespace {

constexpr int bodyHeight = 28;
constexpr int padding = 14;
constexpr int symbolGap = 6;

int symbolSide(const Look &look) {
    return look.length(16);
}
int roundDiameter(const Look &look) {
    return look.length(24);
}

} // namespace

Button::Button(Look &look, const QString &text, Role role, const QString &symbol)
    : ControlButton(look), role_(role), symbol_(symbol) {
    setText(text);
    setFont(look.font(13, QFont::Medium));
}

Button *Button::ofSymbol(Look &look, const QString &symbol, const QString &name) {
    auto *button = new Button(look, {}, Role::bare, symbol);
    button->setAccessibleName(name);
    return button;
}

int Button::besideSymbol(const Look &look) {
    return FocusRing::room + (roundDiameter(look) - symbolSide(look)) / 2;
}

QSize Button::sizeHint() const {
    const QSize room = QSize(2, 2) * FocusRing::room;
    if (text().isEmpty())
        return QSize(1, 1) * roundDiameter(look_) + room;
    const double textWidth = QFontMetricsF(font()).horizontalAdvance(text());
    const int symbolWidth = symbol_.isEmpty() ? 0 : symbolSide(look_) + symbolGap;
    return QSize(static_cast<int>(std::ceil(textWidth)) + symbolWidth + 2 * padding,
                 look_.lineHeight(bodyHeight)) +
           room;
}

ButtonColours Button::colours() const {
    const Palette &palette = look_.palette();
    switch (role_) {
    case Role::plain:
        return palette.plainButton;
    case Role::prominent:
        return palette.prominentButton;
    case Role::bare:
        break;
    }
    ButtonColours bare = palette.panelButton;
    bare.fill = Qt::transparent;
    bare.ink = underMouse() || isDown() ? palette.text : palette.secondaryText;
    return bare;
}

void Button::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(0.45);
    const ButtonColours paint = colours();
    constexpr double room = FocusRing::room;
    const QRectF body = QRectF(rect()).adjusted(room, room, -room, -room);
    const double radius = text().isEmpty() ? body.height() / 2 : 8;
    drawBody(painter, body, radius, paint, *this);
    drawContent(painter, body, paint.ink);
    ring_.draw(painter, body, radius, look_.palette().accentText);
}

void Button::drawContent(QPainter &painter, const QRectF &body, const QColor &ink) const {
    const double ratio = devicePixelRatioF();
    const int side = symbolSide(look_);
    const QImage drawing = Symbol::image(symbol_, side, ink, ratio);
    const double top = body.top() + (body.height() - side) / 2;
    if (text().isEmpty()) {
        painter.drawImage(QPointF(body.left() + (body.width() - side) / 2, top), drawing);
        return;
    }
    QRectF place = body;
    if (!drawing.isNull()) {
        // The air within the drawing counts as padding.
        painter.drawImage(QPointF(body.left() + padding - 2, top), drawing);
        place.setLeft(body.left() + side + symbolGap - 2);
    }
    painter.setPen(ink);
    painter.drawText(place, Qt::AlignCenter, text());
}

} // namespace pavonel
