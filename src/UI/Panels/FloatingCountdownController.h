#pragma once

#include "Core/BreakController.h"
#include "UI/Panels/FloatingPanel.h"

namespace pavonel {

/// The time to the coming break, riding beside the pointer.
class FloatingCountdownController {
public:
    FloatingCountdownController(Platform &platform, BreakController &controller);

    /// Does nothing while it is shown.
    void show();
    void hide();

private:
    void follow();
    QPoint corner() const;

    Platform &platform_;
    BreakController &controller_;
    std::unique_ptr<FloatingPanel> panel_;
    TimerHandle timer_;
};

} // namespace pavonel
