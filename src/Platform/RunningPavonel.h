#pragma once

#include "Platform/StatusPublisher.h"

#include <functional>
#include <memory>
#include <variant>

namespace pavonel {

/// The Pavonel that runs for this user, as another process sees it. Nothing here ever starts one.
class RunningPavonel {
public:
    enum class Failure {
        notRunning, ///< Or not where we can reach it.
        noAnswer    ///< It does not answer in time, or is too old to tell.
    };
    using Answer = std::variant<Status, Failure>;

    RunningPavonel() = default;
    RunningPavonel(const RunningPavonel &) = delete;
    RunningPavonel &operator=(const RunningPavonel &) = delete;
    virtual ~RunningPavonel() = default;

    virtual Answer status() = 0;

    /// `changed` is called, from the main loop, whenever the status is to be asked for again, also when there
    /// is no Pavonel any more.
    virtual void follow(std::function<void()> changed) = 0;
};

/// This system's answer. Needs the application object, but no display.
std::unique_ptr<RunningPavonel> findRunningPavonel();

} // namespace pavonel
