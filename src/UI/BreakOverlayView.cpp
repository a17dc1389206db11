#include "UI/BreakOverlayView.h"

#include "Platform/Platform.h"
#include "UI/Backgrounds.h"
#include "UI/ClockText.h"
#include "UI/Fonts.h"
#include "UI/Ring.h"
#include "UI/SkipButton.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <cmath>

namespace pavonel {

namespace {

constexpr double titleTracking = 3;

QFont titleFont() {
    QFont font = fonts::ui(13, QFont::DemiBold);
    font.setLetterSpacing(QFont::AbsoluteSpacing, titleTracking);
    return font;
}

/// Smaller for a time of many hours, which would run over the ring.
QFont timeFont(const QString &time, double room) {
    constexpr int size = 64;
    const QFont font = fonts::ui(size, QFont::Thin);
    const double width = fonts::tabularWidth(QFontMetricsF(font), time);
    return width <= room ? font : fonts::ui(static_cast<int>(size * room / width), QFont::Thin);
}

QFont messageFont() {
    return fonts::ui(26, QFont::Light);
}

QColor white(double opacity) {
    return QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity));
}

} // namespace

BreakOverlayView::BreakOverlayView(BreakController &controller, Settings &settings, Platform &platform,
                                   Backgrounds &backgrounds, Role role, QWidget *parent)
    : QWidget(parent), controller_(controller), settings_(settings), loop_(*platform.mainLoop),
      backgrounds_(backgrounds), role_(role),
      glide_(*platform.mainLoop, *platform.appearance, [this] { updateArc(); }) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    shown_ = content();
    observations_.push_back(settings_.observe([this] { refreshSoon(); }));
    if (!isPrimary())
        return;
    observations_.push_back(controller_.observe([this] { refreshSoon(); }));
    drawnProgress_ = shown_.progress;
    glide_.jumpTo(drawnProgress_);
    skip_ = new SkipButton(this);
    connect(skip_, &QAbstractButton::clicked, this,
            [this] { controller_.endBreak(BreakController::Ending::cutShort); });
}

BreakOverlayView::~BreakOverlayView() = default;

double BreakOverlayView::progress() const {
    const Seconds total = controller_.breakTotal;
    if (!(total > 0))
        return 0;
    const double over = 1 - controller_.breakRemaining / total;
    return over > 0 ? std::min(over, 1.0) : 0; // what is no number is not over either
}

void BreakOverlayView::freeze() {
    observations_.clear();
    refresh();
}

BreakOverlayView::Content BreakOverlayView::content() const {
    Content content;
    content.still.backgroundStyle = settings_.backgroundStyle;
    content.still.backgroundPath = settings_.customBackgroundPath;
    if (!isPrimary())
        return content;
    content.still.title = controller_.breakTitle->toUpper();
    content.still.message = controller_.breakMessage;
    content.still.skipPermitted = settings_.isSkipPermitted();
    content.time = clockText(controller_.breakRemaining);
    content.progress = progress();
    return content;
}

/// Notices come before the change, and several for one tick.
void BreakOverlayView::refreshSoon() {
    if (std::exchange(refreshPending_, true))
        return;
    loop_.post([self = QPointer(this)] {
        if (self && self->refreshPending_)
            self->refresh();
    });
}

void BreakOverlayView::refresh() {
    refreshPending_ = false;
    const Content before = std::exchange(shown_, content());
    if (shown_.progress != before.progress) {
        constexpr double halfPixel = 0.5;
        glide_.setSmallestStep(halfPixel / (ring::circumference() * devicePixelRatioF()));
        glide_.glideTo(shown_.progress);
    }
    if (shown_.time != before.time)
        update(timeRect().toAlignedRect());
    if (shown_.still == before.still)
        return;
    arrange();
    update();
}

void BreakOverlayView::updateArc() {
    const QRectF changed = ring::changed(layout_.ring, drawnProgress_, glide_.reached());
    drawnProgress_ = glide_.reached();
    update(changed.toAlignedRect());
}

void BreakOverlayView::arrange() {
    if (!isPrimary())
        return;
    BreakLayout::Sizes sizes;
    sizes.titleHeight = std::round(QFontMetricsF(titleFont()).height());
    if (shown_.still.skipPermitted)
        sizes.skip = skip_->sizeHint();
    const double textWidth = std::min(BreakLayout::roomForText(size()), BreakLayout::widestMessage);
    message_.emplace(shown_.still.message, messageFont(), textWidth,
                     BreakLayout::roomForMessage(size(), sizes));
    sizes.messageHeight = message_->height();
    layout_ = BreakLayout::of(size(), sizes);
    setAccessibleName(shown_.still.title);
    setAccessibleDescription(shown_.still.message);
    skip_->setVisible(shown_.still.skipPermitted);
    skip_->setGeometry(QRect(layout_.skip.topLeft().toPoint(), skip_->sizeHint()));
}

void BreakOverlayView::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    arrange();
}

/// The same for every time, so that no digit stays behind.
QRectF BreakOverlayView::timeRect() const {
    constexpr double besides = 16;
    constexpr double above = 80;
    return layout_.ring.adjusted(besides, above, -besides, -above);
}

void BreakOverlayView::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    paintBackground(painter);
    if (!isPrimary())
        return;
    const auto isDue = [event](const QRectF &rect) {
        return event->region().intersects(rect.toAlignedRect());
    };
    if (isDue(layout_.ring.adjusted(-1, -1, 1, 1)))
        ring::paint(painter, layout_.ring, glide_.reached(), event->rect());
    if (isDue(timeRect()))
        paintTime(painter);
    if (isDue(layout_.title))
        paintTitle(painter);
    if (isDue(layout_.message))
        paintMessage(painter);
}

/// Copies device pixels; the painter's clip lets it copy only those that are due.
void BreakOverlayView::paintBackground(QPainter &painter) {
    const double ratio = painter.deviceTransform().m11(); // of the image too, when it is drawn into one
    const QImage &image = backgrounds_.image(size() * ratio);
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    if (image.isNull())
        painter.fillRect(QRect(QPoint(0, 0), size() * ratio), Qt::black);
    else
        painter.drawImage(QPoint(0, 0), image);
    painter.restore();
}

void BreakOverlayView::paintTitle(QPainter &painter) const {
    constexpr double opacity = 0.55;
    const QFont font = titleFont();
    const QString text =
        QFontMetricsF(font).elidedText(shown_.still.title, Qt::ElideRight, layout_.title.width());
    painter.setFont(font);
    painter.setPen(white(opacity));
    // Tracking leaves a gap behind the last letter too, which is none of the text.
    painter.drawText(layout_.title.translated(titleTracking / 2, 0), Qt::AlignCenter | Qt::TextSingleLine,
                     text);
}

void BreakOverlayView::paintTime(QPainter &painter) const {
    const QFont font = timeFont(shown_.time, timeRect().width());
    const QFontMetricsF metrics(font);
    const QPointF middle = layout_.ring.center();
    painter.setFont(font);
    painter.setPen(Qt::white);
    fonts::drawTabular(painter,
                       {middle.x() - fonts::tabularWidth(metrics, shown_.time) / 2,
                        std::round(middle.y() + metrics.capHeight() / 2)},
                       shown_.time);
}

void BreakOverlayView::paintMessage(QPainter &painter) const {
    constexpr double opacity = 0.9;
    painter.setPen(white(opacity));
    message_->paint(painter, {layout_.message.center().x(), layout_.message.top()});
}

} // namespace pavonel
