#include "UI/SettingsWindow/Pages/Phone/CodeView.h"

#include "Core/Characters.h"
#include "UI/Controls/Pixels.h"
#include "UI/Fonts.h"

#include <QAccessibleWidget>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace pavonel {

namespace {

constexpr int fontSize = 40;
constexpr int panelHeight = 88;
constexpr double padding = 20;
constexpr double spacing = 12; // between characters
constexpr qsizetype longest = 64;
constexpr double radius = 10;

} // namespace

CodeView::CodeView(Visuals &visuals, const QString &code)
    : visuals_(visuals), code_(charactersOf(beginning(code, longest).simplified())) {
    setAccessibleName(code_.join(QString()));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize CodeView::sizeHint() const {
    return {240, visuals_.length(panelHeight)};
}

QAccessibleInterface *CodeView::makeAccessible() {
    return new QAccessibleWidget(this, QAccessible::StaticText);
}

/// Each character in the middle of a cell, all as wide as the widest.
void CodeView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    drawBody(painter, rect(), radius, visuals_.palette().window, Qt::transparent);
    if (code_.isEmpty())
        return;
    const QFontMetricsF metrics(visuals_.font(fontSize));
    double cell = 0;
    for (const QString &character : code_)
        cell = std::max(cell, metrics.horizontalAdvance(character));
    cell += spacing;
    const double whole = cell * static_cast<double>(code_.size());
    const double shrink = std::min(1.0, (width() - 2 * padding) / whole);
    painter.translate(QRectF(rect()).center());
    painter.scale(shrink, shrink);
    painter.setFont(visuals_.font(fontSize));
    painter.setPen(visuals_.palette().text);
    double left = -whole / 2;
    for (const QString &character : code_) {
        const double inset = (cell - metrics.horizontalAdvance(character)) / 2;
        painter.drawText(QPointF(left + inset, metrics.capHeight() / 2), character);
        left += cell;
    }
}

} // namespace pavonel
