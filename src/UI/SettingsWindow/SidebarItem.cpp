#include "UI/SettingsWindow/SidebarItem.h"

#include "UI/Controls/FocusRing.h"
#include "UI/Controls/ListItemAccessible.h"
#include "UI/Symbol.h"

#include <QFontMetrics>
#include <QPainter>

namespace pavonel {

namespace {

constexpr int itemHeight = 34;
constexpr int padding = 10;
constexpr int symbolSide = 18;
constexpr double radius = 8;

} // namespace

SidebarItem::SidebarItem(Look &look, const QString &title, const QString &symbol)
    : look_(look), symbol_(symbol) {
    setText(title);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SidebarItem::setSelected(bool selected) {
    if (selected == selected_)
        return;
    selected_ = selected;
    setFocusPolicy(selected ? Qt::TabFocus : Qt::NoFocus);
    QAccessible::State changed;
    changed.selected = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
    update();
}

QSize SidebarItem::sizeHint() const {
    const QFontMetrics metrics(look_.font(13, QFont::DemiBold));
    return {metrics.horizontalAdvance(text()) + look_.length(symbolSide) + 3 * padding,
            look_.lineHeight(itemHeight)};
}

void SidebarItem::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Palette &palette = look_.palette();
    QColor ground = palette.selection;
    if (!selected_) {
        ground = palette.text;
        ground.setAlphaF(isDown() ? 0.09F : underMouse() ? 0.05F : 0);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(rect(), radius, radius);
    const int side = look_.length(symbolSide);
    const QImage drawing = Symbol::image(
        symbol_, side, selected_ ? palette.accentText : palette.secondaryText, devicePixelRatioF());
    painter.drawImage(QPointF(padding, (height() - side) / 2.0), drawing);
    painter.setFont(look_.font(13, selected_ ? QFont::DemiBold : QFont::Medium));
    painter.setPen(selected_ ? palette.accentText : palette.text);
    painter.drawText(rect().adjusted(padding + side + padding, 0, -padding, 0),
                     Qt::AlignVCenter | Qt::AlignLeft, text());
    if (FocusRing::isOn(*this)) {
        painter.setPen(QPen(palette.accentText, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius - 1, radius - 1);
    }
}

QAccessibleInterface *SidebarItem::makeAccessible() {
    return new ListItemAccessible(*this, [this] { return selected_; });
}

} // namespace pavonel
