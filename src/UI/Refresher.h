#pragma once

#include "Core/Observable.h"
#include "Platform/MainLoop.h"

namespace pavonel {

/// Keeps something up to date: calls `refresh` from the loop once after any number of changes to what it
/// watches. Destroying it ends that.
class Refresher {
public:
    Refresher(MainLoop &loop, const std::vector<Observable *> &watched, std::function<void()> refresh);

private:
    struct State {
        std::function<void()> refresh;
        bool pending = false;
    };

    std::shared_ptr<State> state_;
    std::vector<Observable::Observation> observations_;
};

} // namespace pavonel
