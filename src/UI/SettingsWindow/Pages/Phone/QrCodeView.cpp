#include "UI/SettingsWindow/Pages/Phone/QrCodeView.h"

#include "UI/Controls/Pixels.h"
#include "UI/Controls/Visuals.h"

#include <QAccessibleWidget>
#include <QPainter>

#include <algorithm>

namespace pavonel {

QrCodeView::QrCodeView(Visuals &visuals, const QString &text)
    : visuals_(visuals), code_(QrCode::of(text.toUtf8())) {
    setAccessibleName(QStringLiteral("Code for the phone’s camera"));
    setAccessibleDescription(text);
    const int side = visuals.length(132);
    setFixedSize(side, side);
}

QAccessibleInterface *QrCodeView::makeAccessible() {
    return new QAccessibleWidget(this, QAccessible::Graphic);
}

void QrCodeView::paintEvent(QPaintEvent *) {
    constexpr double radius = 10;
    constexpr int margin = 3; // modules on each side, which with the round corners cameras manage with
    QPainter painter(this);
    drawBody(painter, rect(), radius, Qt::white, visuals_.palette().cardOutline);
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
