#pragma once

#include "Platform/Linux/Applications/ProcessFolder.h"

#include <chrono>
#include <map>

namespace pavonel {

/// Whether somebody is connected to a remote-desktop server. Such a server may run all day without a viewer.
class RemoteViewers {
public:
    /// False as well when it cannot be told: no break would ever come again.
    bool anyAt(const ProcessFolder &server);

private:
    using Clock = std::chrono::steady_clock;
    struct Answer {
        bool viewed;
        Clock::time_point until;
    };

    std::map<ProcessId, Answer> answers_; ///< Finding out takes a look at every connection of the machine.
};

} // namespace pavonel
