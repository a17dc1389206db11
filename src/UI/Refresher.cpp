#include "UI/Refresher.h"

namespace pavonel {

Refresher::Refresher(MainLoop &loop, const std::vector<Observable *> &watched, std::function<void()> refresh)
    : state_(std::make_shared<State>(State{std::move(refresh)})) {
    const auto refreshNow = [weak = std::weak_ptr(state_)] {
        if (const auto state = weak.lock()) {
            state->pending = false;
            state->refresh();
        }
    };
    const auto noteChange = [&loop, state = std::weak_ptr(state_), refreshNow] {
        const auto noted = state.lock();
        if (noted && !std::exchange(noted->pending, true))
            loop.post(refreshNow);
    };
    for (Observable *observable : watched)
        observations_.push_back(observable->observe(noteChange));
}

} // namespace pavonel
