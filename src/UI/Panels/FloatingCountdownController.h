#pragma once

#include "Core/BreakController.h"
#include "Platform/Pointer.h"
#include "UI/Panels/FloatingPanel.h"
#include "UI/ScreenChanges.h"

namespace pavonel {

/// The time to the coming break, riding beside the pointer.
class FloatingCountdownController {
public:
    FloatingCountdownController(const DisplayServices &display, Pointer &pointer,
                                BreakController &controller);

    /// Does nothing while it is shown, and where panels cannot be placed.
    void show();
    void hide();

private:
    void follow();
    void followScreens();
    QPoint corner() const;

    DisplayServices display_;
    Pointer &pointer_;
    BreakController &controller_;
    std::vector<Screen> screens_; ///< While it is shown: asking thirty times a second would cost.
    std::unique_ptr<FloatingPanel> panel_;
    TimerHandle timer_;
    ScreenChanges screenChanges_;
};

} // namespace pavonel
