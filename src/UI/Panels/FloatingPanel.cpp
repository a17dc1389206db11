#include "UI/Panels/FloatingPanel.h"

#include <QBitmap>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace pavonel {

namespace {

QPainterPath outline(const QRectF &body, double radius) {
    QPainterPath path;
    const double fitting = std::min({radius, body.width() / 2, body.height() / 2});
    path.addRoundedRect(body, fitting, fitting);
    return path;
}

/// Every device pixel that the rounded shape touches, so that what the window's edge cuts off is never seen.
QRegion touchedBy(const QPainterPath &shape, QSize size, qreal devicePixelRatio) {
    QBitmap mask(QSizeF(size * devicePixelRatio).toSize());
    mask.clear();
    QPainter painter(&mask);
    painter.scale(devicePixelRatio, devicePixelRatio);
    painter.setPen(QPen(Qt::color1, 0.5));
    painter.setBrush(Qt::color1);
    painter.drawPath(shape);
    painter.end();
    return QRegion(mask);
}

} // namespace

FloatingPanel::FloatingPanel(const DisplayServices &display, const Make &make)
    : display_(display), make_(make), palette_(display.appearance.wishes()),
      onAppearance_(display.appearance.onChange([this] { takeColours(); })),
      blends_(display.layers.canBlend()), opacity_(*this, fadingOn(display.layers)) {
    Qt::WindowFlags flags = display.layers.windowFlags(WindowLayer::panel);
    if (make.mouse == Mouse::ignored)
        flags |= Qt::WindowTransparentForInput;
    setWindowFlags(flags);
    setWindowTitle(make.title);
    setAccessibleName(make.title);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground, blends_);
    setFocusPolicy(Qt::NoFocus);
    if (blends_) {
        shadow_.emplace(make.shadow, make.size, make.radius);
        setContentsMargins(PanelShadow::room(make.shadow));
    }
    setFixedSize(make.size.grownBy(contentsMargins()));
}

void FloatingPanel::takeColours() {
    palette_ = Palette(display_.appearance.wishes());
    update();
}

void FloatingPanel::present(QPoint corner, const std::optional<Screen> &screen) {
    const Screen place = screen.value_or(Screen());
    moveTo(corner);
    winId();
    if (!blends_ || make_.mouse == Mouse::received) {
        const QRegion shape = touchedBy(outline(contentsRect(), make_.radius), size(), devicePixelRatioF());
        display_.layers.cutTo(*windowHandle(), shape);
    }
    display_.layers.show(*windowHandle(), WindowLayer::panel, place);
}

void FloatingPanel::moveTo(QPoint corner) {
    move(corner - contentsRect().topLeft());
}

void FloatingPanel::retire() {
    last_ = opacity_.wholePicture(); // the fade goes on from where it stands
    setEnabled(false);
    const auto contents = findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *content : contents)
        content->hide();
}

void FloatingPanel::paintEvent(QPaintEvent *) {
    QPainter painter(this);
    if (!last_.isNull()) {
        painter.drawPixmap(0, 0, last_);
        return;
    }
    if (shadow_)
        shadow_->paint(painter);
    paintMaterial(painter);
}

void FloatingPanel::paintMaterial(QPainter &painter) const {
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF body = contentsRect();
    const double pixel = 1 / devicePixelRatioF();
    QColor material = palette_.panel;
    if (!blends_) {
        // The mask has no half pixels; the outline's colour fills those that the curve cuts.
        material = blended(material, palette_.window);
        painter.fillRect(body, blended(palette_.panelOutline, material));
    }
    painter.fillPath(outline(body, make_.radius), material);
    painter.setBrush(Qt::NoBrush);
    const auto line = [&](const QColor &colour, double width) {
        painter.setPen(QPen(colour, width));
        const QRectF middle = body.adjusted(width / 2, width / 2, -width / 2, -width / 2);
        painter.drawPath(outline(middle, make_.radius - width / 2));
    };
    line(QColor::fromRgbF(1, 1, 1, static_cast<float>(make_.borderOpacity)), 1);
    line(palette_.panelOutline, pixel);
}

std::optional<Screen> mainScreen(const std::vector<Screen> &screens) {
    const auto main = std::ranges::find_if(screens, &Screen::isMain);
    return main == screens.end() ? std::nullopt : std::optional(*main);
}

} // namespace pavonel
