#pragma once

#include <pulse/mainloop-api.h>

namespace pavonel {

/// Lets libpulse live in the Qt main loop, so that it needs neither a thread of its own nor locks.
class QtPulseLoop {
public:
    QtPulseLoop();
    QtPulseLoop(const QtPulseLoop &) = delete;
    QtPulseLoop &operator=(const QtPulseLoop &) = delete;
    ~QtPulseLoop() = default;

    /// Valid as long as this object, which has to outlive every context made over it.
    pa_mainloop_api *api() { return &api_; }

private:
    pa_mainloop_api api_;
};

} // namespace pavonel
