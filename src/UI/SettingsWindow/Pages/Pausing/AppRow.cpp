#include "UI/SettingsWindow/Pages/Pausing/AppRow.h"

#include "UI/Controls/ListRow.h"

#include <QPainter>

namespace pavonel {

namespace {

constexpr int inset = 6; // of the highlight

} // namespace

AppRow::AppRow(Visuals &visuals, const InstalledApplication &application, const QImage &icon)
    : visuals_(visuals), application_(application), icon_(icon) {
    setText(application.name);
    setAccessibleName(application.name);
    setAccessibleDescription(application.bundleIdentifier);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::TabFocus);
}

QSize AppRow::sizeHint() const {
    return {200, visuals_.lineHeight(40)};
}

void AppRow::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const Palette &palette = visuals_.palette();
    const bool lit = hasFocus() || underMouse() || isDown();
    if (lit) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(hasFocus() ? palette.accent : palette.panelButton.fill);
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, 1, -inset, -1), 7, 7);
    }
    ListRow::draw(painter, QRectF(rect()).adjusted(CardRow::margin, 0, -CardRow::margin, 0),
                  {application_.name, application_.bundleIdentifier, icon_}, visuals_,
                  hasFocus() ? palette.onAccent : palette.text,
                  hasFocus() ? palette.onAccent : palette.secondaryText);
}

} // namespace pavonel
