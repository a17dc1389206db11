#pragma once

#include "Platform/Service.h"

#include <functional>

namespace pavonel {

/// Requests from outside to leave: signals, the end of the desktop session. All handlers run on the main
/// thread.
class Termination : public Service {
public:
    /// The session may be about to end, which can still be called off: put on disk what is unsaved.
    virtual void onSave(std::function<void()> save) = 0;

    /// The program has to end, at once and whatever it is doing.
    virtual void onEnd(std::function<void()> end) = 0;
};

} // namespace pavonel
