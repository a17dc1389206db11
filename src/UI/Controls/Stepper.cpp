#include "UI/Controls/Stepper.h"

#include "UI/Fonts.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionSpinBox>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace pavonel {

Stepper::Stepper(const QString &name, Range range, double step, Wording wording)
    : range_(range), step_(step), wording_(std::move(wording)), value_(range.least) {
    setAccessibleName(name);
    lineEdit()->hide(); // in it, digits would move as the number changes; screen readers have its text
    lineEdit()->setReadOnly(true);
    lineEdit()->setFocusPolicy(Qt::NoFocus);
    setFocusPolicy(Qt::TabFocus);
    ensurePolished(); // else the text would be laid out in a font that nobody sees, and that loaded for it
    lineEdit()->setText(wording_(value_));
    setAttribute(Qt::WA_InputMethodEnabled, false);
    setContextMenuPolicy(Qt::NoContextMenu);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Stepper::setValue(double value) {
    if (std::isnan(value) || value == value_)
        return;
    value_ = value;
    lineEdit()->setText(wording_(value));
    QAccessibleValueChangeEvent event(this, value);
    QAccessible::updateAccessibility(&event);
    updateGeometry();
    update();
}

void Stepper::moveTo(double value) {
    const double wanted = std::clamp(value, range_.least, range_.most);
    if (std::isnan(value) || wanted == value_)
        return;
    setValue(wanted);
    if (onStep)
        onStep(wanted);
}

void Stepper::stepBy(int steps) {
    if (stepEnabled().testFlag(steps > 0 ? StepUpEnabled : StepDownEnabled))
        moveTo(value_ + steps * step_);
}

QAbstractSpinBox::StepEnabled Stepper::stepEnabled() const {
    StepEnabled enabled;
    enabled.setFlag(StepUpEnabled, isEnabled() && value_ < range_.most);
    enabled.setFlag(StepDownEnabled, isEnabled() && value_ > range_.least);
    return enabled;
}

QSize Stepper::sizeHint() const {
    ensurePolished();
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    const double words = fonts::tabularWidth(QFontMetricsF(font()), text());
    return style()->sizeFromContents(QStyle::CT_SpinBox, &option,
                                     {static_cast<int>(std::ceil(words)) + 1, fontMetrics().height()}, this);
}

void Stepper::paintEvent(QPaintEvent *event) {
    QAbstractSpinBox::paintEvent(event);
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    const QRectF place =
        style()->subControlRect(QStyle::CC_SpinBox, &option, QStyle::SC_SpinBoxEditField, this);
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Text));
    const QFontMetricsF metrics(font(), this);
    const double base = std::floor((height() - std::ceil(metrics.height())) / 2) + metrics.ascent();
    fonts::drawTabular(painter, {place.right() - fonts::tabularWidth(metrics, text()), base}, text());
}

void Stepper::keyPressEvent(QKeyEvent *event) {
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Right:
    case Qt::Key_Plus:
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return stepBy(1);
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Minus:
        return stepBy(-1);
    case Qt::Key_Home:
        return moveTo(range_.least);
    case Qt::Key_End:
        return moveTo(range_.most);
    default:
        event->ignore();
    }
}

/// The page scrolls by it.
void Stepper::wheelEvent(QWheelEvent *event) {
    event->ignore();
}

} // namespace pavonel
