#pragma once

#include "Platform/Notifications.h"
#include "UI/Fade.h"
#include "UI/Panels/FloatingPanel.h"
#include "UI/ScreenChanges.h"

namespace pavonel {

/// Fades one notice in at a time, on the main screen; those that it hides fade out on their own, retired. The
/// one that is shown follows its screen, and goes to the main one when its own goes. Where panels cannot be
/// placed, the desktop shows the notice in its own way.
class NoticePresenter {
public:
    struct Notice {
        std::function<std::unique_ptr<FloatingPanel>()> make;
        std::function<QPoint(const QRectF &visibleFrame)> corner; ///< The left upper one.
        Seconds fadeIn;
        Seconds fadeOut;
        std::function<Notifications::Notice()> asNotification;
    };

    NoticePresenter(const DisplayServices &display, Notifications &notifications);

    /// In place of one that is shown.
    void show(Notice notice);
    void hide();

private:
    struct FadingPanel {
        FadingPanel(const DisplayServices &display, std::unique_ptr<FloatingPanel> newcomer);

        std::unique_ptr<FloatingPanel> panel;
        Fade fade;
    };

    struct Place {
        QString screen;
        QPoint corner;
        bool operator==(const Place &) const = default;
    };

    Place placeOn(const std::optional<Screen> &screen) const;
    void raise(const std::optional<Screen> &screen);
    void follow();

    DisplayServices display_;
    Notifications &notifications_;
    Notice notice_;
    Place place_;
    std::unique_ptr<FadingPanel> shown_;
    std::vector<std::unique_ptr<FadingPanel>> leaving_;
    std::unique_ptr<Notifications::Shown> notification_;
    ScreenChanges screenChanges_;
};

} // namespace pavonel
