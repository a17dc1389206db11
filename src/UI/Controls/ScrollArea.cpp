#include "UI/Controls/ScrollArea.h"

#include "Platform/Appearance.h"
#include "UI/Style/Visuals.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <cmath>

namespace pavonel {

namespace {

constexpr Seconds frame = 1.0 / 60;
constexpr double notch = 64;   // points a notch of the wheel
constexpr double share = 0.28; // of the rest of the way, each frame

} // namespace

ScrollArea::ScrollArea(QWidget *content) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    setWidget(content);
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
}

/// One that shows all it has leaves the keys to others.
void ScrollArea::keyPressEvent(QKeyEvent *event) {
    const auto scrolls = [](const QScrollBar *bar) { return bar->maximum() > bar->minimum(); };
    if (scrolls(verticalScrollBar()) || scrolls(horizontalScrollBar()))
        QScrollArea::keyPressEvent(event);
    else
        event->ignore();
}

void ScrollArea::wheelEvent(QWheelEvent *event) {
    const QPointF notches = QPointF(event->angleDelta()) / 120 * notch;
    const QPoint exactly = event->pixelDelta();
    const int sideways = exactly.isNull() ? qRound(notches.x()) : exactly.x();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - sideways);
    if (!exactly.isNull()) {
        frames_.reset();
        verticalScrollBar()->setValue(verticalScrollBar()->value() - exactly.y());
    } else {
        glideBy(-notches.y());
    }
    event->accept();
}

void ScrollArea::glideBy(double distance) {
    const QScrollBar &bar = *verticalScrollBar();
    const double from = frames_ ? target_ : bar.value();
    target_ = std::clamp<double>(from + distance, bar.minimum(), bar.maximum());
    if (visuals().appearance().wishes().reducedMotion)
        verticalScrollBar()->setValue(qRound(target_));
    else if (!frames_)
        frames_ = visuals().loop().every(frame, [this] { glide(); });
}

void ScrollArea::glide() {
    QScrollBar &bar = *verticalScrollBar();
    const double rest = target_ - bar.value();
    const double step = rest * share;
    const int pixels = qRound(std::abs(step) < 1 ? std::copysign(std::min(1.0, std::abs(rest)), rest) : step);
    if (pixels == 0) {
        frames_.reset();
        return;
    }
    bar.setValue(bar.value() + pixels);
    if (bar.value() == bar.minimum() || bar.value() == bar.maximum())
        target_ = bar.value();
}

} // namespace pavonel
