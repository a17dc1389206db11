#pragma once

#include "Core/BreakController.h"
#include "UI/Panels/NoticePresenter.h"

namespace pavonel {

/// The notice in the right upper corner shortly before a break.
class HeadsUpController {
public:
    HeadsUpController(const DisplayServices &display, Notifications &notifications,
                      BreakController &controller, Settings &settings);

    /// In place of one that is shown.
    void show(BreakKind kind, const QString &title);
    void hide();

private:
    Notifications::Notice notification(BreakKind kind, const QString &title);
    std::unique_ptr<FloatingPanel> makePanel(BreakKind kind, const QString &title);

    DisplayServices display_;
    BreakController &controller_;
    Settings &settings_;
    NoticePresenter presenter_;
};

} // namespace pavonel
