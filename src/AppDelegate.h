#pragma once

#include "Core/BreakController.h"
#include "UI/MenuBar.h"

#include <optional>

namespace pavonel {

/// Builds every long-lived object and connects them; nothing else does.
class AppDelegate {
public:
    AppDelegate();
    ~AppDelegate();

    void setUp();

private:
    BreakController controller_;
    std::optional<MenuBarController> menuBar_;
};

} // namespace pavonel
