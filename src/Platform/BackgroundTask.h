#pragma once

#include "Platform/MainLoop.h"

#include <chrono>
#include <functional>
#include <memory>

namespace pavonel {

/// A piece of work on a thread that nobody waits for, because it can take as long as somebody else's disk
/// wants, and that may be for ever. Its result comes to the main thread. Destroying the task drops that
/// result, also from within the action that takes it; the work itself cannot be stopped.
class BackgroundTask {
public:
    /// What is to be done with the result, on the main thread.
    using Action = MainLoop::Action;
    /// Runs on another thread and uses nothing that the main thread could change or destroy meanwhile.
    using Work = std::function<Action()>;

    BackgroundTask() = default;
    BackgroundTask(BackgroundTask &&) noexcept = default;
    BackgroundTask &operator=(BackgroundTask &&other) noexcept;
    ~BackgroundTask() { drop(); }

    /// Begins the work. Where the system has no thread to give it is done here and now.
    [[nodiscard]] static BackgroundTask start(MainLoop &loop, Work work);

    /// Until its action runs.
    bool isPending() const;

    /// Runs the action now, as soon as the work is done. Does nothing when that takes longer than `timeout`.
    void await(std::chrono::milliseconds timeout);

    /// Whether a thread is still at work in this process, for whomever. Then the process must not end by
    /// destroying what the thread may be using.
    static bool anyRunning();

private:
    struct State;

    explicit BackgroundTask(std::shared_ptr<State> state) : state_(std::move(state)) {}
    static void workOn(const std::shared_ptr<State> &state, MainLoop &loop, const Work &work);
    void drop();

    std::shared_ptr<State> state_;
};

} // namespace pavonel
