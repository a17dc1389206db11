#pragma once

#include "Core/BreakController.h"

namespace pavonel {

/// Builds every long-lived object and connects them; nothing else does.
class AppDelegate {
public:
    AppDelegate();
    ~AppDelegate();

    void setUp();

private:
    BreakController controller_;
};

} // namespace pavonel
