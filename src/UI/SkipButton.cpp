#include "UI/SkipButton.h"

#include "UI/Fonts.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace pavonel {

namespace {

constexpr int fontSize = 13;
constexpr double sidePadding = 18;
constexpr double verticalPadding = 9;

QColor white(double opacity) {
    return QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity));
}

} // namespace

SkipButton::SkipButton(QWidget *parent) : QAbstractButton(parent) {
    setText(QStringLiteral("Skip break  ·  esc"));
    setAccessibleName(QStringLiteral("Skip break"));
    setFont(fonts::ui(fontSize, QFont::Medium));
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::PointingHandCursor);
    resize(sizeHint());
}

QSize SkipButton::sizeHint() const {
    const QFontMetricsF metrics(font());
    return {static_cast<int>(std::ceil(metrics.horizontalAdvance(text()) + 2 * sidePadding)),
            static_cast<int>(std::round(metrics.height()) + 2 * verticalPadding)};
}

void SkipButton::paintEvent(QPaintEvent *) {
    constexpr double resting = 0.12;
    constexpr double hovered = 0.18;
    constexpr double pressed = 0.24;
    constexpr double label = 0.8;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(white(isDown() ? pressed : underMouse() ? hovered : resting));
    painter.drawRoundedRect(rect(), height() / 2.0, height() / 2.0);
    painter.setPen(white(label));
    painter.drawText(rect(), Qt::AlignCenter, text());
}

void SkipButton::enterEvent(QEnterEvent *event) {
    QAbstractButton::enterEvent(event);
    update();
}

void SkipButton::leaveEvent(QEvent *event) {
    QAbstractButton::leaveEvent(event);
    update();
}

} // namespace pavonel
