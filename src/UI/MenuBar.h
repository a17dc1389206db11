#pragma once

#include "Core/BreakController.h"
#include "Core/Lifetime.h"
#include "Platform/StatusItem.h"

#include <functional>
#include <optional>

namespace pavonel {

/// The item in the menu bar: its icon tells the state at a glance, its title counts down, and its menu holds
/// the commands. Changes show within a second.
class MenuBarController {
public:
    /// Everything given must outlive the controller.
    MenuBarController(StatusItem &statusItem, MainLoop &loop, BreakController &controller,
                      const Settings &settings, const Stats &stats, std::function<void()> onSettings);

private:
    /// What icon and title follow from, without a text: it is compared every second.
    struct Face {
        Phase phase = Phase::counting;
        std::optional<PauseReason> held;
        std::optional<Seconds> left; ///< As exactly as it is shown.
        bool operator==(const Face &) const = default;
    };

    void refresh();
    int steadyRefreshes() const;
    Face face() const;
    static QString iconOf(const Face &face);
    static QString titleOf(const Face &face);
    Menu menu();
    Menu pauseMenu();
    MenuItem item(const QString &title, const QString &key, std::function<void()> action);
    Seconds untilTomorrow() const;
    QString todayLine() const;

    StatusItem &statusItem_;
    MainLoop &loop_;
    BreakController &controller_;
    const Settings &settings_;
    const Stats &stats_;
    std::function<void()> onSettings_;
    std::optional<Face> shown_;
    QString icon_; ///< A symbol's name, or that of the mark.
    QString title_;
    TimerHandle refreshTimer_;
    Lifetime lifetime_; ///< A menu can outlive us.
};

/// The time left as the menu bar shows it: whole seconds below a minute ("45s"), else minutes ("2m"), one
/// more than have fully passed, so that it never shows less than is left.
QString shortRemainingTime(Seconds remaining);

} // namespace pavonel
