#pragma once

#include "Platform/Appearance.h"
#include "Platform/MainLoop.h"

namespace pavonel {

/// Takes the opacity of something from where it stands to where it shall be. Destroying it stops it where it
/// is, and then nothing is called any more.
class Fade {
public:
    using Apply = std::function<void(double opacity)>; ///< Given 0 to 1.
    using Completion = std::function<void()>;

    /// The opacity counts as 0 until the first fade; `apply` is not called for that.
    Fade(MainLoop &loop, Appearance &appearance, Apply apply);

    /// Replaces a fade that runs, whose completion is then never called. `completion` comes from the loop,
    /// never from within this call, and may destroy this object. Where the user wishes for less motion the
    /// opacity is the target at once.
    void to(double target, Seconds duration, Completion completion = {});

    double opacity() const { return opacity_; }

private:
    void step(double from, double target, double progress);

    MainLoop &loop_;
    Appearance &appearance_;
    Apply apply_;
    double opacity_ = 0;
    double progress_ = 0; ///< Of the running fade, 0 to 1.
    TimerHandle frames_;
    TimerHandle end_;
};

} // namespace pavonel
