#pragma once

#include "Platform/Service.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace pavonel {

using ProcessId = std::int32_t;

struct Application {
    ProcessId processId = 0;
    QString bundleIdentifier; ///< Empty for a program that has none.
};

/// The running applications of this user. On a failure the list is empty and nothing is in front.
class Applications : public Service {
public:
    virtual std::vector<Application> running() = 0;
    virtual std::optional<Application> frontmost() = 0;

    /// Whether more may be running than at the last question, though no event has told.
    virtual bool mayRunMore() { return true; }
};

} // namespace pavonel
