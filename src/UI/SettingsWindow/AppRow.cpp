#include "UI/SettingsWindow/AppRow.h"

#include "UI/Controls/Keys.h"

#include <QFontMetricsF>
#include <QPainter>

namespace pavonel {

namespace {

constexpr int inset = 6; // of the highlight
constexpr int margin = 16;
constexpr int gap = 10;

} // namespace

AppRow::AppRow(Look &look, const InstalledApplication &application, const QImage &icon)
    : look_(look), application_(application), icon_(icon) {
    setText(application.name);
    setAccessibleName(application.name);
    setAccessibleDescription(application.bundleIdentifier);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
}

QSize AppRow::sizeHint() const {
    return {200, look_.lineHeight(40)};
}

void AppRow::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const Palette &palette = look_.palette();
    const bool lit = hasFocus() || underMouse() || isDown();
    if (lit) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(hasFocus() ? palette.accent : palette.panelButton.fill);
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, 1, -inset, -1), 7, 7);
    }
    painter.drawImage(QRectF(margin, (height() - iconSide) / 2.0, iconSide, iconSide), icon_);
    double left = margin + iconSide + gap;
    const auto write = [&](const QFont &font, const QString &text, const QColor &ink) {
        painter.setFont(font);
        painter.setPen(ink);
        const QFontMetricsF metrics(font, this);
        const double room = width() - margin - left;
        const QString shown = metrics.elidedText(text, Qt::ElideRight, room);
        painter.drawText(QRectF(left, 0, room, height()), Qt::AlignVCenter | Qt::AlignLeft, shown);
        left += metrics.horizontalAdvance(shown) + gap;
    };
    write(look_.font(13), application_.name, hasFocus() ? palette.onAccent : palette.text);
    write(look_.font(11), application_.bundleIdentifier,
          hasFocus() ? palette.onAccent : palette.secondaryText);
}

void AppRow::keyPressEvent(QKeyEvent *event) {
    if (isReturn(*event))
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace pavonel
