#include "UI/Refresher.h"

namespace pavonel {

Refresher::Refresher(MainLoop &loop, const std::vector<Observable *> &watched,
                     std::function<void()> refresh) {
    const auto refreshNow = lifetime_.guard([this, refresh = std::move(refresh)] {
        pending_ = false;
        refresh();
    });
    const auto noteChange = [this, &loop, refreshNow] {
        if (!std::exchange(pending_, true))
            loop.post(refreshNow);
    };
    for (Observable *observable : watched)
        observations_.push_back(observable->observe(noteChange));
}

} // namespace pavonel
