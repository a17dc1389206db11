#pragma once

#include "Platform/Time.h"

#include <QTimeZone>

#include <functional>
#include <memory>

namespace pavonel {

/// A running timer. Destroying it cancels it, also from within its own action.
class Timer {
public:
    Timer() = default;
    Timer(const Timer &) = delete;
    Timer &operator=(const Timer &) = delete;
    virtual ~Timer() = default;
};
using TimerHandle = std::unique_ptr<Timer>;

/// The main thread's loop, and the only source of time. Timers follow a clock that setting the wall clock
/// does not move and that stands still while the machine sleeps. All actions run on the main thread.
class MainLoop {
public:
    using Action = std::function<void()>;

    MainLoop() = default;
    MainLoop(const MainLoop &) = delete;
    MainLoop &operator=(const MainLoop &) = delete;
    virtual ~MainLoop() = default;

    /// The wall clock.
    virtual Instant now() const = 0;

    /// The user's time zone at this moment; it can change while the program runs.
    virtual QTimeZone zone() const = 0;

    /// Runs `action` every `interval` seconds until the handle goes. Timers of the same interval share their
    /// wake-ups, so the first firing can come up to one interval early.
    [[nodiscard]] virtual TimerHandle every(Seconds interval, Action action) = 0;

    /// Runs `action` once, `delay` seconds from now, unless the handle goes first.
    [[nodiscard]] virtual TimerHandle after(Seconds delay, Action action) = 0;

    /// Runs `action` soon on the main thread. The one method that may be called from any thread.
    virtual void post(Action action) = 0;

    /// Ends the loop, and with it the program, which has this exit status.
    virtual void quit(int status) = 0;
};

} // namespace pavonel
