#include "Platform/BackgroundTask.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace pavonel {

namespace {

std::atomic<int> runningTasks = 0;

} // namespace

struct BackgroundTask::State {
    enum class Status { running, done, over };

    std::mutex guard;
    std::condition_variable changed;
    std::atomic<Status> status = Status::running; ///< Over once the action was taken or is wanted no more.
    Action action;

    void run() {
        std::unique_lock lock(guard);
        if (status != Status::done)
            return;
        status = Status::over;
        const Action taken = std::move(action); // it may destroy the task
        lock.unlock();
        if (taken)
            taken();
    }
};

BackgroundTask &BackgroundTask::operator=(BackgroundTask &&other) noexcept {
    if (this != &other) {
        drop();
        state_ = std::move(other.state_);
    }
    return *this;
}

BackgroundTask BackgroundTask::start(MainLoop &loop, Work work) {
    const auto state = std::make_shared<State>();
    ++runningTasks;
    const auto thread = [state, &loop, work = std::move(work)] { workOn(state, loop, work); };
    try {
        std::thread(thread).detach();
    } catch (const std::system_error &) {
        thread();
    }
    return BackgroundTask(state);
}

void BackgroundTask::workOn(const std::shared_ptr<State> &state, MainLoop &loop, const Work &work) {
    Action action = work();
    const std::scoped_lock lock(state->guard);
    // Otherwise the loop may be gone with whoever wanted this.
    if (state->status != State::Status::over) {
        state->action = std::move(action);
        state->status = State::Status::done;
        loop.post([state] { state->run(); });
    }
    --runningTasks; // before anybody learns that it is done
    state->changed.notify_all();
}

bool BackgroundTask::isPending() const {
    return state_ && state_->status != State::Status::over;
}

void BackgroundTask::await(std::chrono::milliseconds timeout) {
    if (!state_)
        return;
    const auto state = state_;
    {
        std::unique_lock lock(state->guard);
        state->changed.wait_for(lock, timeout, [&] { return state->status != State::Status::running; });
    }
    state->run();
}

void BackgroundTask::drop() {
    if (!state_)
        return;
    Action unwanted; // goes after the lock: it can hold anything
    const std::scoped_lock lock(state_->guard);
    state_->status = State::Status::over;
    unwanted = std::exchange(state_->action, {});
}

bool BackgroundTask::anyRunning() {
    return runningTasks > 0;
}

} // namespace pavonel
