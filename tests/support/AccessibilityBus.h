#pragma once

#include "support/ChildProcess.h"

namespace pavonel::test {

/// What leads programs and assistive technology to each other (AT-SPI), on a display and a session bus of the
/// test's own. It ends with this object.
class AccessibilityBus {
public:
    /// `environment` names the display, the session bus and the private folders. What cannot be had fails the
    /// test.
    explicit AccessibilityBus(QProcessEnvironment environment);

private:
    ChildProcess launcher_;
};

} // namespace pavonel::test
