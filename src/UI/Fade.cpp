#include "UI/Fade.h"

#include <algorithm>
#include <utility>

namespace pavonel {

namespace {

/// Starts and ends gently.
double eased(double progress) {
    return progress * progress * (3 - 2 * progress);
}

} // namespace

Fade::Fade(MainLoop &loop, Appearance &appearance, Apply apply)
    : loop_(loop), appearance_(appearance), apply_(std::move(apply)) {}

void Fade::to(double target, Seconds duration, Completion completion) {
    frames_.reset();
    const double from = opacity_;
    if (appearance_.wishes().reducedMotion)
        duration = 0;
    progress_ = 0;
    if (duration > 0) {
        constexpr Seconds frame = 1.0 / 60;
        frames_ = loop_.every(frame, [this, from, target, duration, start = loop_.now()] {
            // The clock can be set meanwhile: the motion never goes back, and a timer of its own ends it.
            step(from, target, std::clamp(secondsBetween(start, loop_.now()) / duration, progress_, 1.0));
        });
    } else {
        step(from, target, 1);
    }
    end_ = loop_.after(duration, [this, from, target, done = std::move(completion)] {
        frames_.reset();
        if (progress_ < 1)
            step(from, target, 1);
        if (done)
            done();
    });
}

void Fade::step(double from, double target, double progress) {
    progress_ = progress;
    opacity_ = progress < 1 ? from + (target - from) * eased(progress) : target;
    apply_(opacity_);
}

} // namespace pavonel
