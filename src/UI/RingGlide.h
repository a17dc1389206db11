#pragma once

#include "Platform/Appearance.h"
#include "Platform/MainLoop.h"

namespace pavonel {

/// How far the ring's arc reaches, 0 to 1. It glides evenly for a second to each new progress, in steps that
/// are just large enough to be seen; where the user wishes for less motion it jumps.
class RingGlide {
public:
    RingGlide(MainLoop &loop, Appearance &appearance, std::function<void()> moved);

    /// Stands there at once, without a call of `moved`.
    void jumpTo(double progress);
    void glideTo(double progress);

    /// The smallest movement to show, as a share of the whole circle.
    void setSmallestStep(double share) { smallestStep_ = share; }

    /// What shall be seen; changes just before each call of `moved`.
    double reached() const { return reached_; }

private:
    double now() const;
    void schedule();
    void stop();
    void show(double progress);

    MainLoop &loop_;
    Appearance &appearance_;
    std::function<void()> moved_;
    double smallestStep_ = 0.001;
    double reached_ = 0;
    double from_ = 0;
    double target_ = 0;
    Instant start_;
    TimerHandle frames_; ///< Of a quick motion: one timer, not a new one for each frame.
    TimerHandle next_;   ///< The next frame of a slow one.
};

} // namespace pavonel
