#pragma once

#include "Platform/Service.h"

#include <functional>

namespace pavonel {

/// Tells that the machine goes to sleep and wakes. All handlers run on the main thread.
class PowerEvents : public Service {
public:
    /// The machine sleeps once the handler has returned, or after a few seconds at the latest.
    virtual void onSleep(std::function<void()> beforeSleep) = 0;
    virtual void onWake(std::function<void()> afterWake) = 0;
};

} // namespace pavonel
