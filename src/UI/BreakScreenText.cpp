#include "UI/BreakScreenText.h"

#include "UI/Fonts.h"
#include "UI/MessageText.h"
#include "UI/Ring.h"

#include <QColor>
#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace pavonel::breakScreen {

namespace {

constexpr double titleTracking = 3;

QFont titleFont() {
    QFont font = fonts::ui(13, QFont::DemiBold);
    font.setLetterSpacing(QFont::AbsoluteSpacing, titleTracking);
    return font;
}

double scaleOf(const QRectF &ring) {
    return ring.width() / ring::side;
}

/// Smaller for a time of many hours, which would run over the ring.
QFont timeFont(const QString &time, const QRectF &ring) {
    const auto size = static_cast<int>(64 * scaleOf(ring));
    const QFont font = fonts::ui(size, QFont::Thin);
    const double width = fonts::tabularWidth(QFontMetricsF(font), time);
    const double room = breakScreen::timeRect(ring).width();
    return width <= room ? font : fonts::ui(static_cast<int>(size * room / width), QFont::Thin);
}

QColor white(double opacity) {
    return QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity));
}

} // namespace

double titleHeight() {
    return std::round(QFontMetricsF(titleFont()).height());
}

QFont messageFont() {
    return fonts::ui(26, QFont::Light);
}

void paintTitle(QPainter &painter, const QRectF &rect, const QString &title) {
    constexpr double opacity = 0.55;
    const QFont font = titleFont();
    const QString text = QFontMetricsF(font).elidedText(title.toUpper(), Qt::ElideRight, rect.width());
    painter.setFont(font);
    painter.setPen(white(opacity));
    // Tracking leaves a gap behind the last letter too, which is none of the text.
    painter.drawText(rect.translated(titleTracking / 2, 0), Qt::AlignCenter | Qt::TextSingleLine, text);
}

QRectF timeRect(const QRectF &ring) {
    const double besides = 16 * scaleOf(ring);
    const double above = 80 * scaleOf(ring);
    return ring.adjusted(besides, above, -besides, -above);
}

void paintTime(QPainter &painter, const QRectF &ring, const QString &time) {
    const QFont font = timeFont(time, ring);
    const QFontMetricsF metrics(font);
    const QPointF middle = ring.center();
    painter.setFont(font);
    painter.setPen(Qt::white);
    fonts::drawTabular(painter,
                       {middle.x() - fonts::tabularWidth(metrics, time) / 2,
                        std::round(middle.y() + metrics.capHeight() / 2)},
                       time);
}

void paintMessage(QPainter &painter, const QRectF &rect, const MessageText &message) {
    constexpr double opacity = 0.9;
    painter.setPen(white(opacity));
    message.paint(painter, {rect.center().x(), rect.top()});
}

} // namespace pavonel::breakScreen
