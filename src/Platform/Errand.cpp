#include "Platform/Errand.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace pavonel {

namespace {

std::atomic<int> atWork = 0;

} // namespace

struct Errand::State {
    enum class Status { atWork, done, over };

    std::mutex guard;
    std::condition_variable changed;
    Status status = Status::atWork; ///< Over once the action was taken or is wanted no more.
    Action action;

    void run() {
        std::unique_lock lock(guard);
        if (status != Status::done)
            return;
        status = Status::over;
        const Action taken = std::move(action); // it may destroy the errand
        lock.unlock();
        if (taken)
            taken();
    }
};

Errand &Errand::operator=(Errand &&other) noexcept {
    if (this != &other) {
        drop();
        state_ = std::move(other.state_);
    }
    return *this;
}

Errand Errand::begin(MainLoop &loop, Work work) {
    const auto state = std::make_shared<State>();
    ++atWork;
    const auto errand = [state, &loop, work = std::move(work)] { workOn(state, loop, work); };
    try {
        std::thread(errand).detach();
    } catch (const std::system_error &) {
        errand();
    }
    return Errand(state);
}

void Errand::workOn(const std::shared_ptr<State> &state, MainLoop &loop, const Work &work) {
    Action action = work();
    const std::scoped_lock lock(state->guard);
    // Otherwise the loop may be gone with whoever wanted this.
    if (state->status != State::Status::over) {
        state->action = std::move(action);
        state->status = State::Status::done;
        loop.post([state] { state->run(); });
    }
    --atWork; // before anybody learns that it is done
    state->changed.notify_all();
}

bool Errand::isOut() const {
    if (!state_)
        return false;
    const std::scoped_lock lock(state_->guard);
    return state_->status != State::Status::over;
}

void Errand::await(std::chrono::milliseconds patience) {
    if (!state_)
        return;
    const auto state = state_;
    {
        std::unique_lock lock(state->guard);
        state->changed.wait_for(lock, patience, [&] { return state->status != State::Status::atWork; });
    }
    state->run();
}

void Errand::drop() {
    if (!state_)
        return;
    Action unwanted; // goes after the lock: it can hold anything
    const std::scoped_lock lock(state_->guard);
    state_->status = State::Status::over;
    unwanted = std::exchange(state_->action, {});
}

bool Errand::anyAtWork() {
    return atWork > 0;
}

} // namespace pavonel
