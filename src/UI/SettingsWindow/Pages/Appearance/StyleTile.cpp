#include "UI/SettingsWindow/Pages/Appearance/StyleTile.h"

#include "UI/BackgroundImage.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/Pixels.h"
#include "UI/Theme.h"

#include <QFontMetrics>
#include <QPainter>

namespace pavonel {

namespace {

constexpr double radius = 7;
constexpr int aboveName = 4;

} // namespace

StyleTile::StyleTile(Visuals &visuals, const Background &theme) : visuals_(visuals), theme_(theme) {
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setText(theme.name);
    setAccessibleName(theme.name);
    setFont(visuals.font(11));
}

QSize StyleTile::sizeHint() const {
    constexpr int room = FocusRing::room;
    return swatchSize() + QSize(2 * room, room + aboveName + QFontMetrics(font()).height());
}

QSize StyleTile::swatchSize() const {
    return {visuals_.length(76), visuals_.length(48)};
}

QRectF StyleTile::swatch() const {
    constexpr int room = FocusRing::room;
    return {QPointF(room, room), swatchSize()};
}

void StyleTile::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF place = swatch();
    const QSize pixels = (place.size() * devicePixelRatioF()).toSize();
    if (gradient_.size() != pixels)
        gradient_ = gradientImage(theme_, pixels);
    drawRounded(painter, place, radius, gradient_);
    drawBody(painter, place, radius, Qt::transparent, visuals_.palette().cardOutline);
    const Palette &palette = visuals_.palette();
    if (isChecked() || FocusRing::isOn(*this)) {
        constexpr double gap = 1;
        constexpr double width = 2;
        constexpr double out = gap + width / 2;
        painter.setPen(QPen(isChecked() ? palette.accent : palette.accentText, width));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(place.adjusted(-out, -out, out, out), radius + out, radius + out);
    }
    paintName(painter, {0, place.bottom() + aboveName, static_cast<double>(width()),
                        height() - place.bottom() - aboveName});
}

/// The chosen tile has a ring already: what tells that it has the keyboard is its name.
void StyleTile::paintName(QPainter &painter, const QRectF &line) const {
    const Palette &palette = visuals_.palette();
    painter.setPen(isChecked() || underMouse() ? palette.text : palette.secondaryText);
    if (FocusRing::isOn(*this)) {
        constexpr double around = 6;
        const double half = QFontMetricsF(font()).horizontalAdvance(text()) / 2 + around;
        drawBody(painter, {line.center().x() - half, line.top(), 2 * half, line.height()}, 4, palette.accent,
                 Qt::transparent);
        painter.setPen(palette.onAccent);
    }
    painter.drawText(line, Qt::AlignHCenter | Qt::AlignTop, text());
}

} // namespace pavonel
