#include "UI/BreakOverlayView.h"

#include "Core/ClockText.h"
#include "Platform/Inset.h"
#include "Platform/WindowLayers.h"
#include "UI/Backgrounds.h"
#include "UI/BreakScreenText.h"
#include "UI/Ring.h"
#include "UI/SkipButton.h"

#include <QPaintEvent>
#include <QPainter>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <utility>

namespace pavonel {

BreakOverlayView::BreakOverlayView(BreakController &controller, Settings &settings,
                                   const DisplayServices &display, Backgrounds &backgrounds, Role role,
                                   QWidget *parent)
    : QWidget(parent), controller_(controller), settings_(settings), loop_(display.loop),
      layers_(display.layers), backgrounds_(backgrounds), role_(role),
      glide_(display.loop, display.appearance, [this] { updateArc(); }) {
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
    QWindow *large = isPrimary() ? window()->windowHandle() : nullptr;
    if (!large)
        return;
    insetPlace_ = aroundRing();
    inset_ = layers_.inset(*large, insetPlace_);
    if (inset_)
        paintAnew(insetPlace_);
}

/// With its edges between pixels where a scale has any such points.
QRect BreakOverlayView::aroundRing() const {
    const double ratio = devicePixelRatioF();
    const auto isBetweenPixels = [ratio](int edge) {
        return std::abs(edge * ratio - std::round(edge * ratio)) < 1e-6;
    };
    constexpr int farthest = 20; // for a scale of a twentieth more or less
    const auto moved = [&](int edge, int step) {
        for (int i = 0; i < farthest; ++i) {
            if (isBetweenPixels(edge + i * step))
                return edge + i * step;
        }
        return edge;
    };
    const QRect around = layout_.ring.adjusted(-1, -1, 1, 1).toAlignedRect();
    const QPoint topLeft(moved(around.left(), -1), moved(around.top(), -1));
    const QPoint end(moved(around.right() + 1, 1), moved(around.bottom() + 1, 1));
    return {topLeft, end - QPoint(1, 1)};
}

/// At once: to ask for it would wake the loop again in each frame.
void BreakOverlayView::paintAnew(const QRect &due) {
    if (!inset_) {
        repaint(due);
        return;
    }
    const QPoint place = insetPlace_.topLeft();
    QPainter painter(&inset_->picture());
    painter.translate(-place);
    painter.setClipRect(due);
    paint(painter, due);
    painter.end();
    const double ratio = inset_->picture().devicePixelRatio();
    const QRectF pixels(QPointF(due.topLeft() - place) * ratio, QSizeF(due.size()) * ratio);
    inset_->show(pixels.toAlignedRect() & inset_->picture().rect());
}

void BreakOverlayView::freeze() {
    refresher_.reset();
    refresh();
    const auto covering = std::exchange(inset_, nullptr); // until what it covers is up to date
    if (covering)
        repaint(insetPlace_);
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
        paintAnew(changed);
    else
        update(changed);
}

void BreakOverlayView::updateArc() {
    const QRectF changed = ring::changed(layout_.ring, drawnProgress_, glide_.reached());
    drawnProgress_ = glide_.reached();
    if (!inset_ || changed.intersects(breakScreen::timeRect(layout_.ring)) || !paintFrame(changed))
        paintAnew(changed.toAlignedRect());
}

/// The inset is over the ring alone, so there is only the background behind it; false where that is no
/// picture.
bool BreakOverlayView::paintFrame(const QRectF &changed) {
    QImage &picture = inset_->picture();
    const double ratio = picture.devicePixelRatio();
    const QImage &background = backgrounds_.image(size() * ratio);
    if (background.isNull())
        return false;
    const auto pixels = [ratio](const QRectF &points) {
        return QRectF(points.topLeft() * ratio, points.size() * ratio);
    };
    const QRect place(pixels(insetPlace_).topLeft().toPoint(), picture.size());
    const QRect due = pixels(changed).toAlignedRect() & place & background.rect();
    ring::paintFrame(picture, background, place.topLeft(), pixels(layout_.ring), glide_.reached(), due);
    inset_->show(due.translated(-place.topLeft()));
    return true;
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
        settle();
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
