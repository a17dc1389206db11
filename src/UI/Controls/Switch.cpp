#include "UI/Controls/Switch.h"

#include "UI/Controls/ChoiceAccessible.h"
#include "UI/Controls/Pixels.h"

#include <QPainter>

namespace pavonel {

namespace {

constexpr double inset = 2; // of the knob in the track
constexpr Seconds slide = 0.16;

QColor between(const QColor &one, const QColor &other, double share) {
    QColor veil = other;
    veil.setAlphaF(static_cast<float>(share));
    return blended(veil, one);
}

void drawKnob(QPainter &painter, const QRectF &knob) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 18));
    painter.drawEllipse(knob.adjusted(-0.5, 0, 0.5, 1));
    painter.setBrush(QColor(0, 0, 0, 32));
    painter.drawEllipse(knob.translated(0, 0.5));
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob);
}

} // namespace

Switch::Switch(Look &look, const QString &name)
    : ControlButton(look), knob_(look.loop(), look.appearance(), [this](double) { update(); }) {
    setCheckable(true);
    setAccessibleName(name);
}

void Switch::setOn(bool on) {
    if (on == isChecked())
        return;
    setChecked(on);
    knob_.to(on, 0);
}

void Switch::nextCheckState() {
    QAbstractButton::nextCheckState();
    knob_.to(isChecked(), slide);
}

QSize Switch::bodySize() const {
    return {look_.length(38), look_.length(22)};
}

QSize Switch::sizeHint() const {
    return bodySize() + QSize(2, 2) * FocusRing::room;
}

QColor Switch::trackColour() const {
    const Palette &palette = look_.palette();
    const QColor track = between(palette.track, palette.accent, knob_.opacity());
    if (!isEnabled() || !(underMouse() || isDown()))
        return track;
    return between(track, palette.text, isDown() ? 0.12 : 0.06);
}

void Switch::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(0.45);
    const QSize size = bodySize();
    const QRectF body(QPointF(width() - size.width(), height() - size.height()) / 2, size);
    const double radius = body.height() / 2;
    drawBody(painter, body, radius, trackColour(), Qt::transparent);
    const double side = body.height() - 2 * inset;
    const double way = body.width() - side - 2 * inset;
    drawKnob(painter, QRectF(body.left() + inset + way * knob_.opacity(), body.top() + inset, side, side));
    ring_.draw(painter, body, radius, look_.palette().accentText);
}

/// The toolkit's own would check it without a click.
QAccessibleInterface *Switch::makeAccessible() {
    return new ChoiceAccessible(*this, QAccessible::CheckBox);
}

} // namespace pavonel
