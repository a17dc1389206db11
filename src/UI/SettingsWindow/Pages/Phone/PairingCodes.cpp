#include "UI/SettingsWindow/Pages/Phone/PairingCodes.h"

#include "Core/Characters.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Fonts.h"
#include "UI/Style/Pixels.h"
#include "UI/Style/Visuals.h"

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

CodeView::CodeView(const QString &code) : code_(charactersOf(beginning(code, longest).simplified())) {
    setAccessibleRole(*this, QAccessible::StaticText);
    setAccessibleName(code_.join(QString()));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize CodeView::sizeHint() const {
    return {240, visuals().length(panelHeight)};
}

/// Each character in the middle of a cell, all as wide as the widest.
void CodeView::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    drawBody(painter, rect(), radius, visuals().palette().window, Qt::transparent);
    if (code_.isEmpty())
        return;
    const QFontMetricsF metrics(visuals().font(fontSize));
    double cell = 0;
    for (const QString &character : code_)
        cell = std::max(cell, metrics.horizontalAdvance(character));
    cell += spacing;
    const double whole = cell * static_cast<double>(code_.size());
    const double shrink = std::min(1.0, (width() - 2 * padding) / whole);
    painter.translate(QRectF(rect()).center());
    painter.scale(shrink, shrink);
    painter.setFont(visuals().font(fontSize));
    painter.setPen(visuals().palette().text);
    double left = -whole / 2;
    for (const QString &character : code_) {
        const double inset = (cell - metrics.horizontalAdvance(character)) / 2;
        painter.drawText(QPointF(left + inset, metrics.capHeight() / 2), character);
        left += cell;
    }
}

QrCodeView::QrCodeView(const QString &text) : code_(QrCode::of(text.toUtf8())) {
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(QStringLiteral("Code for the phone’s camera"));
    setAccessibleDescription(text);
    const int side = visuals().length(132);
    setFixedSize(side, side);
}

void QrCodeView::paintEvent(QPaintEvent *) {
    constexpr int margin = 3; // modules on each side, which with the round corners cameras manage with
    QPainter painter(this);
    drawBody(painter, rect(), radius, Qt::white, visuals().palette().cardOutline);
    if (code_.side == 0)
        return;
    const double ratio = painter.deviceTransform().m11(); // device pixels a point, wherever this is drawn
    const int pixels = qRound(width() * ratio);
    const int module = std::max(1, pixels / (code_.side + 2 * margin));
    const int first = (pixels - module * code_.side) / 2;
    painter.scale(1 / ratio, 1 / ratio);
    for (int y = 0; y < code_.side; ++y) {
        for (int x = 0; x < code_.side; ++x) {
            if (code_.isDark(x, y))
                painter.fillRect(first + x * module, first + y * module, module, module, Qt::black);
        }
    }
}

} // namespace pavonel
