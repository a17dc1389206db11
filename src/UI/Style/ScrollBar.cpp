#include "UI/Style/Drawing.h"
#include "UI/Style/Visuals.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

#include <algorithm>

namespace pavonel::drawing {

namespace {

constexpr int margin = 3;
constexpr int shortest = 36;

} // namespace

QRect scrollThumb(const QStyleOptionSlider &bar) {
    const bool upright = bar.orientation == Qt::Vertical;
    const int track = (upright ? bar.rect.height() : bar.rect.width()) - 2 * margin;
    const double range = bar.maximum - bar.minimum;
    const int wanted = qRound(track * bar.pageStep / (range + bar.pageStep));
    const int length = std::clamp(wanted, std::min(shortest, std::max(track, 0)), std::max(track, 0));
    const int place = margin + QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                               track - length, bar.upsideDown);
    return upright ? QRect(bar.rect.left(), bar.rect.top() + place, bar.rect.width(), length)
                   : QRect(bar.rect.left() + place, bar.rect.top(), length, bar.rect.height());
}

/// Thin, along the outer edge of its strip; thicker and darker under the pointer.
void drawScrollBar(const Context &context, const QStyleOptionSlider &bar) {
    if (bar.maximum <= bar.minimum)
        return;
    const bool held = bar.state.testFlag(QStyle::State_Sunken);
    const bool hovered = held || bar.state.testFlag(QStyle::State_MouseOver);
    QColor ink = context.visuals.palette().text;
    ink.setAlphaF(held ? 0.45F : hovered ? 0.35F : 0.20F);
    const double thickness = hovered ? 7 : 5;
    QRectF thumb = scrollThumb(bar);
    if (bar.orientation == Qt::Vertical)
        thumb = {thumb.right() - margin - thickness, thumb.top(), thickness, thumb.height()};
    else
        thumb = {thumb.left(), thumb.bottom() - margin - thickness, thumb.width(), thickness};
    context.painter.save();
    context.painter.setRenderHint(QPainter::Antialiasing);
    context.painter.setPen(Qt::NoPen);
    context.painter.setBrush(ink);
    context.painter.drawRoundedRect(thumb, thickness / 2, thickness / 2);
    context.painter.restore();
}

} // namespace pavonel::drawing
