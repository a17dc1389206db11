#pragma once

#include "UI/Panels/NoticePresenter.h"

namespace pavonel {

/// The strip at the top of the screen that carries a reminder for six seconds.
class ToastController {
public:
    ToastController(const DisplayServices &display, Notifications &notifications);

    /// In place of one that is shown. `symbol` is a name of `Symbol`.
    void show(const QString &text, const QString &symbol);
    void hide();

private:
    std::unique_ptr<FloatingPanel> makePanel(const QString &text, const QString &symbol);

    DisplayServices display_;
    NoticePresenter presenter_;
    TimerHandle dismissal_;
};

} // namespace pavonel
