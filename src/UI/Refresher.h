#pragma once

#include "Core/Lifetime.h"
#include "Core/Observable.h"
#include "Platform/MainLoop.h"

namespace pavonel {

/// Keeps something up to date: calls `refresh` from the loop once after any number of changes to what it
/// watches. Destroying it ends that.
class Refresher {
public:
    Refresher(MainLoop &loop, const std::vector<Observable *> &watched, std::function<void()> refresh);

private:
    bool pending_ = false;
    std::vector<Observable::Observation> observations_;
    Lifetime lifetime_;
};

} // namespace pavonel
