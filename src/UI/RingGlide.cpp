#include "UI/RingGlide.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pavonel {

namespace {

constexpr Seconds glide = 1;
/// The eye gathers light for about as long. In a micro break of 20 s the end moves by two pixels in it, a
/// third of the line's width: steps that still run together.
constexpr Seconds shortestFrame = 1.0 / 20;

} // namespace

RingGlide::RingGlide(MainLoop &loop, Appearance &appearance, std::function<void()> moved)
    : loop_(loop), appearance_(appearance), moved_(std::move(moved)) {}

void RingGlide::jumpTo(double progress) {
    stop();
    reached_ = from_ = target_ = progress;
}

void RingGlide::glideTo(double progress) {
    if (appearance_.wishes().reducedMotion) {
        stop();
        from_ = target_ = progress;
        show(progress);
        return;
    }
    from_ = now();
    target_ = progress;
    start_ = loop_.now();
    schedule();
}

double RingGlide::now() const {
    const double share = std::clamp(secondsBetween(start_, loop_.now()) / glide, 0.0, 1.0);
    return from_ + (target_ - from_) * share;
}

void RingGlide::schedule() {
    next_.reset();
    const double position = now();
    const double left = std::abs(target_ - position);
    const double unseen = std::abs(position - reached_);
    if (unseen + left < smallestStep_)
        return stop(); // not worth a frame before the next change
    const double speed = std::abs(target_ - from_) / glide;
    const Seconds wait = speed > 0 ? (smallestStep_ - unseen) / speed : 0;
    const auto step = [this] {
        show(now());
        schedule();
    };
    if (wait > shortestFrame) {
        frames_.reset();
        next_ = loop_.after(wait, step);
    } else if (!frames_) {
        frames_ = loop_.every(shortestFrame, step);
    }
}

void RingGlide::stop() {
    frames_.reset();
    next_.reset();
}

void RingGlide::show(double progress) {
    if (std::exchange(reached_, progress) != progress)
        moved_();
}

} // namespace pavonel
