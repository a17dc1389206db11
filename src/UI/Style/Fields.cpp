#include "UI/Style/Drawing.h"
#include "UI/Style/FocusRing.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

#include <QPainter>
#include <QStyleOptionProgressBar>

#include <algorithm>

namespace pavonel::drawing {

namespace {

constexpr int bodyHeight = 28;
constexpr int padding = 6; // beside the margin that a field has within
constexpr double radius = 7;
constexpr int room = FocusRing::room;
constexpr double barThickness = 6;

} // namespace

QSize fieldSize(const QSize &contents, const Visuals &visuals) {
    return {contents.width() + 2 * (padding + room), visuals.lineHeight(bodyHeight) + 2 * room};
}

QRect fieldContents(const QRect &field) {
    return field.adjusted(room + padding, room + 1, -room - padding, -room - 1);
}

/// Where the cursor is, a field shows that it has the keyboard however it came there.
void drawField(const Context &context, const QStyleOption &option) {
    QPainter &painter = context.painter;
    const ControlPainting painting(painter, option);
    const Palette &palette = context.visuals.palette();
    const QRectF body = QRectF(option.rect).adjusted(room, room, -room, -room);
    drawBody(painter, body, radius, palette.plainButton.fill, palette.plainButton.outline);
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        painter.setPen(QPen(palette.accentText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(body, radius, radius);
    }
}

void drawProgress(const Context &context, const QStyleOptionProgressBar &bar) {
    const Palette &palette = context.visuals.palette();
    const QRectF place(bar.rect);
    QRectF track(place.left(), place.center().y() - barThickness / 2, place.width(), barThickness);
    drawBody(context.painter, track, barThickness / 2, palette.track, Qt::transparent);
    if (bar.progress <= bar.minimum)
        return;
    const double share = double(bar.progress - bar.minimum) / (bar.maximum - bar.minimum);
    track.setWidth(std::max(barThickness, track.width() * share));
    drawBody(context.painter, track, barThickness / 2, palette.accent, Qt::transparent);
}

} // namespace pavonel::drawing
