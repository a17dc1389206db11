#pragma once

#include "Platform/Time.h"

#include <QTimeZone>

#include <functional>
#include <limits>
#include <memory>
#include <utility>

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

    /// What runs again and again, but often finds nothing to do.
    struct Deferrable {
        /// Yields how many of its next beats can wait, if nothing but time passes.
        std::function<int()> action;
        /// Makes up for beats that waited; empty where there is nothing to make up for.
        std::function<void(int beats)> catchUp = nullptr;
        /// Asked when a beat could wait: whether it cannot after all, for something that no event tells of.
        /// Empty where there is nothing of that kind.
        std::function<bool()> isUrgent = nullptr;
    };
    static constexpr int unlimited = std::numeric_limits<int>::max();

    /// The same for one whose beats can wait: they are made up for before anything else happens in the
    /// program, and at the latest after some seconds. A loop need not let them wait.
    [[nodiscard]] virtual TimerHandle everyDeferrable(Seconds interval, Deferrable deferrable) {
        return every(interval, std::move(deferrable.action));
    }

    /// Runs `action` once, `delay` seconds from now, unless the handle goes first.
    [[nodiscard]] virtual TimerHandle after(Seconds delay, Action action) = 0;

    /// Runs `action` soon on the main thread. The one method that may be called from any thread.
    virtual void post(Action action) = 0;

    /// Ends the loop, and with it the program, which has this exit status.
    virtual void quit(int status) = 0;
};

} // namespace pavonel
