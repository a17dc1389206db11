#include "UI/Controls/PopUpItem.h"

#include "UI/Controls/ListItemAccessible.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace pavonel {

namespace {

constexpr int itemHeight = 28;
constexpr int right = 14;

void drawTick(QPainter &painter, const QPointF &centre, const QColor &ink) {
    painter.setPen(QPen(ink, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF points[] = {centre + QPointF(-3.8, 0.4), centre + QPointF(-1.2, 3),
                              centre + QPointF(3.8, -3.2)};
    painter.drawPolyline(points, 3);
}

} // namespace

PopUpItem::PopUpItem(Look &look, const QString &text, Mark mark) : look_(look), mark_(mark) {
    setText(text);
    setFont(look.font(13));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize PopUpItem::sizeHint() const {
    const double text = QFontMetricsF(font()).horizontalAdvance(QAbstractButton::text());
    return {static_cast<int>(std::ceil(text)) + textInset + right, look_.lineHeight(itemHeight)};
}

void PopUpItem::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Palette &palette = look_.palette();
    QColor ink = palette.text;
    if (hasFocus()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette.accent);
        painter.drawRoundedRect(rect(), 6, 6);
        ink = palette.onAccent;
    }
    if (isCurrent())
        drawTick(painter, {textInset / 2.0, height() / 2.0}, ink);
    painter.setPen(ink);
    painter.drawText(rect().adjusted(textInset, 0, -right, 0), Qt::AlignVCenter | Qt::AlignLeft, text());
}

/// Not as the list opens or scrolls below a pointer at rest.
void PopUpItem::mouseMoveEvent(QMouseEvent *event) {
    if (!hasFocus())
        setFocus(Qt::MouseFocusReason);
    QAbstractButton::mouseMoveEvent(event);
}

QAccessibleInterface *PopUpItem::makeAccessible() {
    return new ListItemAccessible(*this, [this] { return isCurrent(); });
}

} // namespace pavonel
