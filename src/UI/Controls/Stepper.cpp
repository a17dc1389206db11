#include "UI/Controls/Stepper.h"

#include "UI/Controls/Pixels.h"

#include <QHoverEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

constexpr double radius = 7;
constexpr Seconds repeatDelay = 0.4; // of a half that is held
constexpr Seconds repeatInterval = 0.08;

} // namespace

Stepper::Stepper(Visuals &visuals, const QString &name, Range range, double step, Wording wording)
    : visuals_(visuals), range_(range), step_(step), wording_(std::move(wording)), value_(range.least) {
    setAccessibleName(name);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Stepper::setValue(double value) {
    if (std::isnan(value) || value == value_)
        return;
    const QString before = valueText();
    value_ = value;
    reportValue(before);
    if (onChange)
        onChange(value_);
    update();
}

bool Stepper::canStep(Direction direction) const {
    return isEnabled() && (direction == Direction::up ? value_ < range_.most : value_ > range_.least);
}

void Stepper::step(Direction direction) {
    if (canStep(direction))
        moveTo(direction == Direction::up ? value_ + step_ : value_ - step_);
}

void Stepper::moveTo(double value) {
    const double wanted = std::clamp(value, range_.least, range_.most);
    if (std::isnan(value) || wanted == value_)
        return;
    setValue(wanted);
    if (onStep)
        onStep(wanted);
}

QSize Stepper::bodySize() const {
    return {visuals_.length(57), visuals_.length(26)};
}

QSize Stepper::sizeHint() const {
    return bodySize() + QSize(2, 2) * FocusRing::room;
}

QRectF Stepper::body() const {
    const QSize size = bodySize();
    return {QPointF(width() - size.width(), height() - size.height()) / 2, size};
}

QRectF Stepper::half(Direction direction) const {
    QRectF area = body();
    if (direction == Direction::up)
        area.setLeft(area.center().x());
    else
        area.setRight(area.center().x());
    return area;
}

std::optional<Stepper::Direction> Stepper::halfAt(QPointF point) const {
    for (const Direction direction : {Direction::down, Direction::up}) {
        if (half(direction).contains(point))
            return direction;
    }
    return {};
}

bool Stepper::event(QEvent *event) {
    const auto before = hovered_;
    if (event->type() == QEvent::HoverMove || event->type() == QEvent::HoverEnter)
        hovered_ = halfAt(static_cast<QHoverEvent *>(event)->position());
    else if (event->type() == QEvent::HoverLeave)
        hovered_.reset();
    if (hovered_ != before)
        update();
    return QWidget::event(event);
}

void Stepper::mousePressEvent(QMouseEvent *event) {
    if (event->button() != Qt::LeftButton)
        return;
    held_ = halfAt(event->position());
    if (!held_)
        return;
    step(*held_);
    repeat_ = visuals_.loop().after(
        repeatDelay, [this] { repeat_ = visuals_.loop().every(repeatInterval, [this] { step(*held_); }); });
    update();
}

void Stepper::mouseMoveEvent(QMouseEvent *event) {
    if (held_ && halfAt(event->position()) != held_)
        release();
}

void Stepper::mouseReleaseEvent(QMouseEvent *event) {
    if (event->button() == Qt::LeftButton)
        release();
}

void Stepper::hideEvent(QHideEvent *) {
    release();
}

void Stepper::release() {
    repeat_.reset();
    held_.reset();
    update();
}

void Stepper::keyPressEvent(QKeyEvent *event) {
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Right:
    case Qt::Key_Plus:
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return step(Direction::up);
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Minus:
        return step(Direction::down);
    case Qt::Key_Home:
        return moveTo(range_.least);
    case Qt::Key_End:
        return moveTo(range_.most);
    default:
        QWidget::keyPressEvent(event);
    }
}

void Stepper::focusOutEvent(QFocusEvent *) {
    release();
}

void Stepper::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled())
        painter.setOpacity(disabledOpacity);
    const ButtonColours &colours = visuals_.palette().plainButton;
    drawBody(painter, body(), radius, colours.fill, Qt::transparent);
    for (const Direction direction : {Direction::down, Direction::up})
        drawHalf(painter, direction);
    drawBody(painter, body(), radius, Qt::transparent, colours.outline);
    const double middle = std::floor(body().center().x());
    drawHairline(painter, {middle, body().top() + 1}, {middle, body().bottom() - 1.5}, colours.outline);
    FocusRing::draw(painter, *this, body(), radius, visuals_.palette().accentText);
}

void Stepper::drawHalf(QPainter &painter, Direction direction) const {
    const ButtonColours &colours = visuals_.palette().plainButton;
    const QRectF area = half(direction);
    const bool able = canStep(direction);
    painter.save();
    if (able && (held_ == direction || hovered_ == direction)) {
        QPainterPath outline;
        outline.addRoundedRect(body(), radius, radius);
        painter.setClipRect(area);
        painter.fillPath(outline, held_ == direction ? colours.pressed : colours.hovered);
    }
    if (!able)
        painter.setOpacity(painter.opacity() * 0.35);
    const double arm = visuals_.length(17) / 4.0;
    constexpr double thickness = 1.3;
    const QPointF centre(area.center().x() + (direction == Direction::up ? 0.25 : -0.25), area.center().y());
    painter.setPen(QPen(colours.ink, thickness, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(centre - QPointF(arm, 0), centre + QPointF(arm, 0));
    if (direction == Direction::up)
        painter.drawLine(centre - QPointF(0, arm), centre + QPointF(0, arm));
    painter.restore();
}

} // namespace pavonel
