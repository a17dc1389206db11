#include "UI/BreakOverlayView.h"

#include "Core/ClockText.h"
#include "Platform/Platform.h"
#include "UI/Backgrounds.h"
#include "UI/BreakScreenText.h"
#include "UI/Ring.h"
#include "UI/RingInset.h"
#include "UI/SkipButton.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace pavonel {

BreakOverlayView::BreakOverlayView(BreakController &controller, Settings &settings, Platform &platform,
                                   Backgrounds &backgrounds, Role role, QWidget *parent)
    : QWidget(parent), controller_(controller), settings_(settings), loop_(*platform.mainLoop),
      layers_(*platform.windowLayers), backgrounds_(backgrounds), role_(role),
      glide_(*platform.mainLoop, *platform.appearance, [this] { updateArc(); }) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    shown_ = content();
    const auto refreshed = [this] { refresh(); };
    if (!isPrimary()) {
        refresher_.emplace(loop_, std::vector<Observable *>{&settings_}, refreshed);
        return;
    }
    refresher_.emplace(loop_, std::vector<Observable *>{&settings_, &controller_}, refreshed);
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

void BreakOverlayView::settle() {
    if (!isPrimary() || layers_.updatesInPart() || !window()->windowHandle())
        return;
    inset_ =
        std::make_unique<RingInset>(*window()->windowHandle(), insetPlace(),
                                    [this](QPainter &painter, const QRect &due) { paint(painter, due); });
    update(); // such a window appears with the next picture of the large one
}

QRect BreakOverlayView::insetPlace() const {
    return layout_.ring.adjusted(-1, -1, 1, 1).toAlignedRect().translated(mapTo(window(), QPoint()));
}

void BreakOverlayView::freeze() {
    refresher_.reset();
    refresh();
    inset_.reset();
    if (skip_)
        skip_->setEnabled(false); // a late click must not end the next break
}

BreakOverlayView::Content BreakOverlayView::content() const {
    Content content;
    content.still.backgroundStyle = settings_.backgroundStyle;
    content.still.backgroundPath = settings_.customBackgroundPath;
    if (!isPrimary())
        return content;
    content.still.title = controller_.breakTitle;
    content.still.message = controller_.breakMessage;
    content.still.skipPermitted = settings_.isSkipPermitted();
    content.time = clockText(controller_.breakRemaining);
    content.progress = progress();
    return content;
}

void BreakOverlayView::refresh() {
    const Content before = std::exchange(shown_, content());
    if (shown_.time != before.time)
        updateTime();
    if (shown_.still != before.still) {
        arrange();
        update();
    }
    if (shown_.progress != before.progress) {
        constexpr double halfPixel = 0.5;
        glide_.setSmallestStep(halfPixel / (ring::circumference(layout_.ring) * devicePixelRatioF()));
        glide_.glideTo(shown_.progress);
    }
}

void BreakOverlayView::updateTime() {
    const QRect changed = breakScreen::timeRect(layout_.ring).toAlignedRect();
    if (inset_)
        inset_->updatePart(changed);
    else
        update(changed);
}

void BreakOverlayView::updateArc() {
    const QRectF changed = ring::changed(layout_.ring, drawnProgress_, glide_.reached());
    drawnProgress_ = glide_.reached();
    if (inset_)
        inset_->updatePart(changed.toAlignedRect());
    else
        repaint(changed.toAlignedRect()); // at once: to ask for it would wake the loop again in each frame
}

void BreakOverlayView::arrange() {
    if (!isPrimary())
        return;
    BreakLayout::Sizes sizes;
    sizes.titleHeight = breakScreen::titleHeight();
    if (shown_.still.skipPermitted)
        sizes.skip = skip_->sizeHint();
    constexpr int mostLines = 4; // that the ring makes room for
    breakMessage(sizes.scale, mostLines * MessageText::lineHeight(breakScreen::messageFont()));
    const double wished = message_->height();
    sizes.scale = BreakLayout::scaleFor(size(), {sizes.titleHeight, wished, sizes.skip});
    breakMessage(sizes.scale, BreakLayout::roomForMessage(size(), sizes));
    sizes.messageHeight = message_->height();
    layout_ = BreakLayout::of(size(), sizes);
    setAccessibleName(shown_.still.title);
    setAccessibleDescription(shown_.still.message);
    skip_->setVisible(shown_.still.skipPermitted);
    skip_->setGeometry(QRect(layout_.skip.topLeft().toPoint(), skip_->sizeHint()));
    if (inset_)
        inset_->setGeometry(insetPlace());
}

void BreakOverlayView::breakMessage(double scale, double room) {
    const double width = std::min(BreakLayout::roomForText(size(), scale), BreakLayout::widestMessage);
    message_.emplace(shown_.still.message, breakScreen::messageFont(), width, room);
}

void BreakOverlayView::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    arrange();
}

void BreakOverlayView::paintEvent(QPaintEvent *event) {
    QPainter painter(this);
    paint(painter, event->rect());
}

void BreakOverlayView::paint(QPainter &painter, const QRect &due) {
    paintBackground(painter);
    if (!isPrimary())
        return;
    const auto isDue = [&due](const QRectF &rect) { return due.intersects(rect.toAlignedRect()); };
    if (isDue(layout_.ring.adjusted(-1, -1, 1, 1)))
        ring::paint(painter, layout_.ring, glide_.reached(), due);
    if (isDue(breakScreen::timeRect(layout_.ring)))
        breakScreen::paintTime(painter, layout_.ring, shown_.time);
    if (isDue(layout_.title))
        breakScreen::paintTitle(painter, layout_.title, shown_.still.title);
    if (isDue(layout_.message))
        breakScreen::paintMessage(painter, layout_.message, *message_);
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

} // namespace pavonel
